// The pass after the last token of the command file: derived settings, the
// dependency rules and the end of the run.
#include <gmock/gmock.h>

#include "shell_fixture.h"

namespace {

using ::testing::AllOf;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;
using ::testing::Not;

class shell_depends : public shell_options {
 protected:
  // Scans the tokens, then runs the pass; returns what the diagnostics printed.
  std::string scan_and_check(std::initializer_list<const char*> tokens) {
    diag_capture capture;
    for (const char* token : tokens)
      EXPECT_EQ(run(token), 1) << token;
    opts.post_process_option_depends();
    return capture.text();
  }
  int set_count() const {
    int count = 0;
    for (int32_t state : opts.option_state)
      count += state != 0;
    return count;
  }
};

TEST_F(shell_depends, EmptyCommandFileCompletesTheSettings) {
  EXPECT_EQ(scan_and_check({}), "");
  EXPECT_EQ(set_count(), 16 + 11);
  EXPECT_STREQ(word(S::ADVICE__PERFORMANCE), "all");
  EXPECT_EQ(opts.option_state[S::BUFFER_DIAGNOSTICS], 1);
  EXPECT_EQ(opts.option_state[S::C89], 1);
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF], 1);
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF_VERSION], 2);
  EXPECT_STREQ(word(S::SYMDEBUG__DWARF_VERSION), "4");
  EXPECT_STREQ(word(S::KEEP_UNNEEDED_TYPES), "false");
  EXPECT_EQ(opts.option_state[S::RELAXED_ANSI], 1);
  EXPECT_EQ(opts.option_state[S::USE_ELF_LNK], 1);
  EXPECT_EQ(opts.getnumarg(S::OPT_LEVEL, 0), S::ITEM_OPT_LEVEL_OFF);
  EXPECT_STREQ(word(S::FLOAT_SUPPORT), "softlib");
  EXPECT_STREQ(word(S::SILICON_ERRATA_ZFPA1_WORKAROUND), "on");
  EXPECT_EQ(opts.getnumarg(S::SIZE_SPEED_GOAL, 0), S::ITEM_SIZE_SPEED_GOAL_LOW_RISK_SIZE);
}

TEST_F(shell_depends, DebugSettingsFollowTheGivenDebugOptions) {
  scan_and_check({"-symdebug:none"});
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF], 0);
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF_VERSION], 0);
  EXPECT_STREQ(word(S::KEEP_UNNEEDED_TYPES), "false");

  S version3;
  version3.process_option("-symdebug:dwarf_version=3", nullptr);
  version3.post_process_option_depends();
  EXPECT_EQ(version3.option_state[S::SYMDEBUG__DWARF_VERSION], 1);
  EXPECT_STREQ(version3.getstrarg(S::KEEP_UNNEEDED_TYPES, 0), "true");

  // subsections keep the types under the other ABI, where the version stays 3
  S subsections;
  subsections.process_option("-abi=coffabi", nullptr);
  subsections.process_option("-symdebug:dwarf_subsections=ON", nullptr);
  subsections.post_process_option_depends();
  EXPECT_EQ(subsections.getnumarg(S::SYMDEBUG__DWARF_VERSION, 0),
            S::ITEM_SYMDEBUG__DWARF_VERSION_3);
  EXPECT_STREQ(subsections.getstrarg(S::KEEP_UNNEEDED_TYPES, 0), "true");
  EXPECT_STREQ(subsections.getstrarg(S::OBJECT_FORMAT, 0), "coff");
}

TEST_F(shell_depends, ProcessorSettingsFollowTheUnitsGiven) {
  scan_and_check({"-ztrg_support"});
  EXPECT_STREQ(word(S::FLOAT_SUPPORT), "zfpa32");
  EXPECT_STREQ(word(S::SILICON_ERRATA_ZFPA1_WORKAROUND), "off");
  S vector_unit;
  vector_unit.process_option("-zvec_support=zcrc", nullptr);
  vector_unit.post_process_option_depends();
  EXPECT_STREQ(vector_unit.getstrarg(S::FLOAT_SUPPORT, 0), "softlib");
  EXPECT_STREQ(vector_unit.getstrarg(S::SILICON_ERRATA_ZFPA1_WORKAROUND, 0), "off");
  S plain_vector;
  plain_vector.process_option("-zvec_support", nullptr);  // zvec0
  plain_vector.post_process_option_depends();
  EXPECT_STREQ(plain_vector.getstrarg(S::SILICON_ERRATA_ZFPA1_WORKAROUND, 0), "on");
}

