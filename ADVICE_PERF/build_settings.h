#pragma once
// The one place where the document rules and the benchmark runs read the
// run's option objects: the build's settings from the compiler-shell options
// of the command file, and the tool's own benchmark options.
#include "options/optobj.h"
#include "options/optobj_shell.h"

// The optimisation level: 0 to 4, or -1 for no optimisation.
int opt_level();

// The code size against speed goal: 0 (smallest code) to 5 (fastest), or -1.
int size_speed_goal();

// Whether the build set the shell option.
bool shell_option_set(option_obj_shell::option_id id);

// Whether the tool's option was given on the command line.
bool tool_option_given(option_obj::option_id id);

// The number of a given tool option (for a one-of option, its item value); 0
// when it was not given.
long tool_option_number(option_obj::option_id id);

// The text of a tool option, or "" when it was not given. The text belongs to
// the option object and lives as long as the run.
const char* tool_option_text(option_obj::option_id id);
