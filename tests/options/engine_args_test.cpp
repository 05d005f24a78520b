// Arguments: radix rules, ranges and their messages, one-of words.
#include <cerrno>

#include "test_family.h"

namespace {

using T = option_obj_test;
using ::testing::ExitedWithCode;

using args = test_table_fixture;

TEST(radix, SuffixesAndPrefixesPickTheRadix) {
  struct {
    const char* text;
    long value;
    int bad;
  } cases[] = {
      {"1Fh", 31, 0},  {"FFH", 255, 0}, {"17q", 15, 0},  {"017", 15, 0},
      {"0x1F", 31, 0}, {"0q", 0, 0},    {"42", 42, 0},   {"19q", 19, 1},
      {"-1Fh", -1, 1}, {"", 0, 1},      {"12ab", 12, 1},
  };
  for (const auto& c : cases) {
    int bad = 0;
    EXPECT_EQ(option_engine::strtol_by_radix(c.text, &bad), c.value) << c.text;
    EXPECT_EQ(bad, c.bad) << c.text;
  }
  char text[] = "7Fh";
  EXPECT_EQ(option_engine::get_radix(text), 16);
  EXPECT_STREQ(text, "7F");  // the suffix is cut in place
  char octal_looking[] = "19q";
  EXPECT_EQ(option_engine::get_radix(octal_looking), 10);
  EXPECT_STREQ(octal_looking, "19q");
}

TEST(radix, ConversionLeavesErrnoAsTheConversionSetIt) {
  errno = 0;
  option_engine::strtol_by_radix("99999999999999999999", nullptr);
  EXPECT_EQ(errno, ERANGE);
  int bad = 0;
  EXPECT_EQ(option_engine::strtoul_by_radix("FFFFFFFFFFFFFFFFh", &bad), ~0UL);
  EXPECT_EQ(bad, 0);
}

TEST_F(args, NumbersAreStoredAfterTheirCheck) {
  EXPECT_EQ(run("-number=1Fh"), 1);
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 31);
  EXPECT_STREQ(opts.getstrarg(T::NUMBER, 0), "31");
  EXPECT_EQ(run("-level=0x8"), 1);
  EXPECT_EQ(opts.getnumarg(T::LEVEL, 0), 8);
  EXPECT_EQ(run("-hex=ffh"), 1);
  EXPECT_STREQ(opts.getstrarg(T::HEX, 0), "0xFF");
  run("-numbers=1");
  script_tokens({"2"});
  run("-numbers");
  EXPECT_EQ(opts.getargcount(T::NUMBERS), 2);
  EXPECT_EQ(opts.getnumarg(T::NUMBERS, 1), 2);
}

TEST_F(args, RangeMessagesNameTheOptionAndTheArgument) {
  EXPECT_EXIT(run("-number=-5"), ExitedWithCode(1),
              "argument to option --number \\(count\\) is out of range \\(must be a "
              "non-negative_number\\)");
  EXPECT_EXIT(run("-number=99999999999999999999"), ExitedWithCode(1),
              "argument to option --number \\(count\\) is out of range\n");
  EXPECT_EXIT(run("-number=19q"), ExitedWithCode(1), "out of range\n");
  EXPECT_EXIT(run("-level=9"), ExitedWithCode(1),
              "argument to option --level \\(1-8\\) is out of range \\(must be a number from 1 "
              "to 8");
  EXPECT_EXIT(run("r=9"), ExitedWithCode(1), "option -r \\(0-5\\).*from 0 to 5");
}

// An unsigned option without a range of its own is handed the signed bounds,
// so it is not "unbounded" for its type: values above them are refused, and
// the message names both bounds, cut to 32 bits.
TEST_F(args, UnsignedOptionGetsTheSignedDefaultBounds) {
  EXPECT_EQ(run("-hex=0x7FFFFFFFFFFFFFFF"), 1);
  EXPECT_EXIT(run("-hex=0x8000000000000000"), ExitedWithCode(1),
              "argument to option --hex \\(address\\) is out of range \\(must be a number from 0 "
              "to 4294967295\n");
  EXPECT_EXIT(run("-hex=-1"), ExitedWithCode(1), "must be a number from 0 to 4294967295");
}

TEST_F(args, MissingParameterEndsTheRun) {
  EXPECT_EXIT(run("-alpha_beta="), ExitedWithCode(1),
              "option --alpha_beta is missing its parameter 'word'");
  EXPECT_EXIT(run("-alpha_beta"), ExitedWithCode(1), "missing its parameter");  // stream ended
  EXPECT_EXIT(run("-number"), ExitedWithCode(1), "option --number is missing its parameter");
  EXPECT_EXIT(run("-rate="), ExitedWithCode(1), "option --rate is missing its parameter '0-5'");
  EXPECT_EXIT(run("-mode="), ExitedWithCode(1), "option --mode is missing its parameter 'mode'");
  EXPECT_EXIT(run("-color"), ExitedWithCode(1), "option --color is missing its parameter");
}

TEST_F(args, AnIdOutsideTheTableParsesNothing) {
  const int outside = T::OPTION_COUNT;
  EXPECT_EQ(opts.parse_arg(outside, "", "", parse_text, nullptr), nullptr);
  EXPECT_EQ(opts.parse_arg(outside, "=-3", "", parse_number, nullptr), nullptr);
  opts.check_numerical_arg(parse_number, outside, "", "x", nullptr);  // returns quietly
  long value = 0;
  EXPECT_EQ(opts.parse_oneof(outside, "=red", "", parse_oneof_type, &value), 0);
}

TEST_F(args, OneOfWordsMatchWholeAndInAnyCase) {
  EXPECT_EQ(run("-color=GREEN"), 1);
  EXPECT_EQ(opts.getnumarg(T::COLOR, 0), T::ITEM_COLOR_GREEN);
  EXPECT_STREQ(opts.getstrarg(T::COLOR, 0), "green");
  EXPECT_EQ(run("-color=teal"), 1);  // unlisted, yet accepted
  EXPECT_EQ(opts.getnumarg(T::COLOR, 0), T::ITEM_COLOR_TEAL);
  script_tokens({"Red"});
  EXPECT_EQ(run("-color"), 1);
  EXPECT_EQ(opts.getnumarg(T::COLOR, 0), T::ITEM_COLOR_RED);
  EXPECT_EXIT(run("-color=gre"), ExitedWithCode(1),
              "bad argument to option --color: should be one of \\{red,green\\}");
}

TEST_F(args, DeprecatedWordWarnsAndIsTaken) {
  EXPECT_EQ(capture_output(stderr, [this] { EXPECT_EQ(run("-color=Crimson"), 1); }),
            "WARNING: argument 'crimson' to option '--color' is deprecated and will be removed "
            "in a future release\n");
  EXPECT_EQ(opts.getnumarg(T::COLOR, 0), T::ITEM_COLOR_CRIMSON);
}

TEST_F(args, OneOfListsKeepEveryWord) {
  run("-shapes=round");
  run("-shapes=SQUARE");
  EXPECT_EQ(opts.getargcount(T::SHAPES), 2);
  EXPECT_STREQ(opts.getstrarg(T::SHAPES, 0), "round");
  EXPECT_STREQ(opts.getstrarg(T::SHAPES, 1), "square");
}

}  // namespace
