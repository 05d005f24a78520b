#include "programs/series/series.h"

#include "programs/series/build_step.h"
#include "programs/series/link_check.h"
#include "programs/series/progress.h"
#include "programs/series/stop_signals.h"

#include <optional>
#include <ostream>

namespace {

// The lines of a failed build's log shown with its message.
constexpr unsigned shown_log_lines = 10;

// Why the build of step gives no bar, or nothing when the tool may record it.
std::optional<std::string> step_problem(const SERIES_PLAN& plan, const STEP_SETTING& step,
                                        const CHILD_END& build, const std::string& log,
                                        const std::optional<FILE_STAMP>& link_before) {
  if (build.status != 0)
    return "the build at " + step.setting + " failed with status " + std::to_string(build.status) +
           ": no bar; the end of its log " + log + ":\n" + log_tail(log, shown_log_lines);
  return missing_bar_reason(plan.files.link_info, link_before, plan.files.results, step.setting);
}

bool record(const SERIES_PLAN& plan, const TOOL_EVENT& event, std::ostream& messages) {
  const int status = run_tool(plan.advzorv, plan.files, event);
  if (status == 0) return true;
  messages << "advzorv-series: advzorv exited with status " << status << " on the event "
           << event.name << (event.value.empty() ? "" : " at " + event.option + "=" + event.value)
           << "\n";
  return false;
}

}  // namespace

SERIES_RESULT run_series(const SERIES_PLAN& plan, PROGRESS& progress, std::ostream& messages) {
  SERIES_RESULT result;
  const std::string& option = plan.option.long_form;
  const std::vector<std::string>& values = plan.option.values;
  if (stop_signal() != 0) {
    result.stop_signal = stop_signal();
    return result;
  }
  result.started = record(plan, {"start", option, "", false}, messages);
  if (!result.started) {
    result.failed = true;
    return result;
  }
  std::size_t index = 0;
  bool end_sent = false;  // the last build went to the tool with the event end
  for (; index < values.size() && stop_signal() == 0; ++index) {
    const STEP_SETTING step{option, values[index], setting_text(option, values[index])};
    const std::string log = build_log_path(plan.log_dir, step);
    const std::optional<FILE_STAMP> link_before = file_stamp(plan.files.link_info);
    progress.begin(index, step.setting);
    const CHILD_END build = run_build(plan.command, step, log, [&] { progress.tick(); });
    if (build.stopped) {
      progress.end("stopped, nothing recorded");
      break;
    }
    const std::optional<std::string> problem = step_problem(plan, step, build, log, link_before);
    progress.end(build.status != 0 ? "build failed" : problem ? "no bar" : "built");
    bool sent = false;
    if (problem) {
      messages << "advzorv-series: " << *problem << "\n";
    } else {
      const bool last = index + 1 == values.size();
      end_sent = last;
      sent = record(plan, {last ? "end" : "append", option, step.value, false}, messages);
      if (sent) result.recorded.push_back(step.value);
      result.ended = last && sent;
    }
    if (!sent) {
      result.failed = true;
      if (!plan.keep_going) break;
    }
  }
  result.stop_signal = stop_signal();
  // A series kept going through all its values ends even when its last build
  // gave no bar: the end event colours the chart and leaves the recommendation.
  if (plan.keep_going && index == values.size() && !end_sent && result.stop_signal == 0)
    result.ended = record(plan, {"end", option, values.back(), true}, messages);
  return result;
}
