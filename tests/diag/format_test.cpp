// Line wrapping of printed messages and of text formatted for documents, and
// the quoted source line under a message.
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "DIAG/messages.h"
#include "diag_fixture.h"
#include "tests/util/temp_dir.h"

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

class AnnotatedSourceTest : public DiagTest {
 protected:
  void SetUp() override {
    DiagTest::SetUp();
    write_file(path_, "line one\n  second line\nthird");
    DIAGNOSTIC::verbose_m = true;
  }
  void report_at(const std::string& file, unsigned line, unsigned column, bool approx) {
    DIAG_SRCINFO_DATA where(file, line, column, approx);
    DIAG::optgen_depdiag_error(__FILE__, __LINE__, "m").set_src(&where).report();
  }
  static std::string header(const std::string& file, unsigned line) {
    return "\"" + file + "\", line " + std::to_string(line);
  }
  TempDir dir_;
  const std::string path_ = dir_.file("source.txt");
};

TEST_F(AnnotatedSourceTest, QuotesExactPositionsOnlyWithACaretUnderTheColumn) {
  report_at(path_, 2, 3, false);
  report_at(path_, 1, 0, false);
  report_at(path_, 2, 3, true);
  report_at(path_, 9, 1, false);
  report_at("no/such/file", 1, 1, false);
  EXPECT_EQ(output(), header(path_, 2) + ": error: m\n  second line\n  ^\n" +  //
                          header(path_, 1) + ": error: m\nline one\n" +        //
                          header(path_, 2) + " (approximate): error: m\n" +    //
                          header(path_, 9) + ": error: m\n" +                  //
                          header("no/such/file", 1) + ": error: m\n");
}

}  // namespace
