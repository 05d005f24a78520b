#include "programs/series/varied_option.h"

#include "UTIL/process_end.h"
#include "options/option_values.h"
#include "options/optobj_shell.h"

#include <algorithm>

namespace {

// Scans the option set to value as a build line would give it; the engine
// reports a value it refuses and ends the process, or counts an error.
void check_value(const std::string& long_form, const std::string& value) {
  option_obj_shell scanner(false);
  const std::string token = setting_text(long_form, value);
  const bool known = scanner.process_option(token.c_str() + 1, nullptr) != 0;
  if (!known)
    throw series_usage_error(token + " is no option of the compiler shell: " + long_form +
                             " takes no value");
  if (scanner.error_count > 0) end_process(1);
}

}  // namespace

std::string setting_text(const std::string& long_form, const std::string& value) {
  return long_form + "=" + value;
}

VARIED_OPTION varied_option(const std::string& spelling, std::vector<std::string> values) {
  const option_table& table = option_obj_shell::table_data;
  const int id = option_spelled(table, spelling);
  if (id < 0) throw series_usage_error(spelling + " is no option of the compiler shell");
  VARIED_OPTION option{option_obj_shell(false).internal_option_string(id), std::move(values)};
  if (option.values.empty()) option.values = enumerated_values(table, id);
  if (option.values.empty())
    throw series_usage_error("the compiler shell's table lists no values of " + option.long_form +
                             "; give them with --values");
  for (auto value = option.values.begin(); value != option.values.end(); ++value)
    if (std::find(option.values.begin(), value, *value) != value)
      throw series_usage_error("value " + *value + " of " + option.long_form + " is given twice");
  for (const std::string& value : option.values)
    check_value(option.long_form, value);
  return option;
}
