#pragma once
// The tool's driver: process entry, argument stream and routing of options.

// Prints the usage text on stdout and ends the process with status 1.
[[noreturn]] void print_usage(const char* program_name);

// The whole run; returns the process's exit status (0 or 1).
int advzorv_main(int argc, char** argv);
