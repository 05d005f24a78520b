#include "programs/views/terminal_report.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"
#include "programs/views/report_words.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <ostream>
#include <string>

namespace {

constexpr size_t widest_bar = 40, narrowest_bar = 10;  // columns of the largest bar
constexpr size_t narrowest_text = 20;                  // advice is never wrapped narrower than this

size_t terminal_width() {
  if (const char* columns = std::getenv("COLUMNS")) {
    const long value = std::strtol(columns, nullptr, 10);
    if (value > 0) return static_cast<size_t>(value);
  }
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

// The ANSI colour sequence of a colour word; "" for words without one.
const char* ansi_colour(const std::string& color) {
  if (color == "green") return "\033[32m";
  if (color == "red") return "\033[31m";
  if (color == "yellow") return "\033[33m";
  if (color == "cyan") return "\033[36m";
  return "";
}

// text padded with blanks to columns, counted as the terminal shows them.
std::string padded(const std::string& text, size_t columns) {
  return text + std::string(columns - std::min(columns, display_width(text)), ' ');
}

// Writes text wrapped to width, the first line after lead, the others indented
// as far as lead is wide.
void print_wrapped(std::ostream& out, const std::string& lead, const std::string& text,
                   size_t width) {
  const size_t indent = display_width(lead);
  const size_t room = std::max(narrowest_text, width - std::min(width, indent));
  const std::string blank(indent, ' ');
  bool first = true;
  for (const std::string& line : wrap_words(text, room)) {
    out << (first ? lead : blank) << line << '\n';
    first = false;
  }
}

void print_times(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results) {
  out << "Advice document written:  " << local_time(advice.get_timestamp()) << '\n'
      << "Results document written: " << local_time(results.get_timestamp()) << "\n\n";
}

void print_settings(std::ostream& out, const ADVICE::entry_map& entries) {
  out << "Current settings:\n";
  const auto settings = settings_table(entries);
  size_t option_width = 0;
  for (const auto& [option, value] : settings)
    option_width = std::max(option_width, display_width(option));
  for (const auto& [option, value] : settings)
    out << "  " << padded(option, option_width) << "  " << value << '\n';
  if (settings.empty()) out << "  none recorded\n";
}

void print_advice(std::ostream& out, const ADVICE::entry_map& entries, size_t width) {
  out << "\nAdvice:\n";
  bool any = false;
  for (const auto& [code, info] : entries) {
    if (!is_listed_advice(info)) continue;
    any = true;
    const std::string lead = "  " + code + "  ";
    print_wrapped(out, lead, info.msg, width);
    const std::string value = recommended_value(info);
    const std::string recommends = value.empty() ? nothing_recommended(info) : value;
    if (!recommends.empty())
      print_wrapped(out, std::string(display_width(lead), ' '), "recommends " + recommends, width);
  }
  if (!any) out << "  none\n";
}

void print_chart(std::ostream& out, const PERF_RESULTS& results, bool colour, size_t width) {
  const CHART_INFO& chart = results.get_chart();
  const PERF_RESULTS::bar_map& bars = results.get_bars();
  out << '\n' << chart.title << " (" << chart.option << "), " << chart.valueLabel << ":\n";
  const chart_state state = state_of(bars);
  uint32_t largest = 0;
  size_t key_width = 0;
  for (const auto& [key, bar] : bars) {
    largest = std::max(largest, bar.value);
    key_width = std::max(key_width, display_width(key));
  }
  // Two blanks, the key, two blanks, the bar, the value in 11, two blanks, "error".
  const size_t beside_bar = key_width + 22;
  const size_t bar_columns =
      std::clamp(width - std::min(width, beside_bar), narrowest_bar, widest_bar);
  for (const auto& [key, bar] : display_order(bars)) {
    const auto columns =
        largest ? static_cast<size_t>(uint64_t{bar->value} * bar_columns / largest) : 0;
    const char* on = colour ? ansi_colour(bar->color) : "";
    const char* off = *on ? "\033[0m" : "";
    out << "  " << padded(*key, key_width) << "  " << on << std::string(columns, '#') << off
        << std::string(bar_columns - columns, ' ') << ' ' << std::setw(10) << bar->value << "  "
        << on << bar_meaning(bar->color) << off << '\n';
  }
  if (state != chart_state::bars) print_wrapped(out, "  ", state_sentence(state), width);
  out << best_rule << '\n';
}

}  // namespace

void print_report(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results, bool colour,
                  size_t width) {
  if (width == 0) width = terminal_width();
  print_times(out, advice, results);
  print_settings(out, advice.get_entries());
  print_advice(out, advice.get_entries(), width);
  print_chart(out, results, colour, width);
}
