// The scanner over the compiler shell's option table, then the pass over the
// settings that depend on others.
#include "options/optobj_shell.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  option_obj_shell options(true);
  const bool completed =
      scan_tokens(data, size, &option_obj_shell::next_arg,
                  [&options](const char* option) { options.process_option(option, nullptr); });
  if (!completed) return 0;
  try {
    options.post_process_option_depends();
  } catch (const run_ended&) {
    // errors were counted
  }
  return 0;
}
