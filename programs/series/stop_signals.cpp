#include "programs/series/stop_signals.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <sys/wait.h>

namespace {

volatile std::sig_atomic_t first_stop = 0;

sigset_t held_signals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGCHLD);
  return set;
}

void note(int signal) {
  if ((signal == SIGINT || signal == SIGTERM) && first_stop == 0) first_stop = signal;
}

// Takes one held signal, waiting at most timeout; 0 when none came.
int take_held_signal(const timespec& timeout) {
  const sigset_t set = held_signals();
  const int signal = sigtimedwait(&set, nullptr, &timeout);
  return signal > 0 ? signal : 0;
}

}  // namespace

void hold_stop_signals() {
  const sigset_t set = held_signals();
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

void release_held_signals() {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

int stop_signal() {
  const timespec now{0, 0};
  while (const int signal = take_held_signal(now))
    note(signal);
  return first_stop;
}

bool wait_for_child(pid_t pid, std::chrono::milliseconds tick, int* wait_status) {
  const auto deadline = std::chrono::steady_clock::now() + tick;
  const int stop_before = first_stop;
  for (;;) {
    const pid_t ended = waitpid(pid, wait_status, WNOHANG);
    if (ended == pid || (ended < 0 && errno != EINTR)) return true;
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left <= std::chrono::steady_clock::duration::zero()) return false;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(left - seconds);
    // A SIGCHLD has the child looked at again; a first stop signal ends the wait.
    note(take_held_signal({static_cast<time_t>(seconds.count()), nanoseconds.count()}));
    if (first_stop != stop_before) return false;
  }
}
