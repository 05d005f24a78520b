#pragma once
// The texts that the terminal report and the page share.

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"

#include <cstdint>

#include <string>

// "best" for green, "error" for red (the build linked with errors), "other"
// for every other colour.
const char* bar_meaning(const std::string& color);

// The entry stating the current settings, or nullptr (points into entries).
const ADVICE_INFO* settings_entry(const ADVICE::entry_map& entries);

// The text of the entry stating the current settings, or "none recorded".
std::string settings_line(const ADVICE::entry_map& entries);

// Whether an entry is shown in the advice list (all but the settings entry).
bool is_listed_advice(const ADVICE_INFO& info);

// What an entry recommends: "option=value", the value alone when the entry
// names no option, or "" when it recommends nothing.
std::string recommended_value(const ADVICE_INFO& info);

// The key of the first green bar, or "" when no bar is marked best.
std::string best_key(const PERF_RESULTS::bar_map& bars);

// A time in seconds since the Unix epoch as ISO 8601 in UTC:
// "2025-11-11T08:45:20Z".
std::string iso8601_utc(uint64_t seconds);
