// advzorv-series: runs a benchmark series over one compiler-shell option
// without the development environment. It builds once per value with the
// user's build command, has advzorv record each build, says what advzorv
// would pass over in silence, and shows the chart and the recommendation.
#include "programs/series/progress.h"
#include "programs/series/series.h"
#include "programs/series/series_report.h"
#include "programs/series/stop_signals.h"
#include "UTIL/version.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr const char* description =
    "Runs a benchmark series: builds once per value of a compiler-shell option with COMMAND,\n"
    "has advzorv record each build (start, append, end) and shows the chart and the\n"
    "recommendation. In COMMAND, {value}, {option} and {setting} stand for the value, the\n"
    "option and both as --option=value; the build also finds them in ADVZORV_VALUE,\n"
    "ADVZORV_OPTION and ADVZORV_SETTING.";

struct COMMAND_LINE {
  SERIES_PLAN plan;
  std::string spelling;             // of the option to vary
  std::vector<std::string> values;  // as given; empty for the table's
  SERIES_EXPORTS exports;
};

void define(CLI::App& app, COMMAND_LINE& line) {
  SERIES_PLAN& plan = line.plan;
  app.add_option("--option", line.spelling,
                 "the compiler-shell option to vary, e.g. --opt_for_speed")
      ->required();
  app.add_option("--values", line.values,
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
  app.add_option("--html", line.exports.html, "write the report as an XHTML page to FILE");
  app.add_option("--export-json", line.exports.json, "write both documents as JSON to FILE");
  app.add_option("--export-markdown", line.exports.markdown,
                 "write both documents as Markdown to FILE");
  app.add_option("--log-dir", plan.log_dir,
                 "where the build logs go (default: advzorv-series-logs beside the results)");
  app.add_option("--advzorv", plan.advzorv, "the advzorv to run (default: the one beside this)");
  app.add_option("command", plan.command, "the build command, after --")->required();
}

// Makes the log directory, by default beside the results document; throws
// std::runtime_error when that fails.
void make_log_dir(SERIES_PLAN& plan) {
  if (plan.log_dir.empty())
    plan.log_dir =
        (std::filesystem::path(plan.files.results).parent_path() / "advzorv-series-logs").string();
  std::error_code error;
  std::filesystem::create_directories(plan.log_dir, error);
  if (error)
    throw std::runtime_error("cannot make the log directory " + plan.log_dir + ": " +
                             error.message());
}

}  // namespace

int main(int argc, char** argv) {
  hold_stop_signals();
  CLI::App app{description, "advzorv-series"};
  COMMAND_LINE line;
  line.plan.advzorv = advzorv_beside_this_program();
  define(app, line);
  app.set_version_flag("--version", std::string("advzorv-series ") + version_number());
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : 2;
  }
  SERIES_PLAN& plan = line.plan;
  SERIES_RESULT result;
  try {
    plan.option = varied_option(line.spelling, line.values);
    make_log_dir(plan);
    PROGRESS progress(std::cerr, live_progress_wanted(), plan.option.values.size());
    result = run_series(plan, progress, std::cerr);
  } catch (const std::exception& e) {
    std::cerr << "advzorv-series: " << e.what() << "\n";
    return 1;
  }
  const bool shown =
      result.started && show_series_results(plan, result, line.exports, std::cout, std::cerr);
  if (result.stop_signal != 0) {
    tell_stop(plan, result, std::cerr);
    return 128 + result.stop_signal;
  }
  return result.failed || !shown ? 1 : 0;
}
