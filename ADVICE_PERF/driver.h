#pragma once
// The tool's driver: the process entry, the one stream of arguments over the
// command line and the command file, and the routing of each token.

#include <cstdint>

class option_obj;
class option_obj_shell;

// Process-wide state, set up by main and never freed.
extern int32_t sys_argc;
extern char** sys_argv;
extern const char* tool_path;
extern option_obj* cmdline_options;
extern option_obj_shell* global_options;

// Prints the usage text on stdout and ends the process with status 1.
[[noreturn]] void print_usage(const char* program_name);

// The whole run; returns the process's exit status (0 or 1).
int advzorv_main(int argc, char** argv);
