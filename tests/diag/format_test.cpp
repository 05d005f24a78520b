// Line wrapping of printed messages and of text formatted for documents.
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "DIAG/messages.h"
#include "diag_fixture.h"

namespace {

using FormatTest = DiagTest;
using sp_text = std::unique_ptr<char, decltype(&std::free)>;

// The message "error: <text>" of a row whose whole text is one placeholder.
std::string reported(const std::string& text) {
  DIAG::optgen_depdiag_error(__FILE__, __LINE__, text.c_str()).report();
  return text;
}

// n words "abcd" separated by single blanks.
std::string words(int n) {
  std::string text;
  for (int i = 0; i < n; ++i)
    text += i ? " abcd" : "abcd";
  return text;
}

const std::string continuation = "\n   ";

TEST_F(FormatTest, LinesBreakAtTheLastBlankThatFits) {
  const std::string x69(69, 'x'), x70(70, 'x'), x60(60, 'x'), y20(20, 'y'), w100(100, 'w');
  // "error: " leaves 72 columns; continuation lines are indented by 3.
  const std::pair<std::string, std::string> cases[] = {
      {"short text ", "short text "},                         // whole, with its trailing blank
      {x69 + " yy", x69 + continuation + "yy"},               // exactly the room
      {x60 + "    " + y20, x60 + continuation + y20},         // the blank run goes
      {x70 + "   yyyy", x70 + "  " + continuation + "yyyy"},  // a blank past the end
      {"hello world " + w100, "hello world" + continuation + std::string(76, 'w') + continuation +
                                  std::string(24, 'w')},  // an overlong word
      {"first\nsecond", "first" + continuation + "second"},
  };
  for (const auto& [text, printed] : cases) {
    const size_t before = output().size();
    reported(text);
    EXPECT_EQ(output().substr(before), "error: " + printed + "\n");
  }
  DIAGNOSTIC::wrap_enabled_m = false;  // a line end in the text still breaks
  const size_t before = output().size();
  reported(std::string(100, 'x') + "\nsecond");
  EXPECT_EQ(output().substr(before), "error: " + std::string(100, 'x') + continuation + "second\n");
}

TEST_F(FormatTest, IndentAppliesToEveryLineOfAMessage) {
  DIAGNOSTIC::push_indent(2);
  DIAGNOSTIC::push_indent(1);
  DIAGNOSTIC::pop_indent();
  reported(words(20));
  DIAGNOSTIC::pop_indent();
  DIAGNOSTIC::indent_m = 4;
  DIAGNOSTIC::pop_indent();  // empty stack
  EXPECT_EQ(DIAGNOSTIC::indent_m, 0);
  // "  error: " leaves 70 columns, continuation lines get 2 + 3 blanks and 74.
  EXPECT_EQ(output(), "  error: " + words(14) + "\n     " + words(6) + "\n");
}

TEST_F(FormatTest, SpPrintLineWidthsAreExactly66And69) {
  auto sp = [](const std::string& text) {
    const sp_text formatted(
        DIAG::optgen_depdiag_error(__FILE__, __LINE__, text.c_str()).get_sp_buffer(), &std::free);
    return std::string(formatted.get());
  };
  const std::string a60 = std::string(60, 'a') + " ", x66 = std::string(66, 'x') + " ";
  const std::string next = "\n" + std::string(10, ' ');
  EXPECT_EQ(sp(a60 + "bbbbb c"), a60 + "bbbbb" + next + "c");
  EXPECT_EQ(sp(a60 + "bbbbbb c"), std::string(60, 'a') + next + "bbbbbb c");
  EXPECT_EQ(sp(x66 + std::string(69, 'y') + " z"),
            std::string(66, 'x') + next + std::string(69, 'y') + next + "z");
  EXPECT_EQ(sp(x66 + std::string(60, 'y') + " " + std::string(9, 'z')),
            std::string(66, 'x') + next + std::string(60, 'y') + next + std::string(9, 'z'));
}

TEST_F(FormatTest, SpPrintKeepsEarlierResultsAndIgnoresSuppression) {
  DIAG::shell_tunewise_results three(__FILE__, __LINE__, "3");
  DIAG::shell_tunewise_results five(__FILE__, __LINE__, "5");
  DIAGNOSTIC::wrap_enabled_m = false;  // as the advice document is built
  ASSERT_TRUE(three.suppress());
  const sp_text first(three.get_sp_buffer(), &std::free);
  const sp_text second(five.get_sp_buffer(), &std::free);
  EXPECT_STREQ(first.get(),
               "Tunewise completed and best results were obtained with speed vs size setting 3 "
               "(--opt_for_speed=3).");
  EXPECT_NE(std::string(second.get()).find("setting 5 (--opt_for_speed=5)."), std::string::npos);
}

using FormatDeathTest = DiagTest;

TEST_F(FormatDeathTest, TooNarrowLineStopsTheProcess) {
  DIAGNOSTIC::diag_cols_m = 3;
  EXPECT_DEATH(reported("text"), "diag_cols > \\(indent \\+ wrap_indent\\)");
}

}  // namespace
