#pragma once
// Compile-time view of the message catalogue: the codes of its rows in table
// order, followed by the terminating 0. The writable rows themselves are
// DIAG_INFO_ENTRY.
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace DIAG {

inline constexpr int32_t catalogue_codes[] = {
#define DIAG_ROW(code, ...) code,
#include "DIAG/messages.inc"
    0,
};

// Rows without the terminating one.
inline constexpr std::size_t catalogue_rows = std::size(catalogue_codes) - 1;

constexpr bool codes_ascend_to_terminator() {
  for (std::size_t i = 0; i < catalogue_rows; ++i) {
    if (catalogue_codes[i] <= 0) return false;
    if (i > 0 && catalogue_codes[i] <= catalogue_codes[i - 1]) return false;
  }
  return catalogue_codes[catalogue_rows] == 0;
}

static_assert(codes_ascend_to_terminator(),
              "catalogue codes must ascend and only the last row may have code 0");

}  // namespace DIAG
