#include "UTIL/base64.h"

#include <cstring>

namespace {

const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(sizeof alphabet == 64 + 1);

const int group_chars = 4;
const int group_bytes = 3;

char encoded[group_chars + 1];

// The place of a non-terminator character in the alphabet, or 0.
unsigned long sextet_of(char c) {
  const char* place = strchr(alphabet, c);
  return place ? static_cast<unsigned long>(place - alphabet) : 0;
}

}  // namespace

const char* base64_encode(unsigned long value, int bits) {
  for (int i = 0; i < group_chars; ++i)
    encoded[i] = alphabet[(value >> (6 * (group_chars - 1 - i))) & 0x3f];
  if (bits < 24) encoded[3] = '=';
  if (bits < 16) encoded[2] = '=';
  encoded[group_chars] = '\0';
  return encoded;
}

const char* base64_encode(const unsigned char* bytes, int count) {
  if (count > group_bytes) count = group_bytes;
  unsigned long value = 0;
  for (int i = 0; i < group_bytes; ++i)
    value = (value << 8) | (i < count ? bytes[i] : 0u);
  return base64_encode(value, count * 8);
}

unsigned long base64_decode(const char* text) {
  unsigned long value = 0;
  bool ended = false;
  for (int i = 0; i < group_chars; ++i) {
    ended = ended || text[i] == '\0';
    value = (value << 6) | (ended ? 0 : sextet_of(text[i]));
  }
  return value;
}
