// advzorv-report: shows the advice document and the performance results
// document of advzorv in the terminal, as an HTML page, as JSON or as Markdown;
// shows the code size of a link by section and compares two links. It only
// reads what it shows, and its exit status can gate a CI job.
#include "UTIL/version.h"
#include "programs/report/report_outputs.h"
#include "programs/views/diff_report.h"
#include "programs/views/html_report.h"
#include "programs/views/json_report.h"
#include "programs/views/markdown_report.h"
#include "programs/views/report_documents.h"
#include "programs/views/report_gates.h"
#include "programs/views/sizes_report.h"
#include "programs/views/terminal_report.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr const char* usage =
    "Usage: advzorv-report [OPTIONS] [--] ADVICE RESULTS\n"
    "       advzorv-report sizes [--json[=FILE]] [--markdown[=FILE]] [--] LINK_INFO\n"
    "       advzorv-report diff [OPTIONS] [--] OLD_LINK_INFO NEW_LINK_INFO\n"
    "\n"
    "Shows the advice document ADVICE and the performance results document\n"
    "RESULTS that advzorv keeps: the current settings, each advice entry with\n"
    "the value it recommends, and the chart of the last benchmark series.\n"
    "'sizes' shows every section (logical group) of a link information file,\n"
    "whether it counts toward the code size and why not, and the code size.\n"
    "'diff' compares two link information files section by section.\n"
    "\n"
    "Options of the documents' report:\n"
    "  --html FILE, --html=FILE  write the report as an XHTML page to FILE\n"
    "  --check                   exit with status 1 when the chart holds no bar,\n"
    "                            no bar linked without errors, or the advice\n"
    "                            document holds no entry\n"
    "  --color=WHEN              colour the terminal report: auto (on a terminal\n"
    "                            without NO_COLOR and with TERM not dumb), always\n"
    "                            or never; auto when not given\n"
    "Options of every form:\n"
    "  --json[=FILE]             JSON instead, to standard output or to FILE\n"
    "  --markdown[=FILE]         GitHub-flavoured Markdown instead, likewise\n"
    "Options of 'diff':\n"
    "  --fail-over=BYTES         exit with status 1 when the new code size is\n"
    "                            over BYTES\n"
    "  --fail-growth=PERCENT     exit with status 1 when the code size grew by\n"
    "                            more than PERCENT (a decimal, such as 0.5)\n"
    "\n"
    "  --help, -h                show this text\n"
    "  --version                 show the version\n"
    "  --                        ends the options\n"
    "\n"
    "An output file must not be -, an input or another output. JSON and\n"
    "Markdown can be asked for together, and with --html, when at most one\n"
    "of them goes to standard output.\n"
    "\n"
    "Exit status: 0 when the views were made and every gate passed; 1 when a\n"
    "gate (--check, --fail-over, --fail-growth) failed; 2 for wrong arguments,\n"
    "a document or link file that is missing, unreadable or of the wrong kind,\n"
    "and an output that can't be written.\n";

constexpr int gate_failed = 1, trouble = 2;

// The views a form can show besides its terminal table.
struct VIEW_OPTIONS {
  VIEW_TARGET json{"--json", ""}, markdown{"--markdown", ""};
};

// What the command line asks for; sizes and diff are its subcommands.
struct COMMAND_LINE {
  bool help = false;
  VIEW_OPTIONS documents_views, sizes_views, diff_views;
  VIEW_TARGET html{"--html", ""};
  bool check = false;
  std::string color = "auto";
  std::vector<std::string> documents;
  std::vector<std::string> link_files;
  std::string fail_over, fail_growth;
  CLI::App* sizes = nullptr;
  CLI::App* diff = nullptr;
};

void add_common(CLI::App& app, COMMAND_LINE& line, VIEW_OPTIONS& views) {
  app.set_help_flag();
  app.add_flag("-h,--help", line.help);
  const std::string sentinel = "{" + to_standard_output + "}";
  app.add_flag("--json" + sentinel, views.json.target);
  app.add_flag("--markdown" + sentinel, views.markdown.target);
}

// The command line's parser; line receives what it finds.
void define(CLI::App& app, COMMAND_LINE& line) {
  add_common(app, line, line.documents_views);
  app.set_version_flag("--version", std::string("advzorv-report ") + version_number());
  app.add_option("--html", line.html.target);
  app.add_flag("--check", line.check);
  app.add_option("--color", line.color)->check(CLI::IsMember({"auto", "always", "never"}));
  app.add_option("documents", line.documents);
  line.sizes = app.add_subcommand("sizes");
  add_common(*line.sizes, line, line.sizes_views);
  line.sizes->add_option("link_files", line.link_files);
  line.diff = app.add_subcommand("diff");
  add_common(*line.diff, line, line.diff_views);
  line.diff->add_option("--fail-over", line.fail_over);
  line.diff->add_option("--fail-growth", line.fail_growth);
  line.diff->add_option("link_files", line.link_files);
}

bool colour_wanted(const std::string& when) {
  if (when != "auto") return when == "always";
  const char* term = std::getenv("TERM");
  return isatty(STDOUT_FILENO) && std::getenv("NO_COLOR") == nullptr &&
         !(term && std::string(term) == "dumb");
}

