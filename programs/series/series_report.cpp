#include "programs/series/series_report.h"

#include "ADVICE_PERF/file_replace.h"
#include "programs/views/html_report.h"
#include "programs/views/json_report.h"
#include "programs/views/markdown_report.h"
#include "programs/views/report_documents.h"
#include "programs/views/terminal_report.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <ostream>
#include <sstream>
#include <vector>

#include <unistd.h>

namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : ", ") + word;
  return text;
}

bool colour_wanted() {
  return isatty(STDOUT_FILENO) && std::getenv("NO_COLOR") == nullptr;
}

std::vector<std::string> values_without_bar(const PERF_RESULTS& results,
                                            const std::vector<std::string>& values) {
  std::vector<std::string> missing;
  for (const std::string& value : values)
    if (!results.get_bars().contains(value)) missing.push_back(value);
  return missing;
}

void write_exports(const SERIES_EXPORTS& exports, const ADVICE& advice,
                   const PERF_RESULTS& results) {
  if (!exports.html.empty()) write_html_report(exports.html, advice, results);
  if (!exports.json.empty()) write_json_file(exports.json, documents_json(advice, results));
  if (!exports.markdown.empty()) {
    std::ostringstream text;
    print_markdown(text, advice, results);
    replace_file(exports.markdown, text.str());
  }
}

}  // namespace

bool show_series_results(const SERIES_PLAN& plan, const SERIES_RESULT& result,
                         const SERIES_EXPORTS& exports, std::ostream& report,
                         std::ostream& messages) {
  try {
    const REPORT_DOCUMENTS documents =
        read_documents(plan.files.advice.c_str(), plan.files.results.c_str());
    print_report(report, *documents.advice, *documents.results, colour_wanted());
    write_exports(exports, *documents.advice, *documents.results);
    const std::vector<std::string> missing =
        values_without_bar(*documents.results, plan.option.values);
    if (!result.ended || missing.empty()) return true;
    messages << "advzorv-series: the chart holds no bar for " << plan.option.long_form << "="
             << joined(missing) << "\n";
  } catch (const std::exception& e) {
    messages << "advzorv-series: " << e.what() << "\n";
  }
  return false;
}

void tell_stop(const SERIES_PLAN& plan, const SERIES_RESULT& result, std::ostream& messages) {
  messages << "advzorv-series: stopped by " << (result.stop_signal == SIGINT ? "SIGINT" : "SIGTERM")
           << "; "
           << (result.recorded.empty()
                   ? std::string("nothing recorded")
                   : "recorded " + plan.option.long_form + "=" + joined(result.recorded))
           << "\n";
}
