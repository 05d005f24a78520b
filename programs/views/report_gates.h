#pragma once
// The verdicts a CI job gates on: each function returns one line for each
// thing that fails the gate, and nothing when it passes.

#include "programs/views/link_sizes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class ADVICE;
class PERF_RESULTS;

// A limit on growth in percent, kept exactly as millionths of a percent.
struct GROWTH_LIMIT {
  uint64_t millionths = 0;
  std::string text;  // as the user wrote it, for messages
};

// Reads a percentage: digits with an optional fraction of up to six digits,
// at most 1000000; nothing for any other text.
std::optional<GROWTH_LIMIT> parse_growth_limit(const std::string& text);

// The budget of a size gate: the most bytes the new code size may have and
// the most it may grow; a limit left out is not checked.
struct SIZE_BUDGET {
  std::optional<uint64_t> max_bytes;
  std::optional<GROWTH_LIMIT> max_growth;
};

// Fails a new code size over max_bytes, or one that grew by more than
// max_growth percent of the old one (any growth from an old size of 0).
std::vector<std::string> size_gate_failures(const SIZE_DIFF& diff, const SIZE_BUDGET& budget);

// Fails a chart without bars, a chart whose every bar linked with errors,
// and an advice document without entries.
std::vector<std::string> document_check_failures(const ADVICE& advice,
                                                 const PERF_RESULTS& results);
