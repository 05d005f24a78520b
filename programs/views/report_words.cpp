#include "programs/views/report_words.h"

#include <ctime>

namespace {

constexpr const char* settings_type = "curr_setting";

}  // namespace

const char* bar_meaning(const std::string& color) {
  if (color == "green") return "best";
  if (color == "red") return "error";
  return "other";
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

std::string best_key(const PERF_RESULTS::bar_map& bars) {
  for (const auto& [key, bar] : bars)
    if (bar.color == "green") return key;
  return "";
}

std::string iso8601_utc(uint64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  char text[64];
  if (!gmtime_r(&time, &parts) ||
      !std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts))
    return "";
  return text;
}
