#include "UTIL/safemalloc.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

[[noreturn]] void out_of_memory() {
  fputs("ERROR: out of memory\n", stderr);
  exit(1);
}

// A request of zero bytes may legitimately give null; ask for one byte instead
// so that null always means exhaustion.
size_t at_least_one(size_t size) {
  return size == 0 ? 1 : size;
}

void* checked(void* ptr) {
  if (ptr == nullptr) out_of_memory();
  return ptr;
}

}  // namespace

void* safemalloc(size_t size) {
  return checked(malloc(at_least_one(size)));
}

void* saferealloc(void* ptr, size_t size) {
  return checked(realloc(ptr, at_least_one(size)));
}

void* safecalloc(size_t count, size_t size) {
  if (count == 0 || size == 0) count = size = 1;
  return checked(calloc(count, size));
}

char* safestrdup(const char* text) {
  const size_t size = strlen(text) + 1;
  return static_cast<char*>(memcpy(safemalloc(size), text, size));
}
