#pragma once
// The runs of advzorv that record a series: the documents are written by the
// tool alone, one whole run per event.

#include <string>

// The four files every run of the tool names.
struct SERIES_FILES {
  std::string advice;
  std::string results;
  std::string link_info;
  std::string linker_options;
};

// One benchmark event as the tool takes it.
struct TOOL_EVENT {
  std::string name;           // "start", "append" or "end"
  std::string option;         // the varied option in long form
  std::string value;          // the value of this build; unused by "start"
  bool without_link = false;  // names no link information, so the run adds no bar
};

// The advzorv that lives beside this program (in the same directory).
std::string advzorv_beside_this_program();

// Runs advzorv for the event and gives its exit status; its messages go to
// this process's standard error. A stop signal doesn't end the run. "start"
// names an empty command file while the build hasn't yet written its own.
// Throws std::system_error when no child can be made.
int run_tool(const std::string& advzorv, const SERIES_FILES& files, const TOOL_EVENT& event);
