#include "test_family.h"

#include <deque>

#include "DIAG/diag.h"

// The generated part of the table; the slash is part of a path, so no formatting.
// clang-format off
#define OO_TABLE_INC(part) OO_STRINGIFY(options/engine_test_##part.inc)
// clang-format on
#define OO_FAMILY option_obj_test
#define OO_OPEN_CMD_FILE nullptr
#define OO_PRINT_USAGE nullptr
#include "options/table_builder.h"

option_obj_test::option_obj_test(bool with_defaults) : option_engine(table_data) {
  if (with_defaults) set_defaults();
}

// Derived facts of the synthetic table.
static_assert(option_obj_test::OPTION_COUNT == 24);
static_assert(option_obj_test::ALPHA == 0 && option_obj_test::ALPHA_BETA == 1 &&
              option_obj_test::ZIP == 23);
// Lists are numbered in row order, alphabetically inside a list.
static_assert(option_obj_test::ITEM_COLOR_CRIMSON == 1 && option_obj_test::ITEM_COLOR_GREEN == 2 &&
              option_obj_test::ITEM_COLOR_RED == 3 && option_obj_test::ITEM_COLOR_TEAL == 4 &&
              option_obj_test::ITEM_KEEP_HIGH == 5 && option_obj_test::ITEM_KEEP_LOW == 6 &&
              option_obj_test::ITEM_MODE_FAST == 7 && option_obj_test::ITEM_SHAPES_ROUND == 9);
static_assert(table_facts::first_file_option == 40 && table_facts::last_file_option == 69);

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
