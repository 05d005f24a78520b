// The link information reader.
#include <exception>

#include "ADVICE_PERF/link_data.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  begin_input();
  try {
    LINK_DATA link(input_file(data, size));
  } catch (const std::exception&) {
    // a document without the parts the reader requires
  }
  return 0;
}
