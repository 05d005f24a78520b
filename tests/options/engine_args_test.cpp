// Arguments: radix rules, ranges and their messages, one-of words.
#include <cerrno>
#include <tuple>
#include <utility>

#include "test_family.h"

namespace {

using T = option_obj_test;
using ::testing::ExitedWithCode;

using Args = test_table_fixture;

TEST(Radix, SuffixesAndPrefixesPickTheRadix) {
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

// An unsigned option without a range of its own is handed the signed bounds,
// so it is not "unbounded" for its type: values above them are refused, and
// the message names both bounds, cut to 32 bits.
TEST_F(Args, RefusedArgumentsEndTheRunWithAMessageNamingOptionAndArgument) {
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
      {"-alpha_beta=", "option --alpha_beta is missing its parameter 'word'"},
      {"-alpha_beta", "missing its parameter"},  // the stream ended
      {"-number", "option --number is missing its parameter"},
      {"-rate=", "option --rate is missing its parameter '0-5'"},
      {"-mode=", "option --mode is missing its parameter 'mode'"},
      {"-color=gre", "bad argument to option --color: should be one of \\{red,green\\}"},
  };
  for (const auto& [token, message] : cases)
    EXPECT_EXIT(run(token), ExitedWithCode(1), message) << token;
}

}  // namespace
