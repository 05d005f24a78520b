// Message headers, source positions and the quoted source line.
#include <cstdio>
#include <string>

#include "DIAG/messages.h"
#include "diag_fixture.h"
#include "tests/util/temp_dir.h"

namespace {

using HeaderTest = DiagTest;

TEST_F(HeaderTest, AdviceHeaderCarriesTheCodeAndDiscretionaryMark) {
  DIAGNOSTIC::advice_m = true;
  DIAGNOSTIC::wrap_enabled_m = false;
  DIAG::shell_no_optimization_use3(__FILE__, __LINE__, "").report();
  DIAG::gadvice(__FILE__, __LINE__, "hint").report();
  EXPECT_EQ(output(),
            "advice #27007-D: Detecting compilation without optimization. Recommend setting "
            "--opt_level=3.\n"
            "advice #99927: hint\n");
}

TEST_F(HeaderTest, InternalRowShowsTheToolPosition) {
  DIAG::gapperror("tool/src", 42, "boom").report();
  EXPECT_EQ(output(), "tool/src:42:internal error #99924: (boom)\n");
  EXPECT_EQ(DIAGNOSTIC::error_count_m, 1);
}

TEST_F(HeaderTest, DisplaySwitchesAddCodeAndPositionToEveryHeader) {
  DIAGNOSTIC::display_code_m = true;
  DIAG::optgen_conflict_option("x.cpp", 7, "-a", "-b").report();
  DIAGNOSTIC::display_ipos_m = true;
  DIAG::optgen_depdiag_warning("x.cpp", 8, "w").report();
  DIAGNOSTIC::debug_mode_m = true;
  DIAG::optgen_unhandled_option_handler("x.cpp", 9, 5).report();
  EXPECT_EQ(output(),
            "error #24002-D: option -a conflicts with previous option -b\n"
            "x.cpp:8:warning #24039-D: w\n"
            "x.cpp:9:fatal error #24008: unhandled option handler [5]\n");
}

TEST_F(HeaderTest, SourcePositionPrecedesTheSeverity) {
  DIAG_SRCINFO_DATA where("in.cmd", 3, 0, false);
  DIAG::optgen_depdiag_error(__FILE__, __LINE__, "bad").set_src(&where).report();
  EXPECT_EQ(output(), "\"in.cmd\", line 3: error: bad\n");
}

TEST_F(HeaderTest, LongHeaderIsNotBrokenAndTheTextMovesToANewLine) {
  const std::string file(90, 'f');
  DIAG_SRCINFO_DATA where(file, 1, 0, false);
  DIAG::optgen_depdiag_error(__FILE__, __LINE__, "text").set_src(&where).report();
  EXPECT_EQ(output(), "\"" + file + "\", line 1: error: \n   text\n");
}

TEST_F(HeaderTest, SrcinfoStrShowsLineAndApproximationIndependently) {
  const DIAG_SRCINFO_DATA no_file("", 5, 1, true);
  const DIAG_SRCINFO_DATA approx_only("a.c", 0, 0, true);
  const DIAG_SRCINFO_DATA both("a.c", 12, 3, true);
  EXPECT_EQ(DIAGNOSTIC::srcinfo_str(nullptr), "");
  EXPECT_EQ(DIAGNOSTIC::srcinfo_str(&no_file), "");
  EXPECT_EQ(DIAGNOSTIC::srcinfo_str(&approx_only), "\"a.c\" (approximate)");
  EXPECT_EQ(DIAGNOSTIC::srcinfo_str(&both), "\"a.c\", line 12 (approximate)");
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
