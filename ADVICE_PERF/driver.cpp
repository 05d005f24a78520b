#include "ADVICE_PERF/driver.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/arg_stream.h"
#include "ADVICE_PERF/document_lock.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"
#include "ADVICE_PERF/signals.h"
#include "DIAG/diag.h"
#include "UTIL/fatal_error.h"
#include "options/optobj.h"
#include "options/optobj_shell.h"

#include <cxxabi.h>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <typeinfo>

int32_t sys_argc = 0;
char** sys_argv = nullptr;
const char* tool_path = nullptr;
option_obj* cmdline_options = nullptr;
option_obj_shell* global_options = nullptr;

void print_usage(const char* program_name) {
  std::printf(
      "Usage: %s --advice_file=path_to/advice.xml\n"
      "           --benchmarks_file=path_to/perf_results.xml \n"
      "           --linker_options_file=options \n"
      "           --xml_link_info=path_to/xml_link_info.xml     \n"
      "           [ --benchmark:event=start/append/end   \n"
      "             --benchmark:option=option_being_varied  \n"
      "             --benchmark:option_value=value_option_being_varied ]\n\n",
      program_name);
  std::printf("This tool is designed to be invoked by Lumora IDE to help populate Lumora views.\n");
  std::exit(1);
}

namespace {

[[noreturn]] void abort_run(const char* message) {
  std::fputs(message, stderr);
  std::exit(1);
}

[[noreturn]] void unrecognized_option(const char* token) {
  std::fprintf(stderr, ">> Unrecognized Option %s...Abort\n", token);
  std::exit(1);
}

// Sends one token to the option object it belongs to: the build's shell
// options while a command file is open, the tool's own options otherwise.
void route_token(const char* token) {
  if (token[0] != '-') {
    // The errno text belongs to no failure of the token: it is whatever the
    // last failing library call left. The line has always carried it, and the
    // environment's readers expect it, so it stays.
    std::fprintf(stderr, ">> Ignoring non-option input: %s %s\n", std::strerror(errno), token);
    return;
  }
  if (cmd_file) {
    // Everything behind --run_linker in a command file is the linker's.
    if (global_options->option_state[option_obj_shell::RUN_LINKER] != 0) return;
    if (!global_options->process_option(token + 1, nullptr)) unrecognized_option(token);
    return;
  }
  if (!cmdline_options->process_option(token + 1, nullptr)) unrecognized_option(token);
}

void build_option_objects(char* program) {
  cmdline_options = new option_obj(true);
  if (program) option_obj::executable_name = program;
  option_obj::next_arg = next_arg;
  option_obj::open_cmd_file = open_cmd_file;
  option_obj::print_usage = print_usage;

  global_options = new option_obj_shell(true);
  if (program) option_obj_shell::executable_name = program;
  option_obj_shell::next_arg = next_arg;
}

// The four options every run needs, in the order they are checked.
void check_required_options() {
  const struct {
    option_obj::option_id id;
    const char* message;
  } required[] = {
      {option_obj::ADVICE_FILE, ">> Aborting - specify xml advice file --advice_file=file\n"},
      {option_obj::BENCHMARKS_FILE,
       ">> Aborting - specify xml performance results file --benchmarks_file=file\n"},
      {option_obj::XML_LINK_INFO, ">> Aborting - specify xml link file --xml_link_info=file\n"},
      {option_obj::LINKER_OPTIONS_FILE,
       ">> Aborting - specify Lumora options with --linker_options_file=file\n"},
  };
  for (const auto& option : required)
    if (cmdline_options->option_state[option.id] == 0) abort_run(option.message);
}

// How long a run waits for another run that shares its documents.
constexpr std::chrono::seconds lock_patience(60);

// Reads the link information, then both documents, has the documents
// updated and writes them: the results document first, then the advice
// document. The documents stay locked from before their reading until after
// their writing; the link information, which no run writes, is read before,
// so that runs sharing the documents parse their link files side by side.
// The objects go in reverse order of building.
void update_documents() {
  const char* advice_file = cmdline_options->getstrarg(option_obj::ADVICE_FILE, 0);
  const char* results_file = cmdline_options->getstrarg(option_obj::BENCHMARKS_FILE, 0);
  auto link_data =
      std::make_unique<LINK_DATA>(cmdline_options->getstrarg(option_obj::XML_LINK_INFO, 0));
  const DOCUMENT_LOCKS locks({advice_file, results_file}, lock_mode::exclusive, lock_patience);
  if (!locks.busy_directory().empty()) {
    std::fprintf(stderr,
                 ">> Aborting - another run kept the documents in %s locked for %lld seconds\n",
                 locks.busy_directory().c_str(), static_cast<long long>(lock_patience.count()));
    std::exit(1);
  }
  auto advice = std::make_unique<ADVICE>(advice_file, *link_data);
  auto perf_results = std::make_unique<PERF_RESULTS>(results_file, *link_data, advice.get());
  // Advice entries are texts the diagnostics build as single lines, so
  // wrapping stops here; messages of the reading above still wrap.
  DIAGNOSTIC::wrap_enabled_m = false;
  advice->update();
  perf_results->update();
  perf_results->output();
  advice->output();
}

void run(char** argv) {
  build_option_objects(argv[0]);
  while (const char* token = next_arg())
    route_token(token);
  global_options->post_process_option_depends();
  cmdline_options->post_process_option_depends();
  check_required_options();
  update_documents();
}

std::string demangled_type_name(const std::exception& e) {
  const char* raw = typeid(e).name();
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(raw, nullptr, nullptr, &status), &std::free);
  if (status == 0 && name) return name.get();
  return raw[0] == '*' ? raw + 1 : raw;
}

}  // namespace

int advzorv_main(int argc, char** argv) {
  sys_argc = argc;
  sys_argv = argv;
  tool_path = argv[0];
  install_signal_handlers();
  if (argc == 1) print_usage(argv[0]);

  try {
    run(argv);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "Unhandled exception of type %s: %s\n\n", demangled_type_name(e).c_str(),
                 e.what());
    print_support_message();
    return 1;
  } catch (...) {
    std::fprintf(stderr, "Unhandled exception not derived from std::exception\n\n");
    print_support_message();
    return 1;
  }
  return DIAGNOSTIC::error_count_m > 0 ? 1 : 0;
}
