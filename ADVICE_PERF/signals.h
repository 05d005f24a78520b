#pragma once
// The driver's own handling of terminating signals: a report on stderr and
// exit status 2.

// Reports the signal and ends the process; never returns.
[[noreturn]] void signal_handler(int sig);

// Installs signal_handler, on an alternate signal stack, for the twelve
// signals the tool catches.
void install_signal_handlers();
