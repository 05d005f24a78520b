// The compiler shell's rows that the tool reads, and the pass after the scan.
#include "shell_fixture.h"

namespace {

using ::testing::ExitedWithCode;

TEST_F(shell_options, GoalIsSetFromTheStartAndSurvivesClearing) {
  EXPECT_EQ(opts.option_state[S::SIZE_SPEED_GOAL], 1);
  EXPECT_EQ(opts.option_parsed[S::SIZE_SPEED_GOAL], 0u);
  EXPECT_EQ(opts.getnumarg(S::SIZE_SPEED_GOAL, 0), S::ITEM_SIZE_SPEED_GOAL_LOW_RISK_SIZE);
  opts.clearopt(S::SIZE_SPEED_GOAL);
  EXPECT_STREQ(goal(), "low_risk_size");
  EXPECT_EQ(S(false).option_state[S::SIZE_SPEED_GOAL], 0);
}

TEST_F(shell_options, OptLevelFromTheShortFormFamily) {
  run("O");
  EXPECT_STREQ(level(), "2");
  run("O3");
  EXPECT_EQ(opts.getnumarg(S::OPT_LEVEL, 0), S::ITEM_OPT_LEVEL_3);
  run("Ooff");
  EXPECT_EQ(opts.getnumarg(S::OPT_LEVEL, 0), S::ITEM_OPT_LEVEL_OFF);
  run("-opt_level=1");
  EXPECT_STREQ(level(), "1");
  EXPECT_EQ(opts.option_parsed[S::OPT_LEVEL], 4u);
  EXPECT_EXIT(run("O5"), ExitedWithCode(1),
              "bad argument to option -O: should be one of "
              "\\{off,0,1,2,3,4\\}");
}

TEST_F(shell_options, LevelIsOffAfterPostProcessingUnlessGiven) {
  opts.post_process_option_depends();
  EXPECT_STREQ(level(), "off");
  S given;
  given.process_option("O3", nullptr);
  given.post_process_option_depends();
  EXPECT_STREQ(given.getstrarg(S::OPT_LEVEL, 0), "3");
  S derived;
  derived.process_option("-no_high_level_opt", nullptr);
  EXPECT_STREQ(derived.getstrarg(S::OPT_LEVEL, 0), "off");
  EXPECT_EQ(derived.option_parsed[S::OPT_LEVEL], 0u);
  derived.post_process_option_depends();
  EXPECT_EQ(derived.option_state[S::OPT_LEVEL], 2);  // not given, so set again
}

TEST_F(shell_options, SpeedAndSpaceOptionsFillTheGoal) {
  run("-opt_for_speed");
  EXPECT_EQ(opts.getnumarg(S::OPT_FOR_SPEED, 0), 4);
  EXPECT_STREQ(goal(), "medium_risk_performance");
  run("-opt_for_speed=1");
  EXPECT_STREQ(goal(), "medium_risk_size");
  run("mf2");
  EXPECT_STREQ(goal(), "low_risk_size");
  EXPECT_STREQ(opts.format_of_option(S::OPT_FOR_SPEED), "-mf");
  run("ms");
  EXPECT_EQ(opts.getnumarg(S::SIZE_SPEED_GOAL, 0), S::ITEM_SIZE_SPEED_GOAL_HIGH_RISK_SIZE);
  EXPECT_EQ(opts.option_state[S::OPT_FOR_SPACE], 1);
  EXPECT_EXIT(run("-opt_for_speed=6"), ExitedWithCode(1),
              "argument to option --opt_for_speed \\(0-5\\) is out of range \\(must be a number "
              "from 0 to 5");
}

TEST_F(shell_options, RunLinkerWithOrWithoutArguments) {
  EXPECT_EQ(run("z"), 1);
  EXPECT_EQ(opts.option_state[S::RUN_LINKER], 1);
  EXPECT_EQ(opts.getargcount(S::RUN_LINKER), 0);
  run("z-lrts");
  EXPECT_STREQ(opts.getstrarg(S::RUN_LINKER, 0), "-lrts");
}

TEST_F(shell_options, CaseWarnsExceptOnQuietSpellings) {
  diag_capture capture;
  EXPECT_EQ(run("-OPT_FOR_SPEED=0"), 1);
  EXPECT_EQ(run("MS"), 1);
  EXPECT_EQ(run("o1"), 1);
  EXPECT_EQ(run("-OPT_LEVEL=2"), 1);
  EXPECT_EQ(run("Z"), 1);
  std::string text = capture.text();
  EXPECT_NE(text.find("-OPT_FOR_SPEED must be written as -opt_for_speed"), std::string::npos);
  EXPECT_NE(text.find("Z must be written as z"), std::string::npos);
  EXPECT_EQ(text.find("MS"), std::string::npos);
  EXPECT_EQ(text.find("OPT_LEVEL"), std::string::npos);
  EXPECT_EQ(text.find(" o1"), std::string::npos);
  EXPECT_STREQ(level(), "2");
}

TEST_F(shell_options, NoneOverridesDwarfWhichStaysCleared) {
  diag_capture capture;
  run("g");
  run("-symdebug:none");
  EXPECT_NE(capture.text().find("option --symdebug:none overrides preceding option "
                                "--symdebug:dwarf"),
            std::string::npos);
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF], 0);
  opts.post_process_option_depends();
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF], 0);
  S short_form;
  short_form.process_option("gw", nullptr);
  short_form.process_option("-symdebug:none", nullptr);
  EXPECT_NE(capture.text().find("overrides preceding option -gw"), std::string::npos);
}

