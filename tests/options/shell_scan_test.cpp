// Scanning the compiler shell's table: spellings, short-option groups, case,
// options that set others, deprecations and conflicts.
#include <cstdlib>
#include <iterator>

#include <gmock/gmock.h>

#include "shell_fixture.h"

namespace {

using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

TEST_F(shell_options, EveryFurtherSpellingOfAFlagRegistersItsForm) {
  diag_capture capture;  // deprecation notices of some rows
  const option_table& table = S::table_data;
  int checked = 0;
  for (unsigned id = 0; id < table.n; ++id) {
    const option_row& row = table.option_definitions[id];
    if (table.parm_type[id] != kind_none || row.internal || id == S::HELP) continue;
    unsigned form = 1;
    for (const char* const* alt = row.alt_forms; *alt; ++alt, ++form) {
      S fresh(false);
      std::string spelling = option_engine::rot13(*alt);
      ASSERT_EQ(fresh.process_option(spelling.c_str() + 1, nullptr), 1) << spelling;
      EXPECT_EQ(fresh.option_form[id], form) << spelling;
      EXPECT_EQ(fresh.option_state[id], 1) << spelling;
      EXPECT_STREQ(fresh.format_of_option(static_cast<int>(id)), spelling.c_str());
      ++checked;
    }
  }
  EXPECT_GT(checked, 50);
}

TEST_F(shell_options, InternalRowsAndBareSpellingsAreUnknown) {
  for (const char* text :
       {"-debug_general", "-debug_general=1", "-#", "-c++14", "-toolversion", "-optimizer_debug",
        "-0", "-1", "-8", "-debug=x", "-debug", "-help=x", "-verbose=1"})
    EXPECT_EQ(run(text), 0) << text;
  EXPECT_EQ(opts.option_state[S::DEBUG_GENERAL], 0);
  EXPECT_EQ(run("-debug:x=1"), 1);
  EXPECT_EQ(run("-c++03"), 1);
  EXPECT_STREQ(word(S::DEBUG), "x=1");
}

TEST_F(shell_options, ShortSpellingsClusterOrHandBackByFamily) {
  EXPECT_EQ(run("ck"), 1);  // two one-letter flags
  EXPECT_EQ(opts.option_state[S::COMPILE_ONLY], 1);
  EXPECT_EQ(opts.option_state[S::KEEP_ASM], 1);
  EXPECT_EQ(run("als"), 1);  // -al, then the family letter with s: -as
  EXPECT_EQ(opts.option_state[S::ASM_LISTING], 1);
  EXPECT_EQ(opts.option_state[S::OUTPUT_ALL_SYMS], 1);
  EXPECT_EQ(run("gk"), 1);  // -g hands the rest back to the scan
  EXPECT_EQ(opts.option_state[S::SYMDEBUG__DWARF], 1);
  EXPECT_EQ(opts.option_state[S::KEEP_ASM], 2);
  // -g is not among the further spellings, so messages show the long form
  EXPECT_STREQ(opts.format_of_option(S::SYMDEBUG__DWARF), "--symdebug:dwarf");
  EXPECT_EQ(run("v28"), 1);
  EXPECT_EQ(opts.getnumarg(S::SILICON_VERSION, 0), S::ITEM_SILICON_VERSION_28);
  EXPECT_EQ(run("version"), 1);
  EXPECT_EQ(opts.option_state[S::TOOL_VERSION], 1);
  EXPECT_EQ(run("pdsw225"), 1);  // a member with an argument ends the token
  EXPECT_STREQ(word(S::DIAG_WARNING), "225");
  EXPECT_EQ(run("qq"), 1);
  EXPECT_EQ(opts.option_state[S::SUPER_QUIET], 1);
  EXPECT_EQ(run("fg"), 1);
  EXPECT_EQ(run("fgx"), 0);  // the rest of an f token belongs to the option
  EXPECT_EQ(run("c9"), 0);
  EXPECT_EQ(opts.option_state[S::COMPILE_ONLY], 2);  // what came before x stands
}

TEST_F(shell_options, CaseWarningsSpareTheQuietSpellings) {
  diag_capture capture;
  for (const char* text : {"GW", "M20", "-ABI=eabi", "-DEFINE=X", "DX", "PDSW5", "AL", "LFU=a",
                           "-Include_Path=inc", "MK"})
    EXPECT_EQ(run(text), 1) << text;
  const std::string text = capture.text();
  EXPECT_TRUE(contains(text, "GW must be written as gw"));
  EXPECT_TRUE(contains(text, "M20 must be written as m20"));
  EXPECT_TRUE(contains(text, "-ABI must be written as -abi"));
  for (const char* quiet : {"DEFINE must", "D must", "PDSW must", "AL must", "LFU must",
                            "Include_Path must", "MK must"})
    EXPECT_FALSE(contains(text, quiet)) << quiet;
  EXPECT_EQ(opts.option_state[S::CONSULTANT], 1);
  EXPECT_EQ(opts.option_form[S::CONSULTANT], 1);
}

TEST_F(shell_options, OptionsThatSetOthersRunInTableOrder) {
  run("-onlycodecov");
  EXPECT_STREQ(word(S::ANALYZE), "codecov");
  EXPECT_EQ(opts.option_state[S::ANALYZE_ONLY], 1);
  EXPECT_EQ(opts.option_parsed[S::ANALYZE], 0u);
  run("-object_format=elf");
  EXPECT_STREQ(word(S::ABI), "eabi");
  run("-object_format=coff");
  EXPECT_STREQ(word(S::ABI), "coffabi");
  run("-orvane_lib");
  run("d=X");
  EXPECT_EQ(opts.getargcount(S::DEFINE), 2);
  EXPECT_STREQ(word(S::DEFINE), "__ORVANE_RTS_BUILD");
  run("-small_enum");
  EXPECT_STREQ(word(S::ENUM_TYPE), "packed");
  run("-symdebug:keep_all_types");
  EXPECT_STREQ(word(S::KEEP_UNNEEDED_TYPES), "true");
  run("-no_const_clink");
  EXPECT_STREQ(word(S::GEN_DATA_SUBSECTIONS), "off");
  run("n");
  EXPECT_EQ(opts.option_state[S::KEEP_ASM], 1);
  // --gen_func_info_listing is set without the error of its own spelling
  run("b");
  EXPECT_EQ(opts.option_state[S::GEN_FUNC_INFO_LISTING], 1);
  EXPECT_EQ(opts.error_count, 0);
}

TEST_F(shell_options, OptionalArgumentsAndTheirOwnWords) {
  run("-check_misra");
  EXPECT_STREQ(word(S::CHECK_MISRA), "all");
  run("-entry_hook");
  EXPECT_EQ(opts.option_state[S::ENTRY_HOOK], 1);
  EXPECT_EQ(opts.getargcount(S::ENTRY_HOOK), 0);
  run("-perf_info");
  run("-use_profile_info=a.prf");
  EXPECT_STREQ(word(S::USE_PROFILE_INFO), "a.prf");
  run("-zvec_support=ZVEC2.1");  // unlisted, but accepted
  EXPECT_STREQ(word(S::V_ZVEC_SUPPORT), "zvec2.1");
  run("-idiv_support");
  EXPECT_STREQ(word(S::IDIV_SUPPORT), "idiv0");
  EXPECT_EXIT(run("-zvec_support=zvec3"), ExitedWithCode(1),
              "bad argument to option --zvec_support: should be one of \\{zvec0,zvec2,zcrc\\}");
  EXPECT_EXIT(run("-perf_info=11"), ExitedWithCode(1),
              "argument to option --perf_info \\(1-10\\) is out of range \\(must be a number from "
              "1 to 10");
  EXPECT_EXIT(run("op4"), ExitedWithCode(1), "option -op \\(0-3\\) is out of range");
  EXPECT_EXIT(run("-rpt_threshold"), ExitedWithCode(1),
              "option --rpt_threshold is missing its parameter '0-256'");
}

TEST_F(shell_options, DeprecatedWordsWarnAndAreTaken) {
  EXPECT_EXIT(
      {
        run("-mem_model:data=small");
        run("v27");
        const bool taken = opts.getnumarg(S::MEM_MODEL__DATA, 0) == S::ITEM_MEM_MODEL__DATA_SMALL &&
                           opts.getnumarg(S::SILICON_VERSION, 0) == S::ITEM_SILICON_VERSION_27;
        std::exit(taken ? 3 : 4);
      },
      ExitedWithCode(3),
      "argument 'small' to option '--mem_model:data' is deprecated.*argument '27' to option "
      "'--silicon_version' is deprecated");
}

TEST_F(shell_options, DeprecationNoticesByTheirSeverity) {
  DIAGNOSTIC::remarks_m = true;
  diag_capture capture;
  run("-misra_required=error");
  run("-check_misra=rule1");
  run("pk");  // a short spelling reports its long option's text
  run("mn");
  EXPECT_EQ(opts.error_count, 1);
  const std::string text = capture.text();
  EXPECT_TRUE(contains(text,
                       "remark: Misra checking is no longer supported. --misra_required "
                       "option does not have any effect."));
  EXPECT_TRUE(contains(text,
                       "warning: Misra checking is no longer supported. --check_misra "
                       "option does not have any effect."));
  EXPECT_TRUE(contains(text, "error: K&R compatibility mode is no longer supported."));
  EXPECT_TRUE(contains(text,
                       "remark: --optimize_with_debug is deprecated and will be removed "
                       "in a subsequent release. The behavior is enabled by default."));
  EXPECT_STREQ(word(S::OPTIMIZE_WITH_DEBUG), "on");
}

TEST_F(shell_options, ConflictsClearQuietlyLoudlyOrEndTheRun) {
  diag_capture capture;
  run("-verbose");
  run("q");
  EXPECT_EQ(opts.option_state[S::VERBOSE], 0);
  run("-c99");
  run("-c11");
  EXPECT_EQ(opts.option_state[S::C99], 0);
  run("s");
  run("ss");
  EXPECT_EQ(opts.option_state[S::SRC_INTERLIST], 0);
  EXPECT_EQ(capture.text(), "warning: option -ss overrides preceding option -s\n");
  // one way only: --gcc after --strict_ansi sets --relaxed_ansi, which clears it
  run("ps");
  run("-gcc");
  EXPECT_EQ(opts.option_state[S::STRICT_ANSI], 0);
  EXPECT_EQ(opts.option_state[S::RELAXED_ANSI], 1);
}

TEST_F(shell_options, ConflictsOfValueThreeEndTheRun) {
  run("-gcc");
  EXPECT_EXIT(run("ps"), ExitedWithCode(1), "option -ps conflicts with previous option --gcc");
  EXPECT_EXIT(
      {
        run("-emit_warnings_as_errors");
        run("-no_warnings");
      },
      ExitedWithCode(1),
      "option --no_warnings conflicts with previous option --emit_warnings_as_errors");
  EXPECT_EXIT(
      {
        run("ppd");
        run("ppo");
      },
      ExitedWithCode(1), "option -ppo conflicts with previous option -ppd");
}

TEST_F(shell_options, DefaultsAreSetInTableOrderAndPersist) {
  const int expected[] = {S::ABI,
                          S::CL_ZCOP_BACKGROUND_TASK,
                          S::CL_ZCOP_SIGNED_COMPARE_WORKAROUND,
                          S::ENUM_TYPE,
                          S::FLOAT_OPERATIONS_ALLOWED,
                          S::FP_MODE,
                          S::FP_REASSOC,
                          S::MEM_MODEL__CODE,
                          S::MEM_MODEL__DATA,
                          S::OBJECT_FORMAT,
                          S::PRINTF_SUPPORT,
                          S::RUNTIME,
                          S::SAT_REASSOC,
                          S::SAT_VAR_OPT,
                          S::SILICON_VERSION,
                          S::SIZE_SPEED_GOAL};
  ASSERT_EQ(opts.history.size(), std::size(expected));
  for (size_t i = 0; i < opts.history.size(); ++i) {
    const int id = opts.history[i].first;
    EXPECT_EQ(id, expected[i]);
    EXPECT_EQ(opts.option_parsed[id], 0u);
    opts.clearopt(id);
    EXPECT_EQ(opts.option_state[id], 1);
  }
  EXPECT_STREQ(word(S::FLOAT_OPERATIONS_ALLOWED), "all");
  EXPECT_EQ(opts.testclass(27), 16);
}

}  // namespace
