#pragma once
// The option a series varies and its values, as the compiler shell's option
// table knows them.

#include <stdexcept>
#include <string>
#include <vector>

struct VARIED_OPTION {
  std::string long_form;            // as the chart and the documents name it, "--opt_level"
  std::vector<std::string> values;  // in the order the series builds them
};

// An option that can't be varied, or values that can't make a series.
class series_usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The option spelled as spelling (any of its spellings) with the values
// given, or, when none are given, every value that the table lists for it.
// Throws series_usage_error for an option the table doesn't know, a value
// given twice, or no values where the table lists none. A value that the
// table refuses ends the process with status 1, after the option engine's
// own diagnostic, as advzorv would end on a build line holding it.
VARIED_OPTION varied_option(const std::string& spelling, std::vector<std::string> values);

// "--opt_for_speed=3": the option set to value, as a build line spells it.
std::string setting_text(const std::string& long_form, const std::string& value);
