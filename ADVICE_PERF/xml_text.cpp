#include "ADVICE_PERF/xml_text.h"

#include <cstddef>
#include <cstdint>

namespace {

bool is_xml_char(char32_t c) {
  if (c < 0x20) return c == 0x09 || c == 0x0A || c == 0x0D;
  if (c <= 0xD7FF) return true;
  if (c < 0xE000) return false;
  if (c <= 0xFFFD) return true;
  return c >= 0x10000 && c <= 0x10FFFF;
}

// The length of the well-formed UTF-8 sequence at the front of text, with its
// code point in c; 0 if the first byte begins none (overlong forms, surrogates
// and values past U+10FFFF included).
size_t utf8_sequence(std::string_view text, char32_t& c) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t lead = byte(0);
  size_t length;
  char32_t min;
  if (lead < 0x80) {
    c = lead;
    return 1;
  } else if ((lead & 0xE0) == 0xC0) {
    length = 2, min = 0x80, c = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, min = 0x800, c = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, min = 0x10000, c = lead & 0x07;
  } else {
    return 0;
  }
  if (text.size() < length) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    c = (c << 6) | (byte(i) & 0x3F);
  }
  const bool surrogate = c >= 0xD800 && c <= 0xDFFF;
  return c < min || surrogate || c > 0x10FFFF ? 0 : length;
}

}  // namespace

std::string strict_xml_text(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  size_t clean_from = 0;  // start of the run of good characters not yet copied
  size_t at = 0;
  while (at < text.size()) {
    char32_t c;
    const size_t length = utf8_sequence(text.substr(at), c);
    if (length != 0 && is_xml_char(c)) {
      at += length;
      continue;
    }
    result.append(text.substr(clean_from, at - clean_from));
    result.append(xml_replacement_char);
    // A character XML can't hold goes whole; a stray byte goes alone.
    at += length != 0 ? length : 1;
    clean_from = at;
  }
  result.append(text.substr(clean_from));
  return result;
}
