// The scanner over the tool's own option table.
#include <memory>

#include "options/optobj.h"
#include "tests/fuzz/fuzz_support.h"

namespace {
std::unique_ptr<option_obj> options;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  options = std::make_unique<option_obj>(true);
  scan_tokens(data, size, &option_obj::next_arg,
              [](const char* option) { return options->process_option(option, nullptr) != 0; });
  return 0;
}