TEST_F(shell_depends, GivenOptionsDecideTheLanguageAndInterlist) {
  scan_and_check({"-plr=prog.pl", "ps", "-c99", "pm"});
  EXPECT_EQ(opts.option_state[S::C_SRC_INTERLIST], 1);
  EXPECT_EQ(opts.option_state[S::C89], 0);
  EXPECT_EQ(opts.option_state[S::RELAXED_ANSI], 0);
}

TEST_F(shell_depends, WarningRulesNameTheSubjectAsSpelledAndClearIt) {
  EXPECT_EQ(scan_and_check({"-optimizer_comments"}),
            "warning: Option --optimizer_comments is not valid with -Ooff (ignored)\n");
  EXPECT_EQ(opts.option_state[S::OPTIMIZER_COMMENTS], 0);

  S given_level;
  given_level.process_option("-optimizer_comments", nullptr);
  given_level.process_option("O2", nullptr);
  given_level.post_process_option_depends();
  EXPECT_EQ(given_level.option_state[S::OPTIMIZER_COMMENTS], 1);

  // rule 4 clears the subject, so rule 5 on the same subject stays silent
  S other_abi;
  other_abi.process_option("-abi=coffabi", nullptr);
  other_abi.process_option("-extern_c_can_throw", nullptr);
  other_abi.process_option("lfu=ref.elf", nullptr);
  S lfu_alone;
  lfu_alone.process_option("-lfu_default=none", nullptr);
  diag_capture capture;
  other_abi.post_process_option_depends();
  lfu_alone.post_process_option_depends();
  EXPECT_EQ(capture.text(),
            "warning: Option --extern_c_can_throw is not valid without --abi=eabi (ignored)\n"
            "warning: Option -lfu is not valid without --abi=eabi (ignored)\n"
            "warning: Option --lfu_default is not valid without --lfu_reference_elf(-lfu) "
            "(ignored)\n");
  EXPECT_EQ(other_abi.error_count + lfu_alone.error_count, 0);
}

TEST_F(shell_depends, DataPageLoadOptionDependsOnTheAbi) {
  const std::string text = scan_and_check({"md"});
  EXPECT_EQ(text,
            "warning: --disable_dp_load_opt is not supported with --abi=eabi. Consider "
            "using the blocked and noblocked attributes to change the default blocking "
            "behavior for global variables.\n");
  EXPECT_EQ(opts.option_state[S::DISABLE_DP_LOAD_OPT], 0);
  S other_abi;
  other_abi.process_option("-abi=coffabi", nullptr);
  other_abi.process_option("-disable_dp_load_opt", nullptr);
  diag_capture capture;
  other_abi.post_process_option_depends();
  EXPECT_TRUE(contains(capture.text(), "warning: --disable_dp_load_opt is deprecated. Consider"));
  EXPECT_EQ(other_abi.option_state[S::DISABLE_DP_LOAD_OPT], 1);
}

TEST_F(shell_depends, ErrorRulesAllReportBeforeOneExit) {
  for (const char* token :
       {"-float_support=zfpa64", "-abi=coffabi", "-idiv_support", "-zcop_background_task=on", "os"})
    run(token);
  EXPECT_EXIT(opts.post_process_option_depends(), ExitedWithCode(1),
              AllOf(HasSubstr("error: Option --zcop_background_task=on is not valid without "
                              "--zcop_support=zcop2\n"),
                    HasSubstr("error: Option --float_support=zfpa64 is not valid without "
                              "--abi=eabi\n"),
                    HasSubstr("error: Option --idiv_support=idiv0 is not valid without "
                              "--abi=eabi\n"),
                    Not(HasSubstr("--float_support=zfpa32 or")),
                    HasSubstr("Option -os is not valid with -Ooff (ignored)")));
}

TEST_F(shell_depends, ScanErrorsAndRuleErrorsEndTheRunTogether) {
  auto scan_then_pass = [this] {
    for (const char* token :
         {"-pch", "-analyze=codecov", "-gen_profile_info", "-abi=coffabi", "-ztrg_support=ztrg1"})
      run(token);
    if (opts.error_count == 1) opts.post_process_option_depends();
  };
  EXPECT_EXIT(scan_then_pass(), ExitedWithCode(1),
              AllOf(HasSubstr("error: Precompiled header files are no longer supported.\n"),
                    HasSubstr("error: Option --analyze is not valid with --gen_profile_info\n"),
                    HasSubstr("error: Option --ztrg_support=ztrg1 is not valid with "
                              "--abi=coffabi\n")));
}

TEST_F(shell_depends, SmallDataModelStopsBeforeTheRules) {
  run("-mem_model:data=small");
  run("-optimizer_comments");
  EXPECT_EXIT(opts.post_process_option_depends(), ExitedWithCode(1),
              AllOf(HasSubstr("Small memory model is no longer supported"),
                    Not(HasSubstr("optimizer_comments"))));
}

}  // namespace
