#include "ADVICE_PERF/link_data.h"

#include <utility>

namespace {

// The elements the link data reads; the file's many others are left unbuilt.
constexpr KEPT_ELEMENT component[] = {{"uninitialized", {}}};
constexpr KEPT_ELEMENT components[] = {{"object_component", component}};
constexpr KEPT_ELEMENT reference[] = {{"object_component_ref", {}}};
constexpr KEPT_ELEMENT group[] = {{"size", {}}, {"name", {}}, {"contents", reference}};
constexpr KEPT_ELEMENT groups[] = {{"logical_group", group}};
constexpr KEPT_ELEMENT link_info[] = {
    {"version", {}},
    {"link_time", {}},
    {"link_errors", {}},
    {"object_component_list", components},
    {"logical_group_list", groups},
};
constexpr KEPT_ELEMENT root{"link_info", link_info};

const std::string attributes_key = "<xmlattr>";

// The child of element named key, found with one look-up. A missing child
// throws what a path look-up throws, so path names it in the message.
const ptree& child(const ptree& element, const std::string& key, const char* path) {
  const auto found = element.find(key);
  return found != element.not_found() ? found->second : element.get_child(path);
}

const std::string& text(const ptree& element, const std::string& key) {
  return child(element, key, key.c_str()).data();
}

const std::string& attribute(const ptree& element, const std::string& key, const char* path) {
  return child(child(element, attributes_key, path), key, path).data();
}

}  // namespace

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

const KEPT_ELEMENT* LINK_DATA::kept_elements() const {
  return &root;
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
  static const std::string id = "id", uninitialized = "uninitialized";
  for (const auto& [name, component] : list) {
    if (name != "object_component") continue;
    const std::string& key = attribute(component, id, "<xmlattr>.id");
    const auto flag = component.find(uninitialized);
    const bool is_uninitialized = flag != component.not_found() && flag->second.get_value(false);
    object_components.emplace(key, is_uninitialized);
  }
}

void LINK_DATA::read_logical_groups(const ptree& list) {
  static const std::string id = "id", idref = "idref", size = "size", name = "name",
                           contents = "contents";
  for (const auto& [group_name, group] : list) {
    if (group_name != "logical_group") continue;
    const std::string& key = attribute(group, id, "<xmlattr>.id");
    SECT_INFO sect;
    sect.size = convert<int32_t>(text(group, size));
    sect.name = text(group, name);
    for (const auto& [ref_name, ref] : child(group, contents, "contents"))
      if (ref_name == "object_component_ref")
        sect.components.insert(attribute(ref, idref, "<xmlattr>.idref"));
    sections.emplace(key, std::move(sect));
  }
}

// A group's smallest component id stands for the whole group, so a group
// whose first component is uninitialized doesn't count; neither do debug
// groups. A component id the list doesn't hold is taken as initialized.
group_count LINK_DATA::classify(const SECT_INFO& sect) const {
  if (sect.components.empty()) return group_count::no_components;
  const auto first = object_components.find(*sect.components.begin());
  if (first != object_components.end() && first->second) return group_count::uninitialized;
  if (sect.name.starts_with(".debug")) return group_count::debug;
  return group_count::counted;
}

// Sums the groups of real program; the sum wraps at 32 bits.
void LINK_DATA::set_code_size() {
  for (const auto& [id, sect] : sections)
    if (classify(sect) == group_count::counted) code_size += static_cast<uint32_t>(sect.size);
}

std::vector<GROUP_SIZE> LINK_DATA::logical_groups() const {
  std::vector<GROUP_SIZE> groups;
  groups.reserve(sections.size());
  for (const auto& [id, sect] : sections)
    groups.push_back({id, sect.name, static_cast<uint32_t>(sect.size), classify(sect)});
  return groups;
}
