#pragma once
// The common way a tool dies: the support message after a defect of its own, and
// a signal handling scheme a tool may install.
#include <cstddef>

using signal_handler_fn = void (*)(int sig);
using signal_callback_fn = void (*)(int sig);

// The support text, naming tool_name(), on stderr; it ends with
// support_closing(tool_name()).
void print_support_message();

// What the support text asks a user of the tool called name to send, or a line end.
const char* support_closing(const char* name);

// Hook for producing a core dump ahead of a fatal exit; does nothing here.
void try_gen_corefile(int sig);

// Stores callback for common_signal_handler and installs handler for SIGILL,
// SIGABRT, SIGFPE, SIGSEGV, SIGTERM, SIGINT, SIGHUP, SIGTRAP, SIGBUS, SIGSYS,
// SIGXCPU and SIGXFSZ.
void install_common_handlers(signal_handler_fn handler, signal_callback_fn callback);

// The reason shown for a fatal signal.
const char* fatal_signal_reason(int sig);

// Reports signal sig for the tool called name and ends the process with status 2.
// SIGTERM, SIGINT and SIGHUP print one bracketed line; any other signal prints an
// INTERNAL ERROR report with the formatted text, the support message, and runs
// the callback. Pointers up to 100000 are taken for small integers, not texts.
[[noreturn]] void common_signal_handler(int sig, const char* name, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));

// Appends the formatted text to the terminated text in buf (size bytes), as far as
// it fits; buf[size - 1] is always set to the terminator. An invalid format
// appends the previous call's text again.
void sigstrnappend(char* buf, size_t size, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));
