// advzorv-report: shows the advice document and the performance results
// document of advzorv in the terminal or as an HTML page. It only reads them.
#include "programs/views/html_report.h"
#include "programs/views/report_documents.h"
#include "programs/views/terminal_report.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr const char* usage =
    "Usage: advzorv-report [--html FILE] ADVICE RESULTS\n"
    "\n"
    "Shows the advice document ADVICE and the performance results document\n"
    "RESULTS that advzorv keeps: the current settings, each advice entry with\n"
    "the value it recommends, and the chart of the last benchmark series.\n"
    "\n"
    "Without --html the report goes to standard output, in colour when that is\n"
    "a terminal and NO_COLOR is not set. With --html FILE it is written to FILE\n"
    "instead, as one self-contained XHTML page with the chart as an SVG image.\n"
    "\n"
    "Options:\n"
    "  --html FILE, --html=FILE  write the report as an HTML page to FILE\n"
    "  --help, -h                show this text\n"
    "\n"
    "Exit status: 0 when the report was made; 1 when a document is missing or\n"
    "unreadable, the page can't be written, or the arguments are wrong.\n";

struct arguments {
  std::string html_file;
  std::vector<const char*> documents;
};

[[noreturn]] void fail(const std::string& message) {
  std::fprintf(stderr, "advzorv-report: %s\n", message.c_str());
  std::exit(1);
}

arguments parse(int argc, char** argv) {
  arguments args;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::fputs(usage, stdout);
      std::exit(0);
    } else if (arg == "--html") {
      if (i + 1 == argc) fail("--html needs a FILE; see --help");
      args.html_file = argv[++i];
    } else if (arg.starts_with("--html=")) {
      args.html_file = arg.substr(7);
    } else if (arg.starts_with("-") && arg != "-") {
      fail("unknown option " + arg + "; see --help");
    } else {
      args.documents.push_back(argv[i]);
    }
  }
  if (args.documents.size() != 2) fail("expects two documents, ADVICE and RESULTS; see --help");
  return args;
}

bool colour_wanted() {
  return isatty(STDOUT_FILENO) && std::getenv("NO_COLOR") == nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  const arguments args = parse(argc, argv);
  try {
    const REPORT_DOCUMENTS documents = read_documents(args.documents[0], args.documents[1]);
    if (args.html_file.empty())
      print_report(std::cout, *documents.advice, *documents.results, colour_wanted());
    else
      write_html_report(args.html_file, *documents.advice, *documents.results);
  } catch (const std::exception& e) {
    fail(e.what());
  }
  return 0;
}
