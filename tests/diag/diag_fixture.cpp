#include "diag_fixture.h"

#include <stdexcept>

void DiagTest::SetUp() {
  DIAGNOSTIC::fp_m = out_.file();
  DIAGNOSTIC::advice_m = false;
  DIAGNOSTIC::debug_m = false;
  DIAGNOSTIC::remarks_m = false;
  DIAGNOSTIC::verbose_m = false;
  DIAGNOSTIC::debug_mode_m = false;
  DIAGNOSTIC::indent_m = 0;
  DIAGNOSTIC::debug_mode_stack_m = {};
  DIAGNOSTIC::indent_stack_m = {};
  DIAGNOSTIC::error_count_m = 0;
  DIAGNOSTIC::saved_severities_m.clear();
  severities_.clear();
  for (const DIAG_INFO* r = DIAG_INFO_ENTRY; r->code != 0; ++r)
    severities_.push_back(r->severity);
}

void DiagTest::TearDown() {
  DIAG_INFO* r = DIAG_INFO_ENTRY;
  for (dc_SEVERITY sev : severities_)
    (r++)->severity = sev;
  DIAGNOSTIC::fp_m = nullptr;
}

DIAG_INFO& DiagTest::row(int code) {
  DIAG_INFO* found = DIAGNOSTIC::get_info(code);
  if (found == nullptr) throw std::runtime_error("no catalogue row " + std::to_string(code));
  return *found;
}
