// The scanner's rules against the synthetic table.
#include <unistd.h>

#include <cstring>

#include "options/optobj.h"
#include "test_family.h"

namespace {

using T = option_obj_test;

using scan = test_table_fixture;

TEST_F(scan, EmptyTextIsAcceptedAndChangesNothing) {
  EXPECT_EQ(run(""), 1);
  EXPECT_EQ(run(nullptr), 1);
  for (int id = 0; id < T::OPTION_COUNT; ++id) {
    if (id != T::KEEP) {
      EXPECT_EQ(opts.option_state[id], 0);
    }
  }
  EXPECT_EQ(opts.history.size(), 1u);  // only the constructor's default
}

TEST_F(scan, SpellingMustStandInFull) {
  EXPECT_EQ(run("-alp"), 0);
  EXPECT_EQ(run("-alphas"), 0);
  EXPECT_EQ(run("-alpha=1"), 0);
  EXPECT_EQ(run("-internal_row"), 0);  // a row without scanned spelling
  EXPECT_EQ(opts.option_state[T::ALPHA], 0);
  EXPECT_EQ(run("-alpha"), 1);
  EXPECT_EQ(opts.option_state[T::ALPHA], 1);
}

TEST_F(scan, FailurePositionPointsWhereTheWalkStopped) {
  const char* text = "-alpx";
  const char* pos = nullptr;
  EXPECT_EQ(opts.process_option(text, &pos), 0);
  EXPECT_EQ(pos, text + 4);
  const char* digit = "-5";
  EXPECT_EQ(opts.process_option(digit + 1, &pos), 0);
  EXPECT_EQ(pos, digit);       // a character that starts nothing: one back
  const char* letter = "-vq";  // no short spelling begins with q
  EXPECT_EQ(opts.process_option(letter + 1, &pos), 0);
  EXPECT_EQ(pos, letter + 1);
  EXPECT_EQ(opts.option_state[T::VERBOSE], 1);
}

TEST_F(scan, ShorterSpellingCommitsAtTheCharacterWhereSpellingsPart) {
  EXPECT_EQ(run("-alpha_"), 0);
  EXPECT_EQ(run("-alpha_x"), 0);
  EXPECT_EQ(opts.option_state[T::ALPHA], 0);
  EXPECT_EQ(run("-alpha_betaXYZ"), 1);
  EXPECT_STREQ(opts.getstrarg(T::ALPHA_BETA, 0), "XYZ");
  EXPECT_EQ(run("-number7"), 1);
  EXPECT_EQ(run("-numbers8"), 1);
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 7);
  EXPECT_EQ(opts.getnumarg(T::NUMBERS, 0), 8);
  EXPECT_EQ(opts.getargcount(T::NUMBER), 1);
}

TEST_F(scan, ShortFlagsClusterAndEarlierLettersStand) {
  EXPECT_EQ(run("vk"), 1);
  EXPECT_EQ(opts.option_state[T::VERBOSE], 1);
  EXPECT_EQ(opts.option_state[T::ALPHA], 1);
  EXPECT_EQ(run("vvx"), 0);
  EXPECT_EQ(opts.option_state[T::VERBOSE], 3);
  EXPECT_EQ(opts.option_parsed[T::VERBOSE], 3);
}

TEST_F(scan, FamilyMembersFollowEachOtherAndTheBaseHandsBack) {
  EXPECT_EQ(run("gtga"), 1);  // -gt, then the member a of the g family
  EXPECT_EQ(opts.option_state[T::TRACE], 1);
  EXPECT_EQ(opts.option_state[T::OVER_A], 1);
  EXPECT_EQ(opts.option_form[T::TRACE], 2);
  T other;
  EXPECT_EQ(other.process_option("gv", nullptr), 1);  // base -g, then -v
  EXPECT_EQ(other.option_state[T::OVER_B], 1);
  EXPECT_EQ(other.option_state[T::VERBOSE], 1);
  EXPECT_EQ(other.process_option("gax", nullptr), 0);  // x is neither member nor flag
}

TEST_F(scan, ArgumentStandsBehindEqualsGluedOrInTheNextToken) {
  EXPECT_EQ(run("-alpha_beta=one"), 1);
  EXPECT_STREQ(opts.getstrarg(T::ALPHA_BETA, 0), "one");
  script_tokens({"-looks-like-option"});
  EXPECT_EQ(run("-alpha_beta"), 1);
  EXPECT_STREQ(opts.getstrarg(T::ALPHA_BETA, 0), "-looks-like-option");
  EXPECT_EQ(run("nfirst"), 1);
  EXPECT_EQ(run("n=second"), 1);
  EXPECT_EQ(opts.getargcount(T::NAMES), 2);
  EXPECT_STREQ(opts.getstrarg(T::NAMES, 1), "second");
  EXPECT_EQ(opts.option_form[T::NAMES], 1);
}

