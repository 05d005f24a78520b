#include "ADVICE_PERF/link_data.h"

#include <utility>

LINK_DATA::LINK_DATA(const char* file_name) : PTREE_INFO(file_name) {
  version = 1;
  init();
}

LINK_DATA::~LINK_DATA() = default;

const LINK_DATA& LINK_DATA::none() {
  static const LINK_DATA nothing("");  // no file has an empty name
  return nothing;
}

void LINK_DATA::init() {
  input();
  set_code_size();
}

int32_t LINK_DATA::read_version() {
  return pt.get_optional<int32_t>("link_info.version").value_or(1);
}

std::string LINK_DATA::read_timestamp() {
  return pt.get<std::string>("link_info.link_time");
}

void LINK_DATA::read_body() {
  try {
    link_errors = convert<int32_t>(pt.get<std::string>("link_info.link_errors", std::string("-1")));
  } catch (...) {
    // The error count is optional; without it the count stays unknown.
  }
  read_object_components(pt.get_child("link_info.object_component_list"));
  read_logical_groups(pt.get_child("link_info.logical_group_list"));
}

void LINK_DATA::write_body() {}

void LINK_DATA::read_object_components(const ptree& list) {
  for (const auto& [name, component] : list) {
    if (name != "object_component") continue;
    std::string id = component.get<std::string>("<xmlattr>.id");
    const bool uninitialized = component.get("uninitialized", false);
    object_components.emplace(std::move(id), uninitialized);
  }
}

void LINK_DATA::read_logical_groups(const ptree& list) {
  for (const auto& [name, group] : list) {
    if (name != "logical_group") continue;
    std::string id = group.get<std::string>("<xmlattr>.id");
    SECT_INFO sect;
    sect.size = convert<int32_t>(group.get<std::string>("size"));
    sect.name = group.get<std::string>("name");
    for (const auto& [ref_name, ref] : group.get_child("contents"))
      if (ref_name == "object_component_ref")
        sect.components.insert(ref.get<std::string>("<xmlattr>.idref"));
    sections.emplace(std::move(id), std::move(sect));
  }
}

// Sums the groups of real program: a group's smallest component id stands for
// the whole group, so a group whose first component is uninitialized doesn't
// count; neither do debug groups. A component id the list doesn't hold is taken
// as initialized. The sum wraps at 32 bits.
void LINK_DATA::set_code_size() {
  for (const auto& [id, sect] : sections) {
    if (sect.components.empty()) continue;
    const auto first = object_components.find(*sect.components.begin());
    if (first != object_components.end() && first->second) continue;
    if (sect.name.starts_with(".debug")) continue;
    code_size += static_cast<uint32_t>(sect.size);
  }
}
