// Showing, counting and stopping: the diagnostic core, and run-time severity
// overrides of catalogue rows.
#include <cstdlib>
#include <memory>
#include <string>

#include "DIAG/catalogue.h"
#include "DIAG/messages.h"
#include "diag_fixture.h"

namespace {

using CoreTest = DiagTest;
using CoreDeathTest = DiagTest;

void report_error(int n) {
  DIAG::optgen_depdiag_error(__FILE__, __LINE__, std::to_string(n).c_str()).report();
}

TEST_F(CoreTest, StreamFollowsTheSeverityUnlessRedirected) {
  DIAGNOSTIC::fp_m = nullptr;
  DIAG::optgen_depdiag_remark remark(__FILE__, __LINE__, "r");
  EXPECT_EQ(remark.fp(), stdout);
  row(24038).severity = dc_SEVERITY{9};
  EXPECT_EQ(remark.fp(), stderr);
  EXPECT_STREQ(remark.sev_str(), "(unknown)");
  EXPECT_FALSE(remark.suppress());
}

TEST_F(CoreDeathTest, HundredthErrorGoesOnAndTheNextOneEndsTheRun) {
  DIAGNOSTIC::fp_m = nullptr;
  EXPECT_EXIT(
      {
        for (int i = 1; i <= 100; ++i)
          report_error(i);
        std::fputs("still running\n", stderr);
        report_error(101);
        std::exit(0);
      },
      ::testing::ExitedWithCode(1),
      "error: 100\nstill running\nerror: 101\nfatal error: error limit reached; 100 errors "
      "detected\n$");
}

TEST_F(CoreTest, DebugModeMakesErrorsAndFatalErrorsHarmless) {
  const auto pop = [] { return DIAGNOSTIC::pop_debug_mode(), DIAGNOSTIC::debug_mode_m; };
  DIAGNOSTIC::push_debug_mode(true), DIAGNOSTIC::push_debug_mode(true);
  DIAGNOSTIC::display_code_m = true;  // an error row is discretionary, a fatal one not
  DIAG::optgen_no_small_memmodel(__FILE__, __LINE__).report();
  for (int i = 0; i < 150; ++i)
    report_error(i);
  EXPECT_TRUE(pop());
  EXPECT_FALSE(pop());
  DIAGNOSTIC::debug_mode_m = true;
  EXPECT_FALSE(pop());  // empty stack
  EXPECT_EQ(DIAGNOSTIC::error_count_m, 0);
  EXPECT_EQ(output().rfind("fatal error #24034: Small memory model is no longer supported\n"
                           "error #24040-D: 0\n", 0), 0u);
}

TEST_F(CoreTest, AllocCopiesFieldsAndPositionAndEqualityIgnoresArgumentsAndApprox) {
  DIAG_SRCINFO_DATA here("a.c", 4, 2, false), here_approx("a.c", 4, 2, true),
      next_line("a.c", 5, 2, false), next_column("a.c", 4, 3, false);
  auto original = std::make_unique<DIAG::optgen_conflict_option>(__FILE__, __LINE__, "-x", "-y");
  original->set_src(&here);
  std::unique_ptr<DIAGNOSTIC> copy(original->alloc());
  ASSERT_NE(copy->srcinfo, original->srcinfo);
  DIAG::optgen_conflict_option other_args(__FILE__, __LINE__, "-p", "-q"),
      moved(__FILE__, __LINE__, "-x", "-y");
  DIAG::optgen_conflict_override_option other_row(__FILE__, __LINE__, "-x", "-y");
  EXPECT_EQ(std::unique_ptr<DIAGNOSTIC>(other_row.alloc())->srcinfo, nullptr);  // no position
  other_args.set_src(&here_approx);
  moved.set_src(&next_line);
  other_row.set_src(&here);
  EXPECT_TRUE(copy->is_equal(original.get()) && copy->is_equal(&other_args));
  EXPECT_FALSE(copy->is_equal(&moved) || copy->is_equal(&other_row));
  EXPECT_FALSE(copy->srcinfo->is_equal(&next_column));
  original.reset(), DIAGNOSTIC::display_code_m = true;  // the code counts too
  const size_t printed = static_cast<size_t>(copy->report());  // all of it but the line end
  EXPECT_EQ(output(),
            "\"a.c\", line 4: error #24002-D: option -x conflicts with previous option -y\n");
  EXPECT_EQ(printed, output().size() - 1);
}

TEST_F(CoreTest, SeveritiesOverrideByCodeByListAndBySeverityWithSaveAndRestore) {
  // A warning made an error counts; a suppressed error prints nothing.
  DIAGNOSTIC::override_severity(24003, dc_error);
  DIAGNOSTIC::override_severity(24002, dc_suppressed);
  DIAG::optgen_conflict_override_option(__FILE__, __LINE__, "-a", "-b").report();
  DIAG::optgen_conflict_option(__FILE__, __LINE__, "-a", "-b").report();
  EXPECT_EQ(output(), "error: option -a overrides preceding option -b\n");
  EXPECT_EQ(DIAGNOSTIC::error_count_m, 1);
  // Refused severities, closed rows and unknown codes change nothing.
  for (dc_SEVERITY refused : {dc_no_error, dc_debug})
    DIAGNOSTIC::override_severity(24003, refused);
  EXPECT_EQ(row(24003).severity, dc_error);
  for (int code : {24007, 6000, 99900, 99921, 99922, 99923, 99927}) {
    const dc_SEVERITY before = row(code).severity;
    DIAGNOSTIC::override_severity(code, dc_remark);
    EXPECT_EQ(row(code).severity, before) << code;
  }
  DIAGNOSTIC::override_severity(12345, dc_remark);
  DIAGNOSTIC::override_severity(nullptr, dc_remark);
  // A list reads the digits across other characters up to each comma; a number
  // past the codes stays there (it would wrap to 24016 at 64 bits).
  DIAGNOSTIC::override_severity("240 03,x24017,,18446744073709575632,", dc_remark);
  EXPECT_EQ(row(24017).severity, dc_remark);
  EXPECT_EQ(row(24016).severity, dc_warning);

  // By severity every open row of it moves; save keeps the last copy, restore
  // goes back to it (and does nothing before any save).
  DIAGNOSTIC::restore_severities();
  EXPECT_EQ(row(24003).severity, dc_remark);
  DIAGNOSTIC::save_severities();
  DIAGNOSTIC::override_severity(dc_warning, dc_error);
  EXPECT_EQ(row(99922).severity, dc_warning);
  DIAGNOSTIC::save_severities();
  DIAGNOSTIC::override_severity(dc_remark, dc_error);
  EXPECT_EQ(row(24004).severity, dc_error);
  DIAGNOSTIC::restore_severities();
  EXPECT_EQ(row(24004).severity, dc_remark);
  EXPECT_EQ(row(24039).severity, dc_error);
  DIAGNOSTIC::override_severity(dc_error, dc_warning);
  EXPECT_EQ(row(24039).severity, dc_warning);
  EXPECT_EQ(row(99923).severity, dc_error);
  DIAGNOSTIC::restore_severities();  // the copy stays
  EXPECT_EQ(row(24039).severity, dc_error);
}

}  // namespace
