#include "tests/fuzz/fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

#include "ADVICE_PERF/driver.h"
#include "DIAG/diag.h"
#include "UTIL/cmdfile.h"
#include "UTIL/process_end.h"
#include "options/optobj.h"
#include "options/optobj_shell.h"
#include "tests/util/temp_dir.h"

namespace {
[[noreturn]] void throw_ending(int status) {
  throw run_ended{status};
}

FILE* stream = nullptr;
char* token = nullptr;  // the last word read; freed at the next read

const char* next_token() {
  std::free(std::exchange(token, nullptr));
  token = fnextopt(stream);
  return token;
}

}  // namespace

void begin_input() {
  set_process_ending(throw_ending);
  DIAGNOSTIC::error_count_m = 0;
}

void make_option_objects() {
  if (cmdline_options) return;
  cmdline_options = new option_obj(true);
  global_options = new option_obj_shell(true);
}

const char* input_file(const uint8_t* data, size_t size) {
  // Removed when the process ends.
  static const struct scratch_file {
    std::string path = "/tmp/advzorv-fuzz-" + std::to_string(getpid()) + ".xml";
    ~scratch_file() { std::remove(path.c_str()); }
  } file;
  write_file(file.path, std::string(reinterpret_cast<const char*>(data), size));
  return file.path.c_str();
}

void read_input(const uint8_t* data, size_t size,
                const std::function<void(const char* path)>& read) {
  begin_input();
  try {
    read(input_file(data, size));
  } catch (const std::exception&) {
  }
}

bool scan_tokens(const uint8_t* data, size_t size, const char* (**next_arg)(),
                 const std::function<void(const char* option)>& scan) {
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
  std::free(std::exchange(token, nullptr));
  std::fclose(stream);
  return completed;
}
