// The scanner's rules against the synthetic table, and its arguments: radix
// rules, ranges and their messages.
#include <unistd.h>

#include <limits>
#include <tuple>
#include <utility>

#include "options/optobj.h"
#include "test_family.h"

namespace {

using T = option_obj_test;
using ::testing::ExitedWithCode;

using Scan = test_table_fixture;

constexpr int taken = 99;  // accepted

// One token on a fresh object: where its scan stopped, as an offset into the
// token (taken if it is accepted), then the options it leaves set.
struct scan_case {
  const char* token;
  int stop;
  option_facts after;
};

TEST_F(Scan, TokensAcceptedAndWhatTheySet) {
  const scan_case cases[] = {
      // a spelling stands in full; the shorter one commits where spellings part
      {"-alp", 4, {}},
      {"-alphas", 6, {}},
      {"-internal_row", 1, {}},  // a row without scanned spelling
      {"-alpha_x", 7, {{T::ALPHA, 0, ""}}},
      {"-number7", taken, {{T::NUMBER, 1, "7"}, {T::NUMBERS, 0, ""}}},
      {"-numbers", taken, {{T::NUMBERS, 1, ""}, {T::NUMBER, 0, ""}}},
      // a character that starts nothing fails one back, even before the token
      {"-5" + 1, -1, {}},
      // short flags cluster, and the letters before a failure stand
      {"vvx", 1, {{T::VERBOSE, 2, ""}}},
      // family members follow each other; the family's base hands the rest back
      {"gtga", taken, {{T::TRACE, 1, ""}, {T::OVER_A, 1, ""}}},
      {"gv", taken, {{T::OVER_B, 1, ""}, {T::VERBOSE, 1, ""}}},
      {"gax", 1, {}},
      {"gta", taken, {{T::TRACE, 1, ""}, {T::OVER_A, 1, ""}}},  // the family's letter implied
      // arguments glued to a short form; optional ones left out take the row's word, if any
      {"nfirst", taken, {{T::NAMES, 1, "first"}}},
      {"r", taken, {{T::RATE, 1, "3"}}},
      {"r4", taken, {{T::RATE, 1, "4"}}},
      {"-zip", taken, {{T::ZIP, 1, ""}}},
      {"-hex=0", taken, {{T::HEX, 1, "0x0"}}},
      {"-color", taken, {{T::COLOR, 1, "green"}}},  // a required argument from the next token
      {"-alpha_beta", taken, {{T::ALPHA_BETA, 1, "green"}}},
      {"mFAST", taken, {{T::MODE, 1, "fast"}}},
      // options set as well: by a word, not by a number that names none, by one more
      {"-format=COFF", taken, {{T::MODE, 1, "fast"}}},
      {"-format=elf", taken, {{T::MODE, 0, ""}}},
      {"-goal=2", taken, {{T::MODE, 0, ""}}},
      {"wvv", taken, {{T::NUMBER, 3, "3"}, {T::VERBOSE, 0, ""}}},  // the action takes the rest
  };
  diag_capture capture;  // the family's members override each other
  const auto stream = T::next_arg;
  T::next_arg = [] { return "green"; };
  for (const scan_case& c : cases) {
    SCOPED_TRACE(c.token);
    T fresh;
    const char* stop = nullptr;
    EXPECT_EQ(fresh.process_option(c.token, &stop), c.stop == taken);
    EXPECT_EQ(c.stop == taken ? c.stop : stop - c.token, c.stop);
    expect_facts(fresh, c.after);
  }
  T::next_arg = stream;
}

TEST_F(Scan, WhatAnOptionDoesBeyondBeingStored) {
  DIAGNOSTIC::remarks_m = true;
  diag_capture capture;
  for (const char* token : {"-tallyvx", "-number=9223372036854775807", "-tally"})
    run(token);  // a count at its largest stays there
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), std::numeric_limits<long>::max());
  // Named handlers, then deprecation notices by their severity.
  run("-align=1");  // 2 to the 0th
  run("-enum=Int");
  EXPECT_STREQ(opts.getstrarg(T::ENUM, 0), "unpacked");
  EXPECT_EQ(capture_output(stderr, [this] { run("-color=Crimson"); }),
            "WARNING: argument 'crimson' to option '--color' is deprecated and will be removed "
            "in a future release\n");
  for (const char* token : {"-align=6", "-old_remark", "-old_warning"})
    run(token);
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_EQ(opts.option_state[T::ALPHA], 1);
  EXPECT_EQ(opts.option_parsed[T::ALPHA], 0u);
  EXPECT_EQ(capture.text(),
            "warning: garbage following option --tallyv ignored\n"
            "remark: --enum_type=int is not supported. Using --enum_type=unpacked instead.\n"
            "error: Argument of --align=6 must be a power of 2\n"
            "remark: --old_remark does nothing.\n"
            "warning: --old_warning only sets --alpha.\n");
  EXPECT_EXIT(opts.post_process_option_depends(), ExitedWithCode(1), "");
}

