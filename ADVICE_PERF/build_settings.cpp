#include "ADVICE_PERF/build_settings.h"

#include "ADVICE_PERF/driver.h"

namespace {

struct word_setting {
  long item_value;
  int setting;
};

// The numeric setting of a one-of shell option, or -1 when it is not set or
// holds a word the mapping does not know.
template <size_t N>
int setting_of(option_obj_shell::option_id id, const word_setting (&mapping)[N]) {
  if (!shell_option_set(id)) return -1;
  const long value = global_options->getnumarg(id, 0);
  for (const word_setting& entry : mapping)
    if (entry.item_value == value) return entry.setting;
  return -1;
}

using shell = option_obj_shell;

constexpr word_setting opt_levels[] = {
    {shell::ITEM_OPT_LEVEL_0, 0}, {shell::ITEM_OPT_LEVEL_1, 1}, {shell::ITEM_OPT_LEVEL_2, 2},
    {shell::ITEM_OPT_LEVEL_3, 3}, {shell::ITEM_OPT_LEVEL_4, 4}, {shell::ITEM_OPT_LEVEL_OFF, -1},
};

constexpr word_setting size_speed_goals[] = {
    {shell::ITEM_SIZE_SPEED_GOAL_HIGH_RISK_SIZE, 0},
    {shell::ITEM_SIZE_SPEED_GOAL_MEDIUM_RISK_SIZE, 1},
    {shell::ITEM_SIZE_SPEED_GOAL_LOW_RISK_SIZE, 2},
    {shell::ITEM_SIZE_SPEED_GOAL_LOW_RISK_PERFORMANCE, 3},
    {shell::ITEM_SIZE_SPEED_GOAL_MEDIUM_RISK_PERFORMANCE, 4},
    {shell::ITEM_SIZE_SPEED_GOAL_HIGH_RISK_PERFORMANCE, 5},
};

}  // namespace

int opt_level() {
  return setting_of(shell::OPT_LEVEL, opt_levels);
}

int size_speed_goal() {
  return setting_of(shell::SIZE_SPEED_GOAL, size_speed_goals);
}

bool shell_option_set(option_obj_shell::option_id id) {
  return global_options->option_state[id] != 0;
}

bool tool_option_given(option_obj::option_id id) {
  return cmdline_options->option_state[id] != 0;
}

long tool_option_number(option_obj::option_id id) {
  return tool_option_given(id) ? cmdline_options->getnumarg(id, 0) : 0;
}

const char* tool_option_text(option_obj::option_id id) {
  const char* text = tool_option_given(id) ? cmdline_options->getstrarg(id, 0) : nullptr;
  return text ? text : "";
}
