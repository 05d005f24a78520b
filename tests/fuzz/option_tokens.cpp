#include "tests/fuzz/option_tokens.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "UTIL/cmdfile.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

FILE* stream = nullptr;
char* token = nullptr;  // the last word read; freed at the next read

const char* next_token() {
  std::free(std::exchange(token, nullptr));
  token = fnextopt(stream);
  return token;
}

}  // namespace

bool scan_tokens(const uint8_t* data, size_t size, const char* (**next_arg)(),
                 bool (*scan)(const char* option)) {
  if (size == 0) return true;
  begin_input();
  stream = fmemopen(const_cast<uint8_t*>(data), size, "r");
  *next_arg = next_token;
  bool completed = true;
  try {
    while (const char* word = next_token())
      if (word[0] == '-') scan(word + 1);
  } catch (const run_ended&) {
    // the run ended on a bad argument, help or an unterminated quote
    completed = false;
  }
  std::free(token);
  token = nullptr;
  std::fclose(stream);
  return completed;
}
