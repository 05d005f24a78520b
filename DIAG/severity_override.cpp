// Run-time changes of the severities of catalogue rows, and a saved copy of
// all severities.
#include <cctype>
#include <cstdint>

#include "DIAG/diag.h"

namespace {

bool open_to_override(const DIAG_INFO& row) {
  return !row.internal && !row.non_discretionary && row.severity != dc_fatal;
}

bool acceptable_severity(dc_SEVERITY sev) {
  return sev != dc_no_error && sev != dc_debug;
}

// Larger numbers than any code stay out of range instead of overflowing.
constexpr int64_t code_ceiling = INT32_MAX;

}  // namespace

void DIAGNOSTIC::override_severity(int code, dc_SEVERITY sev) {
  DIAG_INFO* row = get_info(code);
  if (row == nullptr || !acceptable_severity(sev) || !open_to_override(*row)) return;
  row->severity = sev;
}

void DIAGNOSTIC::override_severity(const char* codes, dc_SEVERITY sev) {
  if (codes == nullptr) return;
  int64_t number = 0;
  for (const char* p = codes;; ++p) {
    if (std::isdigit(static_cast<unsigned char>(*p))) {
      number = number * 10 + (*p - '0');
      if (number > code_ceiling) number = code_ceiling + 1;
    } else if (*p == ',' || *p == '\0') {
      if (number <= code_ceiling) override_severity(static_cast<int>(number), sev);
      number = 0;
      if (*p == '\0') break;
    }
  }
}

void DIAGNOSTIC::override_severity(dc_SEVERITY from, dc_SEVERITY to) {
  for (DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; ++row) {
    if (row->severity == from) override_severity(row->code, to);
  }
}

void DIAGNOSTIC::save_severities() {
  saved_severities_m.clear();
  for (const DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; ++row) {
    saved_severities_m.push_back(row->severity);
  }
}

void DIAGNOSTIC::restore_severities() {
  DIAG_INFO* row = DIAG_INFO_ENTRY;
  for (dc_SEVERITY saved : saved_severities_m) {
    if (row->code == 0) break;
    (row++)->severity = saved;
  }
}
