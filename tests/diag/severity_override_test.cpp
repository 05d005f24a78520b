// Run-time severity overrides of catalogue rows.
#include "DIAG/messages.h"
#include "diag_fixture.h"

namespace {

using OverrideTest = DiagTest;

TEST_F(OverrideTest, ByCodeByListAndBySeverityWithSaveAndRestore) {
  // A warning made an error counts; a suppressed error prints nothing.
  DIAGNOSTIC::override_severity(24003, dc_error);
  DIAGNOSTIC::override_severity(24002, dc_suppressed);
  DIAG::optgen_conflict_override_option(__FILE__, __LINE__, "-a", "-b").report();
  DIAG::optgen_conflict_option(__FILE__, __LINE__, "-a", "-b").report();
  EXPECT_EQ(output(), "error: option -a overrides preceding option -b\n");
  EXPECT_EQ(DIAGNOSTIC::error_count_m, 1);
  // Refused severities, closed rows and unknown codes change nothing.
  DIAGNOSTIC::override_severity(24003, dc_no_error);
  DIAGNOSTIC::override_severity(24003, dc_debug);
  EXPECT_EQ(row(24003).severity, dc_error);
  for (int code : {24007, 6000, 99900, 99921, 99922, 99923, 99927}) {
    const dc_SEVERITY before = row(code).severity;
    DIAGNOSTIC::override_severity(code, dc_remark);
    EXPECT_EQ(row(code).severity, before) << code;
  }
  DIAGNOSTIC::override_severity(12345, dc_remark);
  // A list reads the digits across other characters up to each comma.
  DIAGNOSTIC::override_severity("240 03,x24004,,99999999999999,", dc_remark);
  EXPECT_EQ(row(24003).severity, dc_remark);
  EXPECT_EQ(row(24004).severity, dc_remark);
  EXPECT_EQ(row(24016).severity, dc_warning);

  // By severity every open row of it moves; save keeps the last copy, restore
  // goes back to it (and does nothing before any save).
  DIAGNOSTIC::restore_severities();
  EXPECT_EQ(row(24003).severity, dc_remark);
  DIAGNOSTIC::save_severities();
  DIAGNOSTIC::override_severity(dc_warning, dc_error);
  EXPECT_EQ(row(24039).severity, dc_error);
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
