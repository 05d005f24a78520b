#include "ADVICE_PERF/link_data.h"

#include <utility>

LINK_DATA::LINK_DATA(const char* file_name) {
  LINK_FILE link = read_link_contents(file_name);
  file_version = link.version;
  timestamp = link.link_time;
  link_errors = link.link_errors;
  object_components = std::move(link.object_components);
  sections = std::move(link.sections);
  set_code_size();
}

LINK_DATA::~LINK_DATA() = default;

const LINK_DATA& LINK_DATA::none() {
  static const LINK_DATA nothing("");  // no file has an empty name
  return nothing;
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