TEST_F(shell_options, DwarfIsTheDefaultAndReplacesSkeletal) {
  run("-symdebug:skeletal");
  opts.post_process_option_depends();
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__SKELETAL], 0);
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF], 1);
  EXPECT_EQ(opts.error_count, 0);
}

TEST_F(shell_options, RemovedOptionReportsEachTimeAndEndsTheRunAfterTheScan) {
  diag_capture capture;
  run("gt");
  run("-symdebug:coff");
  EXPECT_EQ(opts.error_count, 2);
  std::string text = capture.text();
  size_t first = text.find("--symdebug:coff is no longer supported.");
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find("--symdebug:coff is no longer supported.", first + 1), std::string::npos);
  EXPECT_EXIT(opts.post_process_option_depends(), ExitedWithCode(1), "");
}

TEST_F(shell_options, CommandFileIsOnlyRecorded) {
  run("@opts.txt");
  run("-cmd_file=more.txt");
  EXPECT_EQ(opts.getargcount(S::CMD_FILE), 2);
  EXPECT_STREQ(opts.getstrarg(S::CMD_FILE, 0), "opts.txt");
}

TEST_F(shell_options, AlignmentMustBeAPowerOfTwo) {
  diag_capture capture;
  run("-align_for_speed=4");
  EXPECT_EQ(opts.error_count, 0);
  run("-align_for_speed=3");
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_NE(capture.text().find("Argument of --align_for_speed=3 must be a power of 2"),
            std::string::npos);
}

TEST_F(shell_options, EnumTypeIntBecomesUnpackedWithARemark) {
  DIAGNOSTIC::remarks_m = true;
  diag_capture capture;
  run("-enum_type=packed");
  EXPECT_STREQ(opts.getstrarg(S::ENUM_TYPE, 0), "packed");
  run("-enum_type=int");
  EXPECT_STREQ(opts.getstrarg(S::ENUM_TYPE, 0), "unpacked");
  EXPECT_NE(capture.text().find("--enum_type=int is not supported. Using --enum_type=unpacked "
                                "instead."),
            std::string::npos);
}

TEST_F(shell_options, ShortCountersRaiseTheNumbersOfOtherRows) {
  EXPECT_EQ(run("od"), 1);
  EXPECT_EQ(run("odO3"), 1);  // the scan goes on behind -od
  EXPECT_EQ(opts.getnumarg(S::OPTIMIZER_DEBUG, 0), 2);
  EXPECT_STREQ(level(), "3");
  EXPECT_EQ(run("tmvV"), 1);
  EXPECT_EQ(opts.getnumarg(S::VERBOSE_TEMPLATE, 0), 2);
  diag_capture capture;
  EXPECT_EQ(run("tmvx"), 1);
  EXPECT_EQ(opts.getnumarg(S::VERBOSE_TEMPLATE, 0), 3);
  EXPECT_NE(capture.text().find("garbage following option -tmv ignored"), std::string::npos);
  EXPECT_EQ(run("-verbose_template=9223372036854775807"), 1);
  EXPECT_EQ(run("tmv"), 1);  // a count at its largest stays there
  EXPECT_EQ(opts.getnumarg(S::VERBOSE_TEMPLATE, 0), 9223372036854775807);
}

}  // namespace
