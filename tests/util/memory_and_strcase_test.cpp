#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "UTIL/safemalloc.h"
#include "UTIL/strcase.h"

namespace {

TEST(SafeMalloc, ReallocOfNullAllocatesAndCallocZeroes) {
  char* grown = static_cast<char*>(saferealloc(nullptr, 8));
  strcpy(grown, "1234567");
  grown = static_cast<char*>(saferealloc(grown, 4096));
  EXPECT_STREQ(grown, "1234567");
  free(grown);

  unsigned char* zeroed = static_cast<unsigned char*>(safecalloc(64, 4));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(zeroed), 256), std::string(256, '\0'));
  free(zeroed);
}

TEST(SafeMallocDeathTest, ExhaustionEndsTheProcess) {
  const size_t impossible = SIZE_MAX - 16;
  // A sanitizer's allocator may warn first.
  const char* message = "ERROR: out of memory\n$";
  EXPECT_EXIT(safemalloc(impossible), testing::ExitedWithCode(1), message);
  EXPECT_EXIT(saferealloc(nullptr, impossible), testing::ExitedWithCode(1), message);
  EXPECT_EXIT(safecalloc(impossible, 2), testing::ExitedWithCode(1), message);
}

TEST(StrCase, ComparesFoldedCharacters) {
  EXPECT_EQ(strcaseicmp("HeLLo", "hEllO"), 0);
  EXPECT_EQ(strcaseicmp("abC", "AB"), 'c');  // a prefix: the folded next character
  EXPECT_EQ(strcaseicmp("AB", "abC"), -'c');
  EXPECT_EQ(strcaseicmp("Z", "a"), 'z' - 'a');  // folded before the difference
  EXPECT_EQ(strcaseincmp("abcX", "ABCy", 3), 0);
  EXPECT_EQ(strcaseincmp("abcX", "ABCy", 4), 'x' - 'y');
  EXPECT_EQ(strcaseincmp("a", "b", 0), 0);
  EXPECT_EQ(strcaseincmp("Ab", "aB", 100), 0);
}

TEST(StrCase, FindsThePartRegardlessOfCase) {
  const char* text = "Option --Opt_Level here";
  EXPECT_EQ(strcaseistr(text, "--OPT_level"), text + 7);
  EXPECT_EQ(strcaseistr(text, "O"), text);
  EXPECT_EQ(strcaseistr(text, ""), text);
  EXPECT_EQ(strcaseistr(text, "missing"), nullptr);
  EXPECT_EQ(strcaseistr("ab", "abc"), nullptr);
}

}  // namespace
