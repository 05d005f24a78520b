#pragma once
// The texts that every view of the documents shares: what a bar means, the
// rules behind the chart, the order and widths of what is shown. Display
// only: nothing here changes the documents.

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// "best" for green, "error" for red (the build linked with errors), "other"
// for every other colour.
const char* bar_meaning(const std::string& color);

// A mark that carries the meaning without colour: "★" best, "✕" error, "·" other.
const char* meaning_mark(const std::string& color);

// One sentence per meaning, naming the colour words the documents use for it.
struct LEGEND_ROW {
  const char* meaning;
  const char* colors;
  const char* explanation;
};
const std::vector<LEGEND_ROW>& legend_rows();

// How the best bar is chosen, in one line of fewer than 80 columns.
extern const char* const best_rule;
// Ties, what the best bar means for the speed setting, which series have one.
extern const char* const best_rule_detail;
// When a step of a series adds a bar.
extern const char* const link_time_rule;

// The bars in the order they are shown: by number when every key is a number
// (ties by text), else in the documents' own text order. Pointers into bars.
using shown_bar = std::pair<const std::string*, const PERF_INFO*>;
std::vector<shown_bar> display_order(const PERF_RESULTS::bar_map& bars);

// What the chart shows beside its bars: nothing special, no bars at all, or
// bars that all linked with errors.
enum class chart_state { bars, empty, all_errors };
chart_state state_of(const PERF_RESULTS::bar_map& bars);
// The sentence for the empty and all-errors states; "" for bars.
const char* state_sentence(chart_state state);

// The current settings as option and value, from the settings entry's text
// ("--opt_level=2" gives "--opt_level", "2"; a bare "-g" gives "-g", "on").
// Empty when no settings entry stands.
std::vector<std::pair<std::string, std::string>> settings_table(const ADVICE::entry_map& entries);
// The entry stating the current settings, or nullptr (points into entries).
const ADVICE_INFO* settings_entry(const ADVICE::entry_map& entries);

// The text of the entry stating the current settings, or "none recorded".
std::string settings_line(const ADVICE::entry_map& entries);

// Whether an entry is shown in the advice list (all but the settings entry).
bool is_listed_advice(const ADVICE_INFO& info);

// What an entry recommends: "option=value", the value alone when the entry
// names no option, or "" when it recommends nothing.
std::string recommended_value(const ADVICE_INFO& info);
// The words for an entry that recommends nothing: for a series' result the
// reason, else "".
const char* nothing_recommended(const ADVICE_INFO& info);

// A document's time stamp (seconds since the epoch) as local date and time,
// "YYYY-MM-DD HH:MM:SS ZONE"; "not recorded" for 0.
std::string local_time(uint64_t seconds);

// Columns that a UTF-8 text takes on a terminal: wide East Asian characters
// count two, combining marks none, a byte that is no UTF-8 one.
size_t display_width(const std::string& text);

// Splits text at blanks into lines of at most width columns; a word wider
// than that stands alone on a line of its own, never broken.
std::vector<std::string> wrap_words(const std::string& text, size_t width);

// The key of the first green bar, or "" when no bar is marked best.
std::string best_key(const PERF_RESULTS::bar_map& bars);

// A time in seconds since the Unix epoch as ISO 8601 in UTC:
// "2025-11-11T08:45:20Z".
std::string iso8601_utc(uint64_t seconds);
