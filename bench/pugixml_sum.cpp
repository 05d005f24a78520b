// The anchor of the link-file benchmark: parses a link file with pugixml and
// sums its code size by the tool's rules (initialized, non-debug groups, each
// judged by its smallest component id), holding the same maps the tool does.
#include <pugixml.hpp>

#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <string_view>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FILE\n", argv[0]);
    return 2;
  }
  pugi::xml_document document;
  if (!document.load_file(argv[1])) return 1;
  const pugi::xml_node info = document.child("link_info");
  std::map<std::string, bool> uninitialized;
  for (const auto component : info.child("object_component_list").children("object_component"))
    uninitialized.emplace(component.attribute("id").value(),
                          component.child("uninitialized").text().as_bool());
  struct GROUP {
    uint32_t size;
    std::string name;
    std::set<std::string> components;
  };
  std::map<std::string, GROUP> groups;
  for (const auto group : info.child("logical_group_list").children("logical_group")) {
    GROUP entry{static_cast<uint32_t>(std::stoul(group.child_value("size"), nullptr, 16)),
                group.child_value("name"),
                {}};
    for (const auto ref : group.child("contents").children("object_component_ref"))
      entry.components.emplace(ref.attribute("idref").value());
    groups.emplace(group.attribute("id").value(), std::move(entry));
  }
  uint32_t code_size = 0;
  for (const auto& [id, group] : groups) {
    if (group.components.empty() || std::string_view(group.name).starts_with(".debug")) continue;
    const auto first = uninitialized.find(*group.components.begin());
    if (first == uninitialized.end() || !first->second) code_size += group.size;
  }
  std::printf("%u\n", code_size);
  return 0;
}
