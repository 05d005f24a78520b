// The command-file tokenizer over arbitrary bytes.
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* (*next_arg)() = nullptr;  // no option here reads the next word
  scan_tokens(data, size, &next_arg, [](const char*) {});
  return 0;
}
