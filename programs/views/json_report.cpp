#include "programs/views/json_report.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/file_replace.h"
#include "ADVICE_PERF/perf_results.h"
#include "programs/views/report_words.h"

#include <ostream>
#include <sstream>

using nlohmann::json;

namespace {

// Text that may hold bytes that are not UTF-8 (the documents replace them, but
// a hand-edited one may not) is written with U+FFFD in their place.
std::string json_text(const json& value) {
  return value.dump(2, ' ', false, json::error_handler_t::replace) + '\n';
}

json time_stamp(uint64_t seconds) {
  return {{"seconds", seconds}, {"iso8601", iso8601_utc(seconds)}};
}

json entry_json(const std::string& code, const ADVICE_INFO& info) {
  return {{"code", code},         {"type", info.advice_type}, {"option", info.option},
          {"value", info.value},  {"text", info.msg},         {"action", info.action}};
}

json chart_json(const PERF_RESULTS& results) {
  const CHART_INFO& chart = results.get_chart();
  json bars = json::array();
  for (const auto& [key, bar] : results.get_bars())
    bars.push_back({{"key", key},
                    {"code_size", bar.value},
                    {"color", bar.color},
                    {"meaning", bar_meaning(bar.color)}});
  return {{"option", chart.option},
          {"title", chart.title},
          {"value_label", chart.valueLabel},
          {"bars", bars}};
}

}  // namespace

json documents_json(const ADVICE& advice, const PERF_RESULTS& results) {
  const ADVICE::entry_map& entries = advice.get_entries();
  json listed = json::array();
  for (const auto& [code, info] : entries)
    listed.push_back(entry_json(code, info));
  const std::string best = best_key(results.get_bars());
  const ADVICE_INFO* settings = settings_entry(entries);
  return {{"format", "advzorv-report documents"},
          {"format_version", 1},
          {"current_settings", settings ? json(settings->msg) : json(nullptr)},
          {"advice", listed},
          {"chart", chart_json(results)},
          {"best", best.empty() ? json(nullptr) : json(best)},
          {"timestamps",
           {{"advice", time_stamp(advice.get_timestamp())},
            {"results", time_stamp(results.get_timestamp())}}}};
}

void write_json(std::ostream& out, const json& value) {
  out << json_text(value);
}

void write_json_file(const std::string& path, const json& value) {
  replace_file(path, json_text(value));
}
