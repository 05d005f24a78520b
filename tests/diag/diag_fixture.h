#pragma once
// Test fixture: every message goes to a temporary file, and the switches the
// tests change, the counters and the row severities start from their defaults.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "DIAG/diag.h"
#include "tests/util/capture.h"

class DiagTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Everything written to DIAGNOSTIC::fp_m since the test began.
  std::string output() const { return out_.text(); }

  static DIAG_INFO& row(int code);

 private:
  captured_stream out_;
  std::vector<dc_SEVERITY> severities_;
};
