#pragma once
// Test fixture: every message goes to a temporary file, and the switches the
// tests change, the counters and the row severities start from their defaults.
#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "DIAG/diag.h"
#include "tests/util/capture.h"

class DiagTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DIAGNOSTIC::fp_m = out_.file();
    DIAGNOSTIC::advice_m = false;
    DIAGNOSTIC::debug_m = false;
    DIAGNOSTIC::remarks_m = false;
    DIAGNOSTIC::verbose_m = false;
    DIAGNOSTIC::display_code_m = false;
    DIAGNOSTIC::debug_mode_m = false;
    DIAGNOSTIC::indent_m = 0;
    DIAGNOSTIC::debug_mode_stack_m = {};
    DIAGNOSTIC::indent_stack_m = {};
    DIAGNOSTIC::error_count_m = 0;
    DIAGNOSTIC::saved_severities_m.clear();
    for (const DIAG_INFO* r = DIAG_INFO_ENTRY; r->code != 0; ++r)
      severities_.push_back(r->severity);
  }

  void TearDown() override {
    DIAG_INFO* r = DIAG_INFO_ENTRY;
    for (dc_SEVERITY sev : severities_)
      (r++)->severity = sev;
    DIAGNOSTIC::fp_m = nullptr;
  }

  // Everything written to DIAGNOSTIC::fp_m since the test began.
  std::string output() const { return out_.text(); }

  static DIAG_INFO& row(int code) {
    DIAG_INFO* found = DIAGNOSTIC::get_info(code);
    if (found == nullptr) throw std::runtime_error("no catalogue row " + std::to_string(code));
    return *found;
  }

 private:
  captured_stream out_;
  std::vector<dc_SEVERITY> severities_;
};
