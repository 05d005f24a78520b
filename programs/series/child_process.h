#pragma once
// Runs one command as a child in a process group of its own: the terminal's
// Ctrl-C doesn't reach it, and a stop of the series ends the command together
// with everything it started.

#include <functional>
#include <string>
#include <vector>

struct CHILD_RUN {
  std::vector<std::string> argv;         // the program (looked up in PATH) and its arguments
  std::vector<std::string> environment;  // NAME=VALUE settings added to this process's own
  int output_fd = -1;                    // takes stdout and stderr; -1 keeps this process's
  bool stoppable = false;                // whether a stop signal of the series ends it
};

struct CHILD_END {
  int status = 0;        // exit status, 128 + the signal that ended it, 127 if it couldn't run
  bool stopped = false;  // a stop signal was forwarded to its group
};

// Runs the child to its end with standard input from /dev/null, calling tick
// about once a second meanwhile. A stop signal is sent on to the group of a
// stoppable child, and SIGKILL follows 10 seconds later if the child is still
// there; a stopped child's run returns once its whole group has ended. Throws
// std::system_error when no child can be made.
CHILD_END run_child(const CHILD_RUN& run, const std::function<void()>& tick);
