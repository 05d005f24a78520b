#include "test_family.h"

#include <deque>

#include "DIAG/diag.h"

#define OO_TABLE_INC "options/engine_test.inc"
#define OO_FAMILY option_obj_test
#define OO_OPEN_CMD_FILE nullptr
#define OO_PRINT_USAGE nullptr
#include "options/table_builder.h"

option_obj_test::option_obj_test(bool with_defaults) : option_engine(table_data) {
  if (with_defaults) set_defaults();
}

namespace {
std::deque<const char*> tokens;
}

void script_tokens(std::vector<const char*> list) {
  tokens.assign(list.begin(), list.end());
}

const char* scripted_next_arg() {
  if (tokens.empty()) return nullptr;
  const char* token = tokens.front();
  tokens.pop_front();
  return token;
}

diag_capture::diag_capture() : file_(std::tmpfile()), saved_(DIAGNOSTIC::fp_m) {
  DIAGNOSTIC::fp_m = file_;
}

diag_capture::~diag_capture() {
  DIAGNOSTIC::fp_m = saved_;
  std::fclose(file_);
}

std::string diag_capture::text() {
  std::fflush(file_);
  std::string out;
  std::rewind(file_);
  char buffer[512];
  size_t got;
  while ((got = std::fread(buffer, 1, sizeof buffer, file_)) > 0)
    out.append(buffer, got);
  std::fseek(file_, 0, SEEK_END);  // later messages are appended
  return out;
}
