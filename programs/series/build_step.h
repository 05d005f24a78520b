#pragma once
// One build of a series: the user's build command for one value, run with
// its output kept in a log of its own.

#include "programs/series/child_process.h"

#include <functional>
#include <string>
#include <vector>

// What the build command is given for one value.
struct STEP_SETTING {
  std::string option;   // "--opt_for_speed"
  std::string value;    // "3"
  std::string setting;  // "--opt_for_speed=3"
};

// The command with "{value}", "{option}" and "{setting}" replaced in every
// word; other braces stay as they are.
std::vector<std::string> substituted_command(const std::vector<std::string>& command,
                                             const STEP_SETTING& step);

// The log file of one value in log_dir, named after the option and value
// with characters outside letters, digits and ".-_=" turned into "_".
std::string build_log_path(const std::string& log_dir, const STEP_SETTING& step);

// Runs the substituted command, with ADVZORV_VALUE, ADVZORV_OPTION and
// ADVZORV_SETTING in its environment and its output in the log, which is
// replaced; the log begins with the command line. Throws std::system_error
// when the log can't be written or no child can be made.
CHILD_END run_build(const std::vector<std::string>& command, const STEP_SETTING& step,
                    const std::string& log_path, const std::function<void()>& tick);

// The last lines of a log, at most count of them.
std::string log_tail(const std::string& log_path, unsigned count);
