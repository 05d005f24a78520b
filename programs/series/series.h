#pragma once
// A benchmark series: one build per value of the varied option, each recorded
// by a run of advzorv, as the development environment plays it.

#include "programs/series/tool_run.h"
#include "programs/series/varied_option.h"

#include <iosfwd>
#include <string>
#include <vector>

class PROGRESS;

struct SERIES_PLAN {
  std::string advzorv;  // the tool that records the steps
  SERIES_FILES files;
  VARIED_OPTION option;
  std::vector<std::string> command;  // the build command, with its placeholders
  std::string log_dir;               // holds one build log per value
  bool keep_going = false;           // go on after a step that gives no bar
};

struct SERIES_RESULT {
  bool started = false;               // the tool ran the event "start"
  std::vector<std::string> recorded;  // the values whose bar the tool was given
  bool failed = false;                // some step gave no bar, or the tool failed
  bool ended = false;                 // the tool ran the event "end"
  int stop_signal = 0;                // SIGINT or SIGTERM that stopped the series, or 0
};

// Runs the series: the event "start", then for each value the build and,
// when its link information gives a bar, "append" ("end" for the last value).
// A step that gives no bar is told on messages with the value, the file and
// the cause; the series stops there, or with keep_going goes on and ends with
// an "end" that adds no bar. A stop signal ends the build under way, which
// records nothing, and the series with it.
SERIES_RESULT run_series(const SERIES_PLAN& plan, PROGRESS& progress, std::ostream& messages);
