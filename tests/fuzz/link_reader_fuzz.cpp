// The link information reader.
#include "ADVICE_PERF/link_data.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  read_input(data, size, [](const char* path) { LINK_DATA link(path); });
  return 0;
}
