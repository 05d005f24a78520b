#include "UTIL/strcase.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "UTIL/safemalloc.h"

namespace {

int lower(char c) {
  return tolower(static_cast<unsigned char>(c));
}

char* upper_copy(const char* text) {
  char* copy = safestrdup(text);
  for (char* p = copy; *p != '\0'; ++p)
    *p = static_cast<char>(toupper(static_cast<unsigned char>(*p)));
  return copy;
}

}  // namespace

int strcaseincmp(const char* a, const char* b, unsigned n) {
  for (unsigned i = 0; i < n; ++i) {
    const int ca = lower(a[i]);
    const int cb = lower(b[i]);
    if (ca != cb) return ca - cb;
    if (ca == 0) break;
  }
  return 0;
}

int strcaseicmp(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int ca = lower(*a);
    const int cb = lower(*b);
    if (ca != cb) return ca - cb;
    if (ca == 0) return 0;
  }
}

const char* strcaseistr(const char* text, const char* part) {
  char* folded_text = upper_copy(text);
  char* folded_part = upper_copy(part);
  const char* found = strstr(folded_text, folded_part);
  const char* result = found ? text + (found - folded_text) : nullptr;
  free(folded_text);
  free(folded_part);
  return result;
}
