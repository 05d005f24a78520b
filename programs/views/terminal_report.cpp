#include "programs/views/terminal_report.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"
#include "programs/views/report_words.h"

#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <ostream>
#include <string>

namespace {

constexpr uint32_t bar_columns = 40;  // the width of the largest bar

// The ANSI colour sequence of a colour word; "" for words without one.
const char* ansi_colour(const std::string& color) {
  if (color == "green") return "\033[32m";
  if (color == "red") return "\033[31m";
  if (color == "yellow") return "\033[33m";
  if (color == "cyan") return "\033[36m";
  return "";
}

void print_advice(std::ostream& out, const ADVICE::entry_map& entries) {
  out << "Current settings:\n  " << settings_line(entries) << "\n\nAdvice:\n";
  bool any = false;
  for (const auto& [code, info] : entries) {
    if (!is_listed_advice(info)) continue;
    any = true;
    out << "  " << code << "  " << info.msg << '\n';
    if (!info.value.empty()) out << "         recommends " << recommended_value(info) << '\n';
  }
  if (!any) out << "  none\n";
}

void print_chart(std::ostream& out, const PERF_RESULTS& results, bool colour) {
  const CHART_INFO& chart = results.get_chart();
  const PERF_RESULTS::bar_map& bars = results.get_bars();
  out << '\n' << chart.title << " (" << chart.option << "), " << chart.valueLabel << ":\n";
  if (bars.empty()) {
    out << "  no bars\n";
    return;
  }
  uint32_t largest = 0;
  size_t key_width = 0;
  for (const auto& [key, bar] : bars) {
    largest = std::max(largest, bar.value);
    key_width = std::max(key_width, key.size());
  }
  for (const auto& [key, bar] : bars) {
    const auto columns =
        largest ? static_cast<uint32_t>(uint64_t{bar.value} * bar_columns / largest) : 0;
    const char* on = colour ? ansi_colour(bar.color) : "";
    const char* off = *on ? "\033[0m" : "";
    out << "  " << std::left << std::setw(static_cast<int>(key_width)) << key << "  " << on
        << std::string(columns, '#') << off << std::string(bar_columns - columns, ' ') << ' '
        << std::right << std::setw(10) << bar.value << "  " << on << bar_meaning(bar.color) << off
        << '\n';
  }
}

}  // namespace

void print_report(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results,
                  bool colour) {
  print_advice(out, advice.get_entries());
  print_chart(out, results, colour);
}
