// Line wrapping of printed messages and of text formatted for documents, and
// the quoted source line under a message.
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>

#include "DIAG/messages.h"
#include "diag_fixture.h"
#include "tests/util/temp_dir.h"

namespace {

using FormatTest = DiagTest;

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
  DIAG::optgen_depdiag_error(__FILE__, __LINE__, words(20).c_str()).report();
  DIAGNOSTIC::pop_indent();
  DIAGNOSTIC::indent_m = 4;
  DIAGNOSTIC::pop_indent();  // empty stack
  EXPECT_EQ(DIAGNOSTIC::indent_m, 0);
  // "  error: " leaves 70 columns, continuation lines get 2 + 3 blanks and 74.
  EXPECT_EQ(output(), "  error: " + words(14) + "\n     " + words(6) + "\n");
  EXPECT_EQ(DIAG::optgen_depdiag_error(__FILE__, __LINE__, "x").print(nullptr), 0);
  DIAGNOSTIC::indent_m = 76;  // no column left for the text behind "error: "
  EXPECT_DEATH(DIAG::optgen_depdiag_error(__FILE__, __LINE__, "x").report(), "^Assertion failed");
}

TEST_F(FormatTest, SpPrintLineWidthsAreExactly66And69) {
  auto sp = [](const std::string& text) {
    const std::unique_ptr<char, decltype(&std::free)> formatted(
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
  EXPECT_EQ(sp(" " + std::string(70, 'x')), " " + std::string(65, 'x') + next + "xxxxx");
  EXPECT_EQ(sp(x66 + x66 + x66 + "x"),  // more lines of text than the text has line ends
            std::string(66, 'x') + next + std::string(66, 'x') + next + x66 + "x");
}

// Each row reports "m" at a position; the message header is "<file>", line <line>.
TEST_F(FormatTest, QuotesExactPositionsOnlyWithACaretUnderTheColumn) {
  TempDir dir;
  const std::string path = dir.file("source.txt");
  write_file(path, "line one\n  second line\nthird");
  DIAGNOSTIC::verbose_m = true;
  const int lowest = dup(2);  // the number a source file left open would take
  close(lowest);
  const std::tuple<std::string, unsigned, unsigned, bool, const char*> cases[] = {
      {path, 2, 3, false, ": error: m\n  second line\n  ^\n"},
      {path, 1, 0, false, ": error: m\nline one\n"},
      {path, 2, 3, true, " (approximate): error: m\n"},
      {path, 9, 1, false, ": error: m\n"},
      {"no/such/file", 1, 1, false, ": error: m\n"},
      {std::string(59, 'f'), 1, 0, false, ": error: m\n"},       // 78 columns: room for "m"
      {std::string(60, 'f'), 1, 0, false, ": error: \n   m\n"},  // 79 columns: none
  };
  for (const auto& [file, line, column, approx, after_header] : cases) {
    const size_t before = output().size();
    DIAG_SRCINFO_DATA where(file, line, column, approx);
    DIAG::optgen_depdiag_error(__FILE__, __LINE__, "m").set_src(&where).report();
    EXPECT_EQ(output().substr(before),
              "\"" + file + "\", line " + std::to_string(line) + after_header)
        << file << ":" << line;
  }
  const size_t at = output().size();
  DIAG::optgen_depdiag_error(__FILE__, __LINE__, "m").report();  // no position: nothing quoted
  const std::string long_text(60, 'm');  // a message reported again is laid out afresh
  DIAG::optgen_depdiag_error again(__FILE__, __LINE__, long_text.c_str());
  again.report(), again.report();
  const std::string again_text = "error: " + long_text + "\n";
  EXPECT_EQ(output().substr(at), "error: m\n" + again_text + again_text);
  EXPECT_EQ(close(lowest), -1) << "a source file left open";
}

}  // namespace
