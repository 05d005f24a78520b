#pragma once
// Progress of a series on standard error: on a terminal one live line per
// step, redrawn with the time spent and the time still to go; in a log one
// plain line per finished step.

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <string>

class PROGRESS {
 public:
  // live: redraw the current line; steps: how many the series has.
  PROGRESS(std::ostream& out, bool live, std::size_t steps);

  // Step index (from 0) begins, building setting.
  void begin(std::size_t index, const std::string& setting);
  // Redraws the live line; does nothing in a log.
  void tick();
  // The step has ended with outcome ("recorded", "build failed", ...).
  void end(const std::string& outcome);

 private:
  using clock = std::chrono::steady_clock;
  std::string head() const;
  double elapsed() const;

  std::ostream& out;
  bool live;
  std::size_t steps;
  std::size_t index = 0;
  std::string setting;
  clock::time_point started;
  double finished_seconds = 0;  // the steps ended so far, in all
};

// Whether progress is drawn live: standard error is a terminal and the
// environment doesn't say CI.
bool live_progress_wanted();
