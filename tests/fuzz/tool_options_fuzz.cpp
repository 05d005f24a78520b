// The scanner over the tool's own option table.
#include "options/optobj.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  option_obj options(true);
  scan_tokens(data, size, &option_obj::next_arg,
              [&options](const char* option) { options.process_option(option, nullptr); });
  return 0;
}