template <typename Print>
std::string text_of(Print print) {
  std::ostringstream out;
  print(out);
  return out.str();
}

std::string json_of(const nlohmann::json& value) {
  return text_of([&](std::ostream& out) { write_json(out, value); });
}

// Writes the JSON and Markdown views that were asked for; the terminal view
// goes to standard output when no view was asked for (other_view: the page).
template <typename Terminal, typename Markdown>
void show(const VIEW_OPTIONS& views, const nlohmann::json& json, Terminal terminal,
          Markdown markdown, bool other_view = false) {
  if (views.json.wanted()) emit(views.json, json_of(json));
  if (views.markdown.wanted()) emit(views.markdown, text_of(markdown));
  if (!views.json.wanted() && !views.markdown.wanted() && !other_view)
    std::cout << text_of(terminal);
}

int report_failures(const std::vector<std::string>& failures) {
  for (const std::string& failure : failures)
    std::fprintf(stderr, "advzorv-report: %s\n", failure.c_str());
  return failures.empty() ? 0 : gate_failed;
}

int run_documents(const COMMAND_LINE& line) {
  if (line.documents.size() != 2)
    throw usage_error("expects two documents, ADVICE and RESULTS");
  const VIEW_OPTIONS& views = line.documents_views;
  check_targets({line.html, views.json, views.markdown}, line.documents);
  const REPORT_DOCUMENTS documents =
      read_documents(line.documents[0].c_str(), line.documents[1].c_str());
  const ADVICE& advice = *documents.advice;
  const PERF_RESULTS& results = *documents.results;
  if (line.html.wanted()) write_html_report(line.html.target, advice, results);
  const bool colour = colour_wanted(line.color);
  show(
      views, documents_json(advice, results),
      [&](std::ostream& out) { print_report(out, advice, results, colour); },
      [&](std::ostream& out) { print_markdown(out, advice, results); }, line.html.wanted());
  return line.check ? report_failures(document_check_failures(advice, results)) : 0;
}

int run_sizes(const COMMAND_LINE& line) {
  if (line.link_files.size() != 1) throw usage_error("sizes expects one link information file");
  const VIEW_OPTIONS& views = line.sizes_views;
  const std::string& file = line.link_files[0];
  check_targets({views.json, views.markdown}, line.link_files);
  const auto link = read_link_file(file.c_str());
  const SIZE_TABLE table = size_table(*link);
  show(
      views, sizes_json(table), [&](std::ostream& out) { print_sizes(out, table, file); },
      [&](std::ostream& out) { print_sizes_markdown(out, table, file); });
  return 0;
}

uint64_t byte_budget(const std::string& text) {
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size())
    throw usage_error("--fail-over takes a number of bytes, not '" + text + "'");
  return value;
}

SIZE_BUDGET size_budget(const COMMAND_LINE& line) {
  SIZE_BUDGET budget;
  if (!line.fail_over.empty()) budget.max_bytes = byte_budget(line.fail_over);
  if (!line.fail_growth.empty()) {
    budget.max_growth = parse_growth_limit(line.fail_growth);
    if (!budget.max_growth)
      throw usage_error("--fail-growth takes a percentage such as 2 or 0.5, not '" +
                        line.fail_growth + "'");
  }
  return budget;
}

int run_diff(const COMMAND_LINE& line) {
  if (line.link_files.size() != 2)
    throw usage_error("diff expects two link information files, OLD and NEW");
  const VIEW_OPTIONS& views = line.diff_views;
  const SIZE_BUDGET budget = size_budget(line);
  check_targets({views.json, views.markdown}, line.link_files);
  const std::string &old_file = line.link_files[0], &new_file = line.link_files[1];
  const auto old_link = read_link_file(old_file.c_str());
  const auto new_link = read_link_file(new_file.c_str());
  const SIZE_DIFF diff = size_diff(*old_link, *new_link);
  show(
      views, diff_json(diff),
      [&](std::ostream& out) { print_diff(out, diff, old_file, new_file); },
      [&](std::ostream& out) { print_diff_markdown(out, diff, old_file, new_file); });
  return report_failures(size_gate_failures(diff, budget));
}

int run(const COMMAND_LINE& line) {
  const bool subcommand = line.sizes->parsed() || line.diff->parsed();
  if (subcommand && (!line.documents.empty() || line.check || line.html.wanted() ||
                     line.documents_views.json.wanted() || line.documents_views.markdown.wanted()))
    throw usage_error("the options of the documents' report go without sizes and diff");
  if (line.sizes->parsed()) return run_sizes(line);
  if (line.diff->parsed()) return run_diff(line);
  return run_documents(line);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app;
  COMMAND_LINE line;
  define(app, line);
  try {
    app.parse(argc, argv);
    if (line.help) {
      std::fputs(usage, stdout);
      return 0;
    }
    return run(line);
  } catch (const CLI::Success& done) {
    return app.exit(done);
  } catch (const CLI::ParseError& e) {
    std::fprintf(stderr, "advzorv-report: %s; see --help\n", e.what());
  } catch (const usage_error& e) {
    std::fprintf(stderr, "advzorv-report: %s; see --help\n", e.what());
  } catch (const std::exception& e) {
    std::fprintf(stderr, "advzorv-report: %s\n", e.what());
  }
  return trouble;
}
