#include <gtest/gtest.h>

#include <string>

#include "UTIL/text_queue.h"
#include "capture.h"

namespace {

std::string filled(const std::string& text, const std::string& padding) {
  return write_to_string([&](FILE* out) { fill_text(out, text.c_str(), padding.c_str()); });
}

// count copies of "abcdef" joined by blanks: blanks stand at 6, 13, 20, ...
std::string words(int count) {
  std::string text = "abcdef";
  for (int i = 1; i < count; ++i)
    text += " abcdef";
  return text;
}

TEST(FillText, WrapsAtBlanksAndIndentsContinuations) {
  EXPECT_EQ(filled("", "    "), "\n");
  EXPECT_EQ(filled("Short help", "      "), "Short help\n");
  // The first line may reach column 79, later ones 78 behind the previous break.
  EXPECT_EQ(filled(words(25), ""), words(11) + "\n " + words(11) + "\n " + words(3) + "\n");
  // A padding of 10 leaves 69 columns, with a blank right at 69; indent 11.
  const std::string indent(11, ' ');
  EXPECT_EQ(filled(words(25), std::string(10, '.')),
            words(10) + "\n" + indent + words(9) + "\n" + indent + words(6) + "\n");
}

TEST(FillText, WordLongerThanTheLineStaysWhole) {
  const std::string huge(100, 'x');
  EXPECT_EQ(filled("short " + huge + " tail", ""), "short\n " + huge + "\n tail\n");
  EXPECT_EQ(filled(huge, "  "), huge + "\n");
  EXPECT_EQ(filled("one two", std::string(100, ' ')), "one\n" + std::string(101, ' ') + "two\n");
}

TEST(FillText, LineEndsInTheTextGiveAnEmptyLine) {
  EXPECT_EQ(filled("first\nsecond", "    "), "first\n\n     second\n");
  EXPECT_EQ(filled("ends with newline\n", ""), "ends with newline\n\n");
}

}  // namespace