// Help topics are the end-to-end cases' part; here only what no run can show:
// --advice_file's effects, help naming the program by its file name, and a
// usage hook that returns ending the run with 1.
TEST_F(Scan, ToolOptionsDoWhatNoRunShows) {
  option_obj tool;
  tool.process_option("-advice_file=a", nullptr);
  EXPECT_TRUE(DIAGNOSTIC::advice_m && tool.option_state[option_obj::DISPLAY_ERROR_NUMBER] != 0);
  EXPECT_EXIT(
      {
        dup2(2, 1);
        option_obj::executable_name = "bin/<toolname>";
        tool.process_option("-help", nullptr);
      },
      ::testing::ExitedWithCode(1), "Usage: <toolname>");
}

TEST(Radix, SuffixesAndPrefixesPickTheRadix) {
  const std::tuple<const char*, long, int> cases[] = {
      {"1Fh", 31, 0},  {"FFH", 255, 0}, {"17q", 15, 0},  {"017", 15, 0},
      {"0x1F", 31, 0}, {"0q", 0, 0},    {"42", 42, 0},   {"19q", 19, 1},
      {"-1Fh", -1, 1}, {"", 0, 1},      {"12ab", 12, 1}, {"078", 7, 1},
  };
  for (const auto& [text, value, bad] : cases) {
    int found_bad = 0;
    EXPECT_EQ(option_engine::strtol_by_radix(text, &found_bad), value) << text;
    EXPECT_EQ(found_bad, bad) << text;
  }
}

// An unsigned option without a range of its own is handed the signed bounds,
// so it is not "unbounded" for its type: values above them are refused, and
// the message names both bounds, cut to 32 bits. A hard conflict ends the run
// at its second option.
TEST_F(Scan, RefusedTokensEndTheRunWithAMessageNamingOptionAndArgument) {
  run("-hard_a");
  const std::pair<const char*, const char*> cases[] = {
      {"-number=-5",
       "argument to option --number \\(count\\) is out of range \\(must be a "
       "non-negative_number\\)"},
      {"-number=99999999999999999999", "argument to option --number \\(count\\) is out of range\n"},
      {"-number=19q", "out of range\n"},
      {"-level=9",
       "argument to option --level \\(1-8\\) is out of range \\(must be a number from 1 to 8"},
      {"r=9", "option -r \\(0-5\\).*from 0 to 5"},
      {"-hex=0x8000000000000000",
       "argument to option --hex \\(address\\) is out of range \\(must be a number from 0 to "
       "4294967295\n"},
      {"-hex=-1", "must be a number from 0 to 4294967295"},
      {"-hex=19q", "must be a number from 0 to 4294967295"},
      {"-alpha_beta=", "option --alpha_beta is missing its parameter 'word'"},
      {"-number", "option --number is missing its parameter"},
      {"-rate=", "option --rate is missing its parameter '0-5'"},
      {"-color=gre", "bad argument to option --color: should be one of \\{red,green\\}"},
      {"-hard_b", "option --hard_b conflicts with previous option --hard_a"},
  };
  for (const auto& [token, message] : cases)
    EXPECT_EXIT(run(token), ExitedWithCode(1), message) << token;
}

}  // namespace
