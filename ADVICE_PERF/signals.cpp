#include "ADVICE_PERF/signals.h"

#include "ADVICE_PERF/driver.h"
#include "UTIL/fatal_error.h"

#include <signal.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <initializer_list>

namespace {

// What the internal error report says the tool did: the toolchain's common
// reason, but a plain "aborted" for SIGABRT.
const char* internal_fault_text(int sig) {
  return sig == SIGABRT ? "aborted" : fatal_signal_reason(sig);
}

[[noreturn]] void report_internal_error(int sig) {
  std::fprintf(stderr, "\nINTERNAL ERROR: %s %s while\n", tool_path, internal_fault_text(sig));
  std::fflush(nullptr);
  std::fprintf(stderr, "                processing\n\n");
  std::fflush(nullptr);
  std::fprintf(stderr,
               "This is a serious problem.  Please contact Customer\n"
               "Support with this message and a copy of the input file\n"
               "and help us to continue to make the tools more robust.\n\n");
  std::fflush(nullptr);
  _exit(2);
}

}  // namespace

void signal_handler(int sig) {
  switch (sig) {
    case SIGHUP:
    case SIGINT:
      std::fprintf(stderr, "[%s forced exit]\n", tool_path);
      break;
    case SIGTERM:
      std::fprintf(stderr, "[%s received a terminate signal]\n", tool_path);
      break;
    default:
      report_internal_error(sig);
  }
  std::fflush(nullptr);
  _exit(2);
}

void install_signal_handlers() {
  // The handler runs on a stack of its own, so that a stack overflow, which
  // leaves the faulting stack no room, still ends with the report.
  alignas(16) static char handler_stack[64 * 1024];
  stack_t stack{};
  stack.ss_sp = handler_stack;
  stack.ss_size = sizeof handler_stack;
  sigaltstack(&stack, nullptr);

  struct sigaction action {};
  action.sa_handler = signal_handler;
  action.sa_flags = SA_ONSTACK | SA_RESTART;
  sigemptyset(&action.sa_mask);
  for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGILL, SIGABRT, SIGFPE, SIGSEGV, SIGTRAP, SIGBUS,
                  SIGSYS, SIGXCPU, SIGXFSZ})
    sigaction(sig, &action, nullptr);
}
