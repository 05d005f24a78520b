#include "ADVICE_PERF/arg_stream.h"

#include "ADVICE_PERF/driver.h"
#include "UTIL/cmdfile.h"

#include <cstdlib>

FILE* cmd_file = nullptr;

namespace {
// The last token read from the command file; freed at the next call.
char* cmd_token = nullptr;
// Index of the next argv element to hand out.
int arg_index = 1;
}  // namespace

const char* next_arg() {
  std::free(cmd_token);
  cmd_token = nullptr;
  if (cmd_file) {
    cmd_token = fnextopt(cmd_file);
    if (cmd_token) return cmd_token;
    std::fclose(cmd_file);
    cmd_file = nullptr;
  }
  if (arg_index < sys_argc) return sys_argv[arg_index++];
  return nullptr;
}

void open_cmd_file(const char* path) {
  // A directory is no command file; pipes and devices are read as they come.
  cmd_file = open_command_file(path);
  if (!cmd_file) {
    std::fprintf(stderr, "Cannot open command file %s\n", path);
    std::exit(1);
  }
}
