#include "UTIL/cmdfile.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using words = std::vector<std::string>;

// Every word fnextopt gives for content.
words tokens(std::string content) {
  FILE* stream = fmemopen(content.data(), content.size(), "r");
  words result;
  while (char* word = fnextopt(stream)) {
    result.emplace_back(word);
    free(word);
  }
  fclose(stream);
  return result;
}

TEST(Fnextopt, Tokenizes) {
  const struct {
    std::string content;
    words expected;
  } cases[] = {
      {" \t\r\n ; comment\n# another\n /* block\n */ \n", {}},
      {"--opt_level=2 -g\r\n\r\n--quiet\tlast", {"--opt_level=2", "-g", "--quiet", "last"}},
      // Quoted parts join the word and keep blanks, ";", "#" and "/*".
      {"\"a b\"c x\"y;#z\" \"/*no*/\" \"\" w", {"a bc", "xy;#z", "/*no*/", "w"}},
      // \" and \\ stand for the second character, in and out of quotes; others stay.
      {R"(a\"b c\\d e\nf g\\\"h "q\"r\\s\t")",
       {R"(a"b)", R"(c\d)", R"(e\nf)", R"(g\"h)", R"(q"r\s\t)"}},
      // Comments continue the word.
      {"ab/*c d*/ef /* * / */y path/ z a/*c*/*b", {"abef", "y", "path/", "z", "a*b"}},
      {"abc;x\ndef #c\nw x#y\nz last;no newline", {"abcdef", "w", "xz", "last"}},
      // "#" behind a dash is part of the word, unless white space stands between.
      {"--x=1#2 -D#a \"- x\"#c\nq", {"--x=1#2", "-D#a", "- xq"}},
      // Long words come back whole.
      {std::string(200, 'w') + " \"" + std::string(500, 'q') + "\"",
       {std::string(200, 'w'), std::string(500, 'q')}},
      // A word ends for its readers at a NUL byte, but is read to its end by
      // the same rules: comments, and "#" behind a dash.
      {std::string("a\0/* b */-#c d\n e", 17), {"a", "d", "e"}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(tokens(c.content), c.expected) << c.content;
  EXPECT_EQ(fnextopt(nullptr), nullptr);
}

TEST(OpenCommandFile, RefusesDirectoriesAndNestingAndTakesAnyDescriptor) {
  EXPECT_TRUE(open_command_file("/") == nullptr && errno == EISDIR);
  const int input = dup(0);
  close(0);  // standard input closed: the file opened next is descriptor 0
  FILE* stream = open_command_file("/dev/null");
  EXPECT_TRUE(open_command_file("/dev/null") == nullptr && errno == EBUSY);  // no nesting
  EXPECT_EQ(stream ? fclose(stream) : EOF, 0);
  dup2(input, 0), close(input);
}

// The other aborts are the end-to-end cases'; exit(-1) reaches the parent as 255.
TEST(FnextoptDeathTest, QuoteExcerptShowsLineEndsAndTabsEscaped) {
  EXPECT_EXIT(tokens("pre\"a\tb\nc1234567890123456789012345+"), testing::ExitedWithCode(255),
              "Quote starts at \"a\\\\tb\\\\nc1234567890123456789012345\n$");  // 30 characters
}

}  // namespace
