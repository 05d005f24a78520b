#include "programs/views/report_words.h"

namespace {

constexpr const char* settings_type = "curr_setting";

}  // namespace

const char* bar_meaning(const std::string& color) {
  if (color == "green") return "best";
  if (color == "red") return "error";
  return "other";
}

std::string settings_line(const ADVICE::entry_map& entries) {
  for (const auto& [code, info] : entries)
    if (info.advice_type == settings_type) return info.msg;
  return "none recorded";
}

bool is_listed_advice(const ADVICE_INFO& info) {
  return info.advice_type != settings_type;
}

std::string recommended_value(const ADVICE_INFO& info) {
  if (info.option.empty() || info.value.empty()) return info.value;
  return info.option + '=' + info.value;
}
