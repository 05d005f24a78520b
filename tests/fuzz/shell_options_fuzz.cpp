// The scanner over the compiler shell's option table, then the pass over the
// settings that depend on others.
#include <memory>

#include "options/optobj_shell.h"
#include "tests/fuzz/fuzz_support.h"

namespace {
std::unique_ptr<option_obj_shell> options;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  options = std::make_unique<option_obj_shell>(true);
  const bool completed =
      scan_tokens(data, size, &option_obj_shell::next_arg,
                  [](const char* option) { return options->process_option(option, nullptr) != 0; });
  if (!completed) return 0;
  try {
    options->post_process_option_depends();
  } catch (const run_ended&) {
    // errors were counted
  }
  return 0;
}
