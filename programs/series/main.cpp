// advzorv-series: runs a benchmark series over one compiler-shell option
// without the development environment. It builds once per value with the
// user's build command, has advzorv record each build, says what advzorv
// would pass over in silence, and shows the chart and the recommendation.
#include "programs/series/progress.h"
#include "programs/series/series.h"
#include "programs/series/stop_signals.h"
#include "ADVICE_PERF/file_replace.h"
#include "programs/views/html_report.h"
#include "programs/views/json_report.h"
#include "programs/views/markdown_report.h"
#include "programs/views/report_documents.h"
#include "programs/views/terminal_report.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// The files that take the views of the documents, "" for those not asked for.
struct exports {
  std::string html;
  std::string json;
  std::string markdown;
};

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : ", ") + word;
  return text;
}

bool colour_wanted() {
  return isatty(STDOUT_FILENO) && std::getenv("NO_COLOR") == nullptr;
}

// The values that have no bar in the chart.
std::vector<std::string> values_without_bar(const PERF_RESULTS& results,
                                            const std::vector<std::string>& values) {
  std::vector<std::string> missing;
  for (const std::string& value : values)
    if (!results.get_bars().contains(value)) missing.push_back(value);
  return missing;
}

// Writes the views asked for, as advzorv-report writes them.
void write_exports(const exports& out, const ADVICE& advice, const PERF_RESULTS& results) {
  if (!out.html.empty()) write_html_report(out.html, advice, results);
  if (!out.json.empty()) write_json_file(out.json, documents_json(advice, results));
  if (!out.markdown.empty()) {
    std::ostringstream text;
    print_markdown(text, advice, results);
    replace_file(out.markdown, text.str());
  }
}

// Prints the report of both documents, checks that the chart of a whole
// series holds a bar per value and writes the exports; false on a problem.
bool show_results(const SERIES_PLAN& plan, const SERIES_RESULT& result, const exports& out) {
  try {
    const REPORT_DOCUMENTS documents =
        read_documents(plan.files.advice.c_str(), plan.files.results.c_str());
    print_report(std::cout, *documents.advice, *documents.results, colour_wanted());
    write_exports(out, *documents.advice, *documents.results);
    const std::vector<std::string> missing =
        values_without_bar(*documents.results, plan.option.values);
    if (result.ended && !missing.empty()) {
      std::cerr << "advzorv-series: the chart holds no bar for " << plan.option.long_form << "="
                << joined(missing) << "\n";
      return false;
    }
    return true;
  } catch (const std::exception& e) {
    std::cerr << "advzorv-series: " << e.what() << "\n";
    return false;
  }
}

}  // namespace

int main(int argc, char** argv) {
  hold_stop_signals();
  CLI::App app{
      "Runs a benchmark series: builds once per value of a compiler-shell option with COMMAND,\n"
      "has advzorv record each build (start, append, end) and shows the chart and the\n"
      "recommendation. In COMMAND, {value}, {option} and {setting} stand for the value, the\n"
      "option and both as --option=value; the build also finds them in ADVZORV_VALUE,\n"
      "ADVZORV_OPTION and ADVZORV_SETTING.",
      "advzorv-series"};
  SERIES_PLAN plan;
  std::string spelling;
  std::vector<std::string> values;
  exports out;
  plan.advzorv = advzorv_beside_this_program();
  app.add_option("--option", spelling, "the compiler-shell option to vary, e.g. --opt_for_speed")
      ->required();
  app.add_option("--values", values,
                 "its values, comma-separated; default: all that the shell's option table lists")
      ->delimiter(',');
  app.add_option("--advice_file", plan.files.advice, "the advice document")->required();
  app.add_option("--benchmarks_file", plan.files.results, "the performance results document")
      ->required();
  app.add_option("--xml_link_info", plan.files.link_info, "the link information the build writes")
      ->required();
  app.add_option("--linker_options_file", plan.files.linker_options,
                 "the command file of the build's compiler-shell options")
      ->required();
  app.add_flag("--keep-going", plan.keep_going,
               "go on after a build that gives no bar (the status is still 1)");
  app.add_option("--html", out.html, "write the report as an XHTML page to FILE");
  app.add_option("--export-json", out.json, "write both documents as JSON to FILE");
  app.add_option("--export-markdown", out.markdown, "write both documents as Markdown to FILE");
  app.add_option("--log-dir", plan.log_dir,
                 "where the build logs go (default: advzorv-series-logs beside the results)");
  app.add_option("--advzorv", plan.advzorv, "the advzorv to run (default: the one beside this)");
  app.add_option("command", plan.command, "the build command, after --")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int status = app.exit(e);
    return status == 0 ? 0 : 1;
  }

  try {
    plan.option = varied_option(spelling, values);
  } catch (const series_usage_error& e) {
    std::cerr << "advzorv-series: " << e.what() << "\n";
    return 1;
  }
  if (plan.log_dir.empty())
    plan.log_dir =
        (std::filesystem::path(plan.files.results).parent_path() / "advzorv-series-logs").string();
  std::error_code error;
  std::filesystem::create_directories(plan.log_dir, error);
  if (error) {
    std::cerr << "advzorv-series: cannot make the log directory " << plan.log_dir << ": "
              << error.message() << "\n";
    return 1;
  }

  PROGRESS progress(std::cerr, live_progress_wanted(), plan.option.values.size());
  SERIES_RESULT result;
  try {
    result = run_series(plan, progress, std::cerr);
  } catch (const std::exception& e) {
    std::cerr << "advzorv-series: " << e.what() << "\n";
    return 1;
  }
  const bool shown = show_results(plan, result, out);
  if (result.stop_signal != 0) {
    std::cerr << "advzorv-series: stopped by "
              << (result.stop_signal == SIGINT ? "SIGINT" : "SIGTERM") << "; "
              << (result.recorded.empty()
                      ? std::string("nothing recorded")
                      : "recorded " + plan.option.long_form + "=" + joined(result.recorded))
              << "\n";
    return 128 + result.stop_signal;
  }
  return result.failed || !shown ? 1 : 0;
}
