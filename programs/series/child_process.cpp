#include "programs/series/child_process.h"

#include "programs/series/stop_signals.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using clock_type = std::chrono::steady_clock;

// How long a stopped child has to end before it is killed.
constexpr std::chrono::seconds stop_patience(10);

// In the child, between fork and exec.
[[noreturn]] void become(const CHILD_RUN& run, char* const* argv) {
  setpgid(0, 0);
  release_held_signals();
  const int null_fd = open("/dev/null", O_RDONLY);
  if (null_fd >= 0) dup2(null_fd, STDIN_FILENO);
  if (run.output_fd >= 0) {
    dup2(run.output_fd, STDOUT_FILENO);
    dup2(run.output_fd, STDERR_FILENO);
  }
  for (const std::string& setting : run.environment) {
    const std::string::size_type equals = setting.find('=');
    setenv(setting.substr(0, equals).c_str(), setting.substr(equals + 1).c_str(), 1);
  }
  execvp(argv[0], argv);
  std::fprintf(stderr, "advzorv-series: cannot run %s: %s\n", argv[0], std::strerror(errno));
  _exit(127);
}

// Waits until no process of a stopped child's group is left, killing what is
// still there at kill_at. The series is their subreaper, so the orphans of the
// group come to it and are reaped here; one second past kill_at it gives up on
// what can't be reaped (a zombie whose parent left the group).
void reap_group(pid_t group, clock_type::time_point kill_at) {
  const auto give_up = kill_at + std::chrono::seconds(1);
  while (kill(-group, 0) == 0 && clock_type::now() < give_up) {
    if (waitpid(-group, nullptr, WNOHANG) > 0) continue;
    if (clock_type::now() >= kill_at) kill(-group, SIGKILL);
    usleep(10000);
  }
}

int exit_status(int wait_status) {
  if (WIFEXITED(wait_status)) return WEXITSTATUS(wait_status);
  if (WIFSIGNALED(wait_status)) return 128 + WTERMSIG(wait_status);
  return 1;
}

}  // namespace

CHILD_END run_child(const CHILD_RUN& run, const std::function<void()>& tick) {
  std::vector<char*> argv;
  for (const std::string& arg : run.argv)
    argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);

  std::fflush(nullptr);  // nothing buffered here is written twice
  const pid_t pid = fork();
  if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid == 0) become(run, argv.data());
  setpgid(pid, pid);  // also here, so the group exists before a signal is sent to it

  CHILD_END end;
  clock_type::time_point kill_at = clock_type::time_point::max();
  int wait_status = 0;
  for (;;) {
    if (run.stoppable && !end.stopped && stop_signal() != 0) {
      end.stopped = true;
      prctl(PR_SET_CHILD_SUBREAPER, 1);  // what the stop orphans comes here, to be reaped
      kill(-pid, stop_signal());
      kill_at = clock_type::now() + stop_patience;
    }
    if (clock_type::now() >= kill_at) kill(-pid, SIGKILL);  // again each second, harmless
    if (wait_for_child(pid, std::chrono::seconds(1), &wait_status)) break;
    tick();
  }
  if (end.stopped) reap_group(pid, kill_at);
  end.status = exit_status(wait_status);
  return end;
}
