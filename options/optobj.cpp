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

#define OO_TABLE_INC "options/optobj.inc"
#define OO_FAMILY option_obj
#define OO_OPEN_CMD_FILE &option_obj::open_cmd_file
#define OO_PRINT_USAGE &option_obj::print_usage
#include "options/table_builder.h"

option_obj::option_obj(bool) : option_engine(table_data) {}
