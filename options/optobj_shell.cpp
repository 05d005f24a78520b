// The table of option_obj_shell and the pass over it after the last token.
#include "options/optobj_shell.h"

#define OO_TABLE_INC(part) OO_STRINGIFY(options/optobj_shell_##part.inc)
#define OO_FAMILY option_obj_shell
#define OO_OPEN_CMD_FILE nullptr
#define OO_PRINT_USAGE nullptr
#include "options/table_builder.h"

option_obj_shell::option_obj_shell(bool with_defaults) : option_engine(table_data) {
  if (with_defaults) set_defaults();
}

void option_obj_shell::post_process_option_depends() {
  // A build without a debug option counts as built with debug information.
  if (!option_state[SYMDEBUG__DWARF] && !option_state[SYMDEBUG__COFF] &&
      !option_state[SYMDEBUG__NONE]) {
    if (option_state[SYMDEBUG__SKELETAL]) clearopt(SYMDEBUG__SKELETAL);
    apply(SYMDEBUG__DWARF, nullptr);
  }
  // The level is always set afterwards; one the build did not give is "off".
  if (!option_state[OPT_LEVEL] || !option_parsed[OPT_LEVEL]) apply(OPT_LEVEL, "off");
  option_engine::post_process_option_depends();
}

static_assert(table_facts::alt_form_slots == 16 && table_facts::folds_case);
static_assert(table_facts::class_columns == 31);
static_assert(table_facts::first_file_option == 275 && table_facts::last_file_option == 304);
