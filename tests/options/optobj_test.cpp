// The tool's own option table.
#include <unistd.h>

#include <cstdio>

#include "options/optobj.h"
#include "test_family.h"

namespace {

using O = option_obj;
using ::testing::ExitedWithCode;

std::vector<std::string> opened;
void record_open(const char* path) {
  opened.push_back(path ? path : "(null)");
}
void usage_to_stdout(const char* program) {
  std::printf("USAGE OF %s\n", program);
}

class tool_options : public options_fixture {
 protected:
  void SetUp() override {
    options_fixture::SetUp();
    O::next_arg = scripted_next_arg;
    O::open_cmd_file = record_open;
    O::print_usage = usage_to_stdout;
    O::executable_name = "advzorv";
    opened.clear();
  }
  O opts{true};
  int run(const char* text) { return opts.process_option(text, nullptr); }
};

TEST_F(tool_options, OnlyTheElevenLongAndThreeShortSpellingsExist) {
  for (const char* unknown :
       {"-tool_version", "-toolversion=1", "-display_error_number", "-ADVICE_FILE=x", "-advice",
        "-help2", "-benchmarks", "-benchmark", "-benchmark:option_", "-benchmark:option_x",
        "-debug_trace", "-dump_options", "x", "V"})
    EXPECT_EQ(run(unknown), 0) << unknown;
  for (int id = 0; id < O::OPTION_COUNT; ++id)
    EXPECT_EQ(opts.option_state[id], 0);
}

TEST_F(tool_options, BenchmarkEventTakesItsWordsInAnyCase) {
  EXPECT_EQ(run("-benchmark:event=Append"), 1);
  EXPECT_EQ(opts.getnumarg(O::BENCHMARK__EVENT, 0), O::ITEM_BENCHMARK__EVENT_APPEND);
  EXPECT_EQ(run("-benchmark:event=start"), 1);
  EXPECT_EQ(opts.getnumarg(O::BENCHMARK__EVENT, 0), 3);
  EXPECT_STREQ(opts.getstrarg(O::BENCHMARK__EVENT, 0), "start");
  char* text = opts.export_option(O::BENCHMARK__EVENT, 0);
  EXPECT_STREQ(text, "--benchmark:event=start");
  std::free(text);
  EXPECT_EXIT(run("-benchmark:event=stop"), ExitedWithCode(1),
              "bad argument to option --benchmark:event: should be one of \\{start,append,end\\}");
  EXPECT_EXIT(run("-benchmark:event"), ExitedWithCode(1),
              "option --benchmark:event is missing its parameter");
}

TEST_F(tool_options, ShorterBenchmarkOptionAndItsLongerSibling) {
  EXPECT_EQ(run("-benchmark:optionx"), 1);
  EXPECT_STREQ(opts.getstrarg(O::BENCHMARK__OPTION, 0), "x");
  EXPECT_EQ(run("-benchmark:option=--opt_level"), 1);
  EXPECT_STREQ(opts.getstrarg(O::BENCHMARK__OPTION, 0), "--opt_level");
  EXPECT_EQ(run("-benchmark:option_value=3"), 1);
  EXPECT_STREQ(opts.getstrarg(O::BENCHMARK__OPTION_VALUE, 0), "3");
  EXPECT_EQ(run("-benchmarks_file=perf.xml"), 1);
  EXPECT_STREQ(opts.getstrarg(O::BENCHMARKS_FILE, 0), "perf.xml");
}

TEST_F(tool_options, AdviceFileShowsAdviceAndRecordsTheErrorNumberRow) {
  run("-advice_file=a");
  script_tokens({"-b"});
  run("-advice_file");  // the next token is the argument, dash or not
  EXPECT_STREQ(opts.getstrarg(O::ADVICE_FILE, 0), "-b");
  EXPECT_EQ(opts.option_state[O::ADVICE_FILE], 2);
  int entries = 0;
  for (const auto& entry : opts.history)
    entries += entry.first == O::ADVICE_FILE;
  EXPECT_EQ(entries, 1);
  EXPECT_TRUE(DIAGNOSTIC::advice_m);
  EXPECT_EQ(opts.option_state[O::DISPLAY_ERROR_NUMBER], 2);
  EXPECT_EQ(opts.option_parsed[O::DISPLAY_ERROR_NUMBER], 0u);
  EXPECT_EXIT(run("-advice_file="), ExitedWithCode(1),
              "option --advice_file is missing its parameter 'path_and_filename'");
}

TEST_F(tool_options, DiagWrapOffOrBareStopsWrapping) {
  DIAGNOSTIC::wrap_enabled_m = true;
  run("-diag_wrap=on");
  EXPECT_TRUE(DIAGNOSTIC::wrap_enabled_m);
  for (const char* text : {"-diag_wrap", "-diag_wrap=off", "-diag_wrapoff", "-diag_wrap=OFF"}) {
    DIAGNOSTIC::wrap_enabled_m = true;
    EXPECT_EQ(run(text), 1);
    EXPECT_FALSE(DIAGNOSTIC::wrap_enabled_m) << text;
  }
  EXPECT_EXIT(run("-diag_wrap=maybe"), ExitedWithCode(1),
              "bad argument to option --diag_wrap: should be one of \\{on,off\\}");
  EXPECT_EXIT(run("-diag_wrap="), ExitedWithCode(1), "option --diag_wrap is missing");
}

TEST_F(tool_options, EachCommandFileOptionOpensItsFile) {
  run("-linker_options_file=a");
  run("@b");
  script_tokens({"c"});
  run("@");
  EXPECT_EQ(opened, (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(opts.getargcount(O::LINKER_OPTIONS_FILE), 3);
  EXPECT_STREQ(opts.format_of_option(O::LINKER_OPTIONS_FILE), "-@");
}

TEST_F(tool_options, VerboseClustersAndStaysSetBeforeAFailure) {
  EXPECT_EQ(run("vx"), 0);
  EXPECT_EQ(opts.option_state[O::VERBOSE], 1);
  EXPECT_STREQ(opts.format_of_option(O::VERBOSE), "-v");
  EXPECT_EQ(run("-verbose=1"), 0);
}

TEST_F(tool_options, HelpTopicsByForm) {
  script_tokens({"--verbose"});
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("h");
      },
      ExitedWithCode(0), "--verbose,-v");
  // names match from their first dash on, texts anywhere
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("hv");
      },
      ExitedWithCode(0), "--diag_wrap");
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("h=bench");
      },
      ExitedWithCode(0), "--benchmark:event=event.*--benchmarks_file");
  script_tokens({});  // without a topic: the overview, then the usage
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("vh");
      },
      ExitedWithCode(1), "USAGE OF advzorv");
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("-help");
      },
      ExitedWithCode(1),
      "Usage: advzorv \\[-options\\] filename.*General Options:.*USAGE OF advzorv");
  EXPECT_EQ(run("-help=x"), 0);
}

TEST_F(tool_options, ToolversionPrintsTheVersionAndEndsWithZero) {
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("-toolversion");
      },
      ExitedWithCode(0), ".");
}

TEST_F(tool_options, PostProcessingChangesNothingInThisTable) {
  run("-xml_link_info=link.xml");
  opts.post_process_option_depends();
  EXPECT_STREQ(opts.getstrarg(O::XML_LINK_INFO, 0), "link.xml");
}

}  // namespace
