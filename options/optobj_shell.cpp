// The table of option_obj_shell.
#include "options/optobj_shell.h"

#define OO_TABLE_INC "options/optobj_shell.inc"
#define OO_FAMILY option_obj_shell
#define OO_OPEN_CMD_FILE nullptr
#define OO_PRINT_USAGE nullptr
#include "options/table_builder.h"

option_obj_shell::option_obj_shell(bool with_defaults) : option_engine(table_data) {
  if (with_defaults) set_defaults();
}
