#include "programs/views/report_gates.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"
#include "programs/views/report_words.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace {

constexpr uint64_t millionths_per_percent = 1'000'000;
constexpr uint64_t most_percent = 1'000'000;

std::string bytes(uint64_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::optional<uint64_t> digits_value(std::string_view digits) {
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (digits.empty() || error != std::errc() || end != digits.data() + digits.size())
    return std::nullopt;
  return value;
}

}  // namespace

std::optional<GROWTH_LIMIT> parse_growth_limit(const std::string& text) {
  const std::string_view all = text;
  const size_t point = all.find('.');
  const auto whole = digits_value(all.substr(0, point));
  if (!whole || *whole > most_percent) return std::nullopt;
  uint64_t fraction = 0;
  if (point != std::string_view::npos) {
    std::string digits(all.substr(point + 1));
    if (digits.empty() || digits.size() > 6) return std::nullopt;
    digits.resize(6, '0');
    const auto value = digits_value(digits);
    if (!value) return std::nullopt;
    fraction = *value;
  }
  const uint64_t millionths = *whole * millionths_per_percent + fraction;
  if (millionths > most_percent * millionths_per_percent) return std::nullopt;
  return GROWTH_LIMIT{millionths, text};
}

std::vector<std::string> size_gate_failures(const SIZE_DIFF& diff, const SIZE_BUDGET& budget) {
  std::vector<std::string> failures;
  const uint64_t old_size = diff.old_code_size, new_size = diff.new_code_size;
  if (budget.max_bytes && new_size > *budget.max_bytes)
    failures.push_back("code size " + bytes(new_size) + " is " +
                       bytes(new_size - *budget.max_bytes) + " over the budget of " +
                       bytes(*budget.max_bytes));
  if (budget.max_growth && new_size > old_size) {
    // growth / old > limit / 100, in integers: growth * 100 * 10^6 > millionths * old.
    const unsigned __int128 growth = new_size - old_size;
    if (growth * 100 * millionths_per_percent >
        static_cast<unsigned __int128>(budget.max_growth->millionths) * old_size) {
      std::string line = "code size grew by " + bytes(new_size - old_size);
      if (const auto percent = percent_change(old_size, new_size)) {
        char text[32];
        std::snprintf(text, sizeof text, " (%.2f%%)", *percent);
        line += text;
      } else {
        line += " from nothing";
      }
      failures.push_back(line + ", more than the allowed " + budget.max_growth->text + "%");
    }
  }
  return failures;
}

std::vector<std::string> document_check_failures(const ADVICE& advice,
                                                 const PERF_RESULTS& results) {
  std::vector<std::string> failures;
  const PERF_RESULTS::bar_map& bars = results.get_bars();
  if (bars.empty())
    failures.push_back("the chart holds no bar");
  else if (std::ranges::all_of(bars, [](const auto& bar) {
             return std::string(bar_meaning(bar.second.color)) == "error";
           }))
    failures.push_back("every bar of the chart linked with errors");
  if (advice.get_entries().empty()) failures.push_back("the advice document holds no entry");
  return failures;
}
