#include "programs/views/link_sizes.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>

const char* count_word(group_count count) {
  switch (count) {
    case group_count::counted:
      return "counted";
    case group_count::uninitialized:
      return "uninitialized";
    case group_count::debug:
      return "debug";
    case group_count::no_components:
      return "no components";
  }
  return "counted";
}

SIZE_TABLE size_table(const LINK_DATA& link) {
  SIZE_TABLE table{link.logical_groups(), link.get_code_size()};
  std::ranges::stable_sort(table.groups, [](const GROUP_SIZE& a, const GROUP_SIZE& b) {
    return std::tie(b.size, a.name) < std::tie(a.size, b.name);
  });
  return table;
}

int64_t SECTION_CHANGE::delta() const {
  return static_cast<int64_t>(new_size.value_or(0)) - static_cast<int64_t>(old_size.value_or(0));
}

const char* SECTION_CHANGE::change() const {
  if (!old_size) return "appeared";
  if (!new_size) return "went";
  const int64_t d = delta();
  return d > 0 ? "grew" : d < 0 ? "shrank" : "same";
}

int64_t SIZE_DIFF::code_size_delta() const {
  return int64_t{new_code_size} - int64_t{old_code_size};
}

namespace {

// Adds the groups of one link to the sections by name; a name can stand for
// several groups, whose bytes add up. A section counts when a group of its
// name counts in the newer link that holds it, so the new link goes first.
void add_link(std::map<std::string, SECTION_CHANGE>& sections, const LINK_DATA& link,
              std::optional<uint64_t> SECTION_CHANGE::*side) {
  for (const GROUP_SIZE& group : link.logical_groups()) {
    SECTION_CHANGE& section = sections[group.name];
    section.name = group.name;
    const bool newest = side == &SECTION_CHANGE::new_size || !section.new_size;
    section.*side = (section.*side).value_or(0) + group.size;
    if (newest) section.counts |= group.count == group_count::counted;
  }
}

}  // namespace

SIZE_DIFF size_diff(const LINK_DATA& old_link, const LINK_DATA& new_link) {
  std::map<std::string, SECTION_CHANGE> by_name;
  add_link(by_name, new_link, &SECTION_CHANGE::new_size);
  add_link(by_name, old_link, &SECTION_CHANGE::old_size);
  SIZE_DIFF diff{{}, old_link.get_code_size(), new_link.get_code_size()};
  for (auto& [name, section] : by_name)
    diff.sections.push_back(std::move(section));
  std::ranges::stable_sort(diff.sections, [](const SECTION_CHANGE& a, const SECTION_CHANGE& b) {
    return std::abs(a.delta()) > std::abs(b.delta());
  });
  return diff;
}

std::optional<double> percent_change(uint64_t old_size, uint64_t new_size) {
  if (old_size == 0) return std::nullopt;
  return (static_cast<double>(new_size) - static_cast<double>(old_size)) * 100.0 /
         static_cast<double>(old_size);
}
