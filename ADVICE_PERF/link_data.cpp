#include "ADVICE_PERF/link_data.h"

#include <utility>

LINK_DATA::LINK_DATA(const char* file_name) {
  LINK_FILE link = read_link_file(file_name);
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
