#include "programs/views/report_words.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <regex>
#include <sstream>

namespace {

constexpr const char* settings_type = "curr_setting";
constexpr const char* results_type = "build_results";

bool is_number(const std::string& key) {
  static const std::regex number("[+-]?[0-9]+(\\.[0-9]+)?");
  return std::regex_match(key, number);
}

// seconds since the epoch in format, as local time or UTC; "" when they
// can't be shown.
std::string formatted_time(uint64_t seconds, bool local, const char* format) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  if ((local ? localtime_r(&time, &parts) : gmtime_r(&time, &parts)) == nullptr) return "";
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, format, &parts));
}

// The code point that starts at text[i] and its length in bytes; a byte that
// starts no well-formed sequence is returned alone as U+FFFD.
std::pair<char32_t, size_t> decode(const std::string& text, size_t i) {
  const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char lead = byte(i);
  const size_t length = lead < 0x80       ? 1
                        : lead >> 5 == 6  ? 2
                        : lead >> 4 == 14 ? 3
                        : lead >> 3 == 30 ? 4
                                          : 0;
  if (length == 0 || i + length > text.size()) return {U'\uFFFD', 1};
  if (length == 1) return {lead, 1};
  char32_t point = lead & (0x7F >> length);
  for (size_t k = 1; k < length; ++k) {
    if (byte(i + k) >> 6 != 2) return {U'\uFFFD', 1};
    point = point << 6 | (byte(i + k) & 0x3F);
  }
  return {point, length};
}

// Code points that a terminal shows in no column of their own (combining
// marks, zero-width characters) and those it shows two columns wide (East
// Asian wide and full-width characters, emoji).
using code_range = std::pair<char32_t, char32_t>;
// clang-format off
constexpr code_range zero_width[] = {
    {0x0300, 0x036F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
    {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
constexpr code_range double_width[] = {
    {0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0x33FF}, {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF}, {0xA000, 0xA4CF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
    {0xFE30, 0xFE4F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
// clang-format on

template <size_t count>
bool in(char32_t point, const code_range (&ranges)[count]) {
  return std::any_of(std::begin(ranges), std::end(ranges), [&](const code_range& range) {
    return point >= range.first && point <= range.second;
  });
}

size_t columns_of(char32_t point) {
  if (in(point, zero_width)) return 0;
  return in(point, double_width) ? 2 : 1;
}

}  // namespace

const char* bar_meaning(const std::string& color) {
  if (color == "green") return "best";
  if (color == "red") return "error";
  return "other";
}

const char* meaning_mark(const std::string& color) {
  if (color == "green") return "★";
  if (color == "red") return "✕";
  return "·";
}

const std::vector<LEGEND_ROW>& legend_rows() {
  static const std::vector<LEGEND_ROW> rows = {
      {"best", "green", "the best setting of a --opt_for_speed series, by the rule below"},
      {"error", "red", "the link of the build reported errors; it is never the best"},
      {"other", "yellow, cyan",
       "yellow: a build of a --opt_for_speed series that is not the best; "
       "cyan: a build of a series over another option, which has no best"},
  };
  return rows;
}

const char* const best_rule =
    "Best: the largest code size among the builds whose link reported no errors.";
const char* const best_rule_detail =
    "Of equal sizes, the key that sorts last as text is the best. For --opt_for_speed this "
    "is the most speed that still fits. Only a series over --opt_for_speed has a best bar, "
    "and code size is its only measure: no running time is measured.";
const char* const link_time_rule =
    "A step of a series adds a bar only when its link information is not older than the "
    "results document (a link in the same second counts as new): older link information means "
    "that no link happened for that build. A link that gives no code size adds no bar either.";

std::vector<shown_bar> display_order(const PERF_RESULTS::bar_map& bars) {
  std::vector<shown_bar> shown;
  for (const auto& [key, bar] : bars)
    shown.emplace_back(&key, &bar);
  const bool numeric = std::all_of(bars.begin(), bars.end(),
                                   [](const auto& entry) { return is_number(entry.first); });
  if (numeric)
    std::stable_sort(shown.begin(), shown.end(), [](const shown_bar& a, const shown_bar& b) {
      return std::strtold(a.first->c_str(), nullptr) < std::strtold(b.first->c_str(), nullptr);
    });
  return shown;
}

chart_state state_of(const PERF_RESULTS::bar_map& bars) {
  if (bars.empty()) return chart_state::empty;
  const bool all_errors = std::all_of(
      bars.begin(), bars.end(), [](const auto& entry) { return entry.second.color == "red"; });
  return all_errors ? chart_state::all_errors : chart_state::bars;
}

const char* state_sentence(chart_state state) {
  switch (state) {
    case chart_state::empty:
      return "No bars: the chart holds no build yet.";
    case chart_state::all_errors:
      return "Every build of this series linked with errors, so none is the best.";
    case chart_state::bars:
      break;
  }
  return "";
}

std::vector<std::pair<std::string, std::string>> settings_table(const ADVICE::entry_map& entries) {
  std::vector<std::pair<std::string, std::string>> table;
  const ADVICE_INFO* settings = settings_entry(entries);
  if (settings == nullptr) return table;
  std::istringstream words(settings->msg);
  for (std::string word; words >> word;) {
    if (!word.starts_with('-')) continue;
    const size_t equals = word.find('=');
    if (equals == std::string::npos)
      table.emplace_back(word, "on");
    else
      table.emplace_back(word.substr(0, equals), word.substr(equals + 1));
  }
  return table;
}

const ADVICE_INFO* settings_entry(const ADVICE::entry_map& entries) {
  for (const auto& [code, info] : entries)
    if (info.advice_type == settings_type) return &info;
  return nullptr;
}

std::string settings_line(const ADVICE::entry_map& entries) {
  const ADVICE_INFO* settings = settings_entry(entries);
  return settings ? settings->msg : "none recorded";
}

bool is_listed_advice(const ADVICE_INFO& info) {
  return info.advice_type != settings_type;
}

std::string recommended_value(const ADVICE_INFO& info) {
  if (info.option.empty() || info.value.empty()) return info.value;
  return info.option + '=' + info.value;
}

const char* nothing_recommended(const ADVICE_INFO& info) {
  if (info.advice_type == results_type && info.value.empty())
    return "nothing: no build of the series linked without errors";
  return "";
}

std::string local_time(uint64_t seconds) {
  const std::string text = seconds ? formatted_time(seconds, true, "%Y-%m-%d %H:%M:%S %Z") : "";
  return text.empty() ? "not recorded" : text;
}

size_t display_width(const std::string& text) {
  size_t width = 0;
  for (size_t i = 0; i < text.size();) {
    const auto [point, length] = decode(text, i);
    width += columns_of(point);
    i += length;
  }
  return width;
}

std::vector<std::string> wrap_words(const std::string& text, size_t width) {
  std::vector<std::string> lines;
  std::istringstream words(text);
  std::string line;
  size_t line_width = 0;
  for (std::string word; words >> word;) {
    const size_t word_width = display_width(word);
    if (!line.empty() && line_width + 1 + word_width > width) {
      lines.push_back(line);
      line.clear();
    }
    if (line.empty()) {
      line = word;
      line_width = word_width;
    } else {
      line += ' ' + word;
      line_width += 1 + word_width;
    }
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

std::string best_key(const PERF_RESULTS::bar_map& bars) {
  for (const auto& [key, bar] : bars)
    if (bar.color == "green") return key;
  return "";
}

std::string iso8601_utc(uint64_t seconds) {
  return formatted_time(seconds, false, "%Y-%m-%dT%H:%M:%SZ");
}
