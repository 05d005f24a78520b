#include "programs/views/markdown_report.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"
#include "programs/views/markdown_text.h"
#include "programs/views/report_words.h"

#include <algorithm>
#include <ostream>

namespace {

constexpr unsigned bar_columns = 20;  // the width of the largest bar

void print_advice(std::ostream& out, const ADVICE& advice) {
  const ADVICE::entry_map& entries = advice.get_entries();
  out << "**Current settings:** " << markdown_escape(settings_line(entries)) << "\n\n"
      << "### Advice\n\n";
  bool any = false;
  for (const auto& [code, info] : entries) {
    if (!is_listed_advice(info)) continue;
    any = true;
    out << "- **" << markdown_escape(code) << "** " << markdown_escape(info.msg);
    const std::string value = recommended_value(info);
    if (!value.empty()) out << " Recommends **" << markdown_escape(value) << "**.";
    out << '\n';
  }
  if (!any) out << "No advice.\n";
}

void print_chart(std::ostream& out, const PERF_RESULTS& results) {
  const CHART_INFO& chart = results.get_chart();
  const PERF_RESULTS::bar_map& bars = results.get_bars();
  out << "\n### " << markdown_escape(chart.title) << " (" << markdown_escape(chart.option)
      << ")\n\n";
  if (bars.empty()) {
    out << "No bars.\n";
    return;
  }
  uint32_t largest = 0;
  for (const auto& [key, bar] : bars)
    largest = std::max(largest, bar.value);
  table_row(out, {markdown_escape(chart.option), markdown_escape(chart.valueLabel), "Bar",
                  "Meaning"});
  out << "| --- | ---: | --- | --- |\n";
  for (const auto& [key, bar] : bars) {
    const std::string meaning = bar_meaning(bar.color);
    table_row(out, {markdown_escape(key), std::to_string(bar.value),
                    text_bar(bar.value, largest, bar_columns),
                    bar.color == "green" ? "**" + meaning + "**" : meaning});
  }
}

}  // namespace

void print_markdown(std::ostream& out, const ADVICE& advice, const PERF_RESULTS& results) {
  out << "## Advice and performance results\n\n";
  print_advice(out, advice);
  print_chart(out, results);
  out << "\nAdvice written " << iso8601_utc(advice.get_timestamp()) << ", results written "
      << iso8601_utc(results.get_timestamp()) << ".\n";
}
