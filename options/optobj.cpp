// The table of option_obj and the handlers of its options.
#include "options/optobj.h"

#include <cstdio>
#include <cstdlib>

#include "DIAG/diag.h"
#include "UTIL/process_end.h"
#include "UTIL/version.h"

namespace {

void ignore_path(const char*) {}
void ignore_program(const char*) {}

// --advice_file: advice is shown from now on, and every run with an advice
// file has --display_error_number set.
void action_advice_file(option_engine& options, int, const char*) {
  DIAGNOSTIC::advice_m = true;
  options.setopt(option_obj::DISPLAY_ERROR_NUMBER);
}

// --diag_wrap: the word "off" (also what the bare option gets) stops wrapping.
void action_diag_wrap(option_engine& options, int id, const char*) {
  if (options.getnumarg(id, 0) == option_obj::ITEM_DIAG_WRAP_OFF)
    DIAGNOSTIC::wrap_enabled_m = false;
}

// --linker_options_file, -@: the file just stored is opened as the source
// of the next tokens.
void action_open_cmd_file(option_engine& options, int id, const char*) {
  option_obj::open_cmd_file(options.getstrarg(id, options.getargcount(id) - 1));
}

void action_toolversion(option_engine&, int, const char*) {
  print_toolversion(stdout);
  end_process(0);
}

}  // namespace

void (*option_obj::open_cmd_file)(const char*) = ignore_path;
void (*option_obj::print_usage)(const char*) = ignore_program;

// The generated part of the table; the slash is part of a path, so no formatting.
// clang-format off
#define OO_TABLE_INC(part) OO_STRINGIFY(options/optobj_##part.inc)
// clang-format on
#define OO_FAMILY option_obj
#define OO_OPEN_CMD_FILE &option_obj::open_cmd_file
#define OO_PRINT_USAGE &option_obj::print_usage
#include "options/table_builder.h"

option_obj::option_obj(bool) : option_engine(table_data) {}

// Facts of the table that the rest of the tool relies on.
static_assert(option_obj::OPTION_COUNT == 14);
static_assert(table_facts::class_columns == 9 && table_facts::help_classes == 5);
static_assert(table_facts::alt_form_slots == 3 && !table_facts::folds_case);
static_assert(table_facts::first_file_option == 16 && table_facts::last_file_option == 45);
static_assert(option_obj::ADVICE_FILE == 0 && option_obj::BENCHMARK__EVENT == 1 &&
              option_obj::BENCHMARK__OPTION == 2 && option_obj::BENCHMARK__OPTION_VALUE == 3 &&
              option_obj::BENCHMARKS_FILE == 4 && option_obj::DIAG_WRAP == 6 &&
              option_obj::DISPLAY_ERROR_NUMBER == 7 && option_obj::HELP == 9 &&
              option_obj::LINKER_OPTIONS_FILE == 10 && option_obj::TOOLVERSION == 11 &&
              option_obj::VERBOSE == 12 && option_obj::XML_LINK_INFO == 13);
static_assert(option_obj::ITEM_BENCHMARK__EVENT_START == 3 &&
              option_obj::ITEM_BENCHMARK__EVENT_APPEND == 1 &&
              option_obj::ITEM_BENCHMARK__EVENT_END == 2);
static_assert(option_obj::ITEM_DIAG_WRAP_ON == 5 && option_obj::ITEM_DIAG_WRAP_OFF == 4);
// The tool's own options are never merged nor handed on.
static_assert(merge_facts::policy_count == 0 && merge_facts::override_row_count == 0);
static_assert(merge_facts::passto_count == 0);
