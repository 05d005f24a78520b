#pragma once
// How the libraries end the process after reporting why: std::exit unless
// another ending is installed. A fuzzing harness installs one that throws, so
// one process can go through many inputs.

using process_ending_fn = void (*)(int status);

// Ends through the installed ending; std::exit(status) if that one returns.
[[noreturn]] void end_process(int status);

// Installs ending (null restores std::exit) and returns the previous one.
process_ending_fn set_process_ending(process_ending_fn ending);