TEST_F(scan, OptionalArgumentLeftOutTakesTheRowsWord) {
  EXPECT_EQ(run("r"), 1);
  EXPECT_EQ(opts.getnumarg(T::RATE, 0), 3);
  EXPECT_EQ(run("r4"), 1);
  EXPECT_EQ(opts.getnumarg(T::RATE, 0), 4);
  EXPECT_EQ(run("-zip"), 1);  // no word of its own: set, nothing stored
  EXPECT_EQ(opts.option_state[T::ZIP], 1);
  EXPECT_EQ(opts.getargcount(T::ZIP), 0);
  EXPECT_EQ(run("-mode"), 1);
  EXPECT_STREQ(opts.getstrarg(T::MODE, 0), "safe");
  EXPECT_EQ(run("mFAST"), 1);
  EXPECT_EQ(opts.getnumarg(T::MODE, 0), T::ITEM_MODE_FAST);
}

TEST_F(scan, SameOptionTwiceKeepsTheLastArgumentAndOneHistoryEntry) {
  run("-alpha_beta=a");
  run("-alpha_beta=b");
  EXPECT_EQ(opts.option_state[T::ALPHA_BETA], 2);
  EXPECT_EQ(opts.option_parsed[T::ALPHA_BETA], 2);
  EXPECT_STREQ(opts.getstrarg(T::ALPHA_BETA, 0), "b");
  int entries = 0;
  for (const auto& [id, arg] : opts.history) {
    if (id != T::ALPHA_BETA) continue;
    ++entries;
    EXPECT_EQ(arg.text, "b");
  }
  EXPECT_EQ(entries, 1);
}

TEST_F(scan, CaseFoldingWarnsUnlessTheSpellingIsQuiet) {
  diag_capture capture;
  EXPECT_EQ(run("-ALPHA"), 1);
  EXPECT_EQ(run("-Rate=1"), 1);
  EXPECT_EQ(run("V"), 1);
  std::string text = capture.text();
  EXPECT_NE(text.find("Case insensitivity of options has been deprecated; -ALPHA must be "
                      "written as -alpha in future releases"),
            std::string::npos);
  EXPECT_NE(text.find("V must be written as v"), std::string::npos);
  EXPECT_EQ(run("-VERBOSE=1"), 0);  // no match, so no warning either
  EXPECT_EQ(capture.text().find("VERBOSE"), std::string::npos);
  EXPECT_EQ(text.find("Rate"), std::string::npos);
  EXPECT_EQ(opts.option_state[T::ALPHA], 1);
  EXPECT_EQ(opts.error_count, 0);  // a warning counts nothing
}

TEST_F(scan, WhatAnOptionDoesBeyondBeingStored) {
  DIAGNOSTIC::remarks_m = true;
  diag_capture capture;
  // Options set as well: by a word, when the option holds a word, by number, by one more.
  run("-format=elf");
  EXPECT_EQ(opts.option_state[T::MODE], 0);
  run("-format=COFF");
  EXPECT_STREQ(opts.getstrarg(T::MODE, 0), "fast");
  run("-goal=0");
  EXPECT_STREQ(opts.getstrarg(T::MODE, 0), "safe");
  run("-goal=2");  // no word for 2: nothing changes
  EXPECT_STREQ(opts.getstrarg(T::MODE, 0), "safe");
  EXPECT_EQ(opts.option_parsed[T::MODE], 0u);
  run("-tallyvv");
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 3);
  run("-tallyvx");
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 5);
  // Named handlers, then deprecation notices by their severity.
  run("-align=8");
  run("-enum=Int");
  EXPECT_STREQ(opts.getstrarg(T::ENUM, 0), "unpacked");
  EXPECT_EQ(opts.error_count, 0);
  run("-align=6");
  run("-old_remark");
  run("-old_warning");
  run("-old_flag");
  EXPECT_EQ(opts.error_count, 2);
  EXPECT_EQ(opts.option_state[T::ALPHA], 1);
  EXPECT_EQ(opts.option_parsed[T::ALPHA], 0u);
  EXPECT_EQ(capture.text(),
            "warning: garbage following option --tallyv ignored\n"
            "remark: --enum_type=int is not supported. Using --enum_type=unpacked instead.\n"
            "error: Argument of --align=6 must be a power of 2\n"
            "remark: --old_remark does nothing.\n"
            "warning: --old_warning does nothing.\n"
            "error: --old_flag is no longer supported.\n");
  EXPECT_EXIT(opts.post_process_option_depends(), ::testing::ExitedWithCode(1), "");
}

TEST_F(scan, HelpFindsItsTopicAndEndsTheRunWithZero) {
  // stdout goes to stderr in the child, where the regex looks
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("hchoice");
      },
      ::testing::ExitedWithCode(0), "--color=color");
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("h=--zip");
      },
      ::testing::ExitedWithCode(0), "--zip,-z");
  script_tokens({"--numbers"});
  EXPECT_EXIT(
      {
        dup2(2, 1);
        run("-help");
      },
      ::testing::ExitedWithCode(0), "--numbers=value");
  option_obj tool;  // its usage hook returns, so help ends the run with 1
  EXPECT_EXIT(tool.process_option("-help", nullptr), ::testing::ExitedWithCode(1), "");
  EXPECT_EQ(run("-help=x"), 0);  // the long form takes no text
  EXPECT_EQ(opts.option_state[T::HELP], 0);
}

}  // namespace
