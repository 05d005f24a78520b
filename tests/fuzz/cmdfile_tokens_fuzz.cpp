// The command-file tokenizer over arbitrary bytes.
#include <cstdio>
#include <cstdlib>

#include "UTIL/cmdfile.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  begin_input();
  FILE* stream = std::fopen(input_file(data, size), "r");
  try {
    while (char* word = fnextopt(stream))
      std::free(word);
  } catch (const run_ended&) {
    // an unterminated quote or comment
  }
  std::fclose(stream);
  return 0;
}
