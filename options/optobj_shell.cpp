// The table of option_obj_shell.
#include "options/optobj_shell.h"

// The generated part of the table; the slash is part of a path, so no formatting.
// clang-format off
#define OO_TABLE_INC(part) OO_STRINGIFY(options/optobj_shell_##part.inc)
// clang-format on
#define OO_FAMILY option_obj_shell
#define OO_OPEN_CMD_FILE nullptr
#define OO_PRINT_USAGE nullptr
#include "options/table_builder.h"

option_obj_shell::option_obj_shell(bool with_defaults) : option_engine(table_data) {
  if (with_defaults) set_defaults();
}

// Facts of the table that the rest of the tool relies on.
using S = option_obj_shell;
static_assert(S::OPTION_COUNT == 273 && S::HELP_CLASS_COUNT == 30);
static_assert(table_facts::alt_form_slots == 16 && table_facts::folds_case);
static_assert(table_facts::class_columns == 31);
static_assert(table_facts::first_file_option == 275 && table_facts::last_file_option == 304);
static_assert(S::OPT_LEVEL == 175 && S::RUN_LINKER == 218 && S::SIZE_SPEED_GOAL == 228 &&
              S::SYMDEBUG__DWARF == 240);
static_assert(table_facts::item_count == 107);
static_assert(S::ITEM_OPT_LEVEL_0 == 63 && S::ITEM_OPT_LEVEL_1 == 64 && S::ITEM_OPT_LEVEL_2 == 65 &&
              S::ITEM_OPT_LEVEL_3 == 66 && S::ITEM_OPT_LEVEL_4 == 67 &&
              S::ITEM_OPT_LEVEL_OFF == 68);
static_assert(S::ITEM_SIZE_SPEED_GOAL_HIGH_RISK_PERFORMANCE == 89 &&
              S::ITEM_SIZE_SPEED_GOAL_HIGH_RISK_SIZE == 90 &&
              S::ITEM_SIZE_SPEED_GOAL_LOW_RISK_PERFORMANCE == 91 &&
              S::ITEM_SIZE_SPEED_GOAL_LOW_RISK_SIZE == 92 &&
              S::ITEM_SIZE_SPEED_GOAL_MEDIUM_RISK_PERFORMANCE == 93 &&
              S::ITEM_SIZE_SPEED_GOAL_MEDIUM_RISK_SIZE == 94);
static_assert(S::ITEM_SYMDEBUG__DWARF_VERSION_2 == 97 && S::ITEM_SYMDEBUG__DWARF_VERSION_3 == 98 &&
              S::ITEM_SYMDEBUG__DWARF_VERSION_4 == 99);
static_assert(count_of(defaults) - 1 == 16);
static_assert(merge_facts::policy_count == 81 && merge_facts::override_row_count == 24);
static_assert(merge_facts::passto_count == 187);
