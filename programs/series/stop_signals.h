#pragma once
// Ctrl-C (SIGINT) and SIGTERM stop a series. Both are held blocked, with
// SIGCHLD, from the start of the program and taken only where the series
// looks for them: while it waits for a child and between two steps. So no
// signal is lost, and a tool run is never cut short by one.

#include <chrono>

#include <sys/types.h>

// Blocks SIGINT, SIGTERM and SIGCHLD in this process; call before any child
// is started.
void hold_stop_signals();

// Clears the blocked set; a child calls it between fork and exec.
void release_held_signals();

// The first stop signal received so far, SIGINT or SIGTERM, or 0. Takes
// whatever stop signal is pending.
int stop_signal();

// Waits until child pid ends, tick has passed or the first stop signal
// arrives, whichever is first. True when the child has ended; its wait status
// is then in *wait_status.
bool wait_for_child(pid_t pid, std::chrono::milliseconds tick, int* wait_status);
