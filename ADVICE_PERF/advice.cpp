#include "ADVICE_PERF/advice.h"

#include "ADVICE_PERF/link_data.h"

#include <utility>

ADVICE::ADVICE(const char* file_name, const LINK_DATA& link_data)
    : PTREE_INFO(file_name), link_data(link_data) {
  version = 1;
  init();
}

ADVICE::ADVICE(const char* file_name) : ADVICE(file_name, LINK_DATA::none()) {}

ADVICE::~ADVICE() = default;

void ADVICE::init() {
  input();
}

void ADVICE::read_body() {
  link_advice_flag = pt.get("body.link_advice_flag", false);
  for (const auto& [name, element] : pt.get_child("body")) {
    if (name != "advice") continue;
    std::string key = element.get<std::string>("<xmlattr>.diag_code");
    ADVICE_INFO info;
    info.msg = element.data();
    info.advice_type = element.get<std::string>("<xmlattr>.advice_type");
    info.option = element.get<std::string>("<xmlattr>.option");
    info.value = element.get<std::string>("<xmlattr>.value");
    info.action = element.get("<xmlattr>.action", std::string());
    entries.emplace(std::move(key), std::move(info));
  }
}

void ADVICE::write_body() {
  pt.put("body.link_advice_flag", link_advice_flag);
  for (const auto& [name, value] : settings) {
    ptree& option = pt.add("body.current_settings.option", std::string());
    option.put("<xmlattr>.name", name);
    option.put("<xmlattr>.value", value);
  }
  for (const auto& [key, info] : entries) {
    ptree& advice = pt.add("body.advice", info.msg);
    advice.put("<xmlattr>.diag_code", key);
    advice.put("<xmlattr>.advice_type", info.advice_type);
    advice.put("<xmlattr>.option", info.option);
    advice.put("<xmlattr>.value", info.value);
    if (!info.action.empty()) advice.put("<xmlattr>.action", info.action);
  }
}

void ADVICE::add_advice(const std::string& key, const std::string& msg,
                        const std::string& advice_type, const std::string& option,
                        const std::string& value, const std::string& action) {
  entries.insert_or_assign(key, ADVICE_INFO{advice_type, option, value, msg, action});
}

void ADVICE::remove_advice_type(const std::string& advice_type) {
  std::erase_if(entries,
                [&](const auto& entry) { return entry.second.advice_type == advice_type; });
}

ADVICE::entry_map::iterator ADVICE::find_advice_type(const std::string& advice_type) {
  auto it = entries.begin();
  while (it != entries.end() && it->second.advice_type != advice_type)
    ++it;
  return it;
}

void ADVICE::remove_link_build_advice() {
  remove_advice_type("build_run");
}

void ADVICE::remove_build_results_advice() {
  remove_advice_type("build_results");
}
