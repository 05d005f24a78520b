// The shared texts of the views: terminal widths of UTF-8 text, wrapping,
// the order bars are shown in and the settings table.
#include "programs/views/report_words.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using lines = std::vector<std::string>;

TEST(ReportWords, DisplayWidthCountsTerminalColumns) {
  const std::vector<std::pair<std::string, size_t>> cases = {
      {"", 0},
      {"\xc3\xa9t\xc3\xa9", 3},         // two-byte letters take one column
      {"\xe6\x97\xa5\xe6\x9c\xac", 4},  // wide characters take two
      {"e\xcc\x81", 1},                 // a combining accent takes none
      {"\xf0\x9f\x9a\x80!", 3},         // a four-byte emoji is wide
      {"a\xff!", 3},                    // a stray byte takes one
      {"\xe6\x97", 2},                  // so does each byte of a cut sequence
  };
  for (const auto& [text, width] : cases)
    EXPECT_EQ(display_width(text), width) << text;
}

TEST(ReportWords, WrapBreaksBetweenWordsOnly) {
  const std::vector<std::tuple<std::string, size_t, lines>> cases = {
      {"", 10, {}},
      {"a bb ccc", 4, {"a bb", "ccc"}},
      {"a  bb\tccc", 20, {"a bb ccc"}},
      {"x averyverylongword y", 5, {"x", "averyverylongword", "y"}},
      {"(--opt_for_speed=4). next", 20, {"(--opt_for_speed=4).", "next"}},
      {"\xe6\x97\xa5 \xe6\x97\xa5", 4, {"\xe6\x97\xa5", "\xe6\x97\xa5"}},  // wide: 2 + 1 + 2
  };
  for (const auto& [text, width, expected] : cases)
    EXPECT_EQ(wrap_words(text, width), expected) << text << " at " << width;
}

TEST(ReportWords, NumericKeysAreShownInNumericOrder) {
  const std::vector<std::pair<lines, lines>> cases = {
      {{"1", "10", "2"}, {"1", "2", "10"}},
      {{"-1", "0", "1", "1.5"}, {"-1", "0", "1", "1.5"}},
      {{"02", "1", "2"}, {"1", "02", "2"}},  // equal numbers keep text order
      {{"1", "10", "a"}, {"1", "10", "a"}},  // one word: all in text order
      {{"10", "9."}, {"10", "9."}},          // "9." is no number
      {{}, {}},
  };
  for (const auto& [keys, expected] : cases) {
    PERF_RESULTS::bar_map bars;
    for (const std::string& key : keys)
      bars[key] = PERF_INFO{1, "yellow"};
    lines shown;
    for (const auto& [key, bar] : display_order(bars))
      shown.push_back(*key);
    EXPECT_EQ(shown, expected);
  }
}

TEST(ReportWords, SettingsTableFromTheSettingsEntry) {
  using table = std::vector<std::pair<std::string, std::string>>;
  const std::vector<std::pair<std::string, table>> cases = {
      {"advice: Current optimization/debug settings:  --opt_level=off  --opt_for_speed=2    -g",
       {{"--opt_level", "off"}, {"--opt_for_speed", "2"}, {"-g", "on"}}},
      {"advice: Current optimization/debug settings:", {}},
      {"advice: Current optimization/debug settings:  --opt_level=", {{"--opt_level", ""}}},
  };
  for (const auto& [text, expected] : cases) {
    const ADVICE::entry_map entries = {
        {"00000", {"curr_setting", "", "", text, ""}},
        {"27007", {"opt_setting", "--opt_level", "3", "x --y=1", ""}}};
    EXPECT_EQ(settings_table(entries), expected) << text;
  }
  EXPECT_TRUE(settings_table({}).empty());
}

}  // namespace
