// The link file reader against a reading of the whole file with read_xml,
// under the same bounds, and the link data's look-ups in its property tree:
// both give the same contents, or both throw the same exception.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <string>
#include <typeinfo>
#include <utility>

#include "ADVICE_PERF/file_text.h"
#include "ADVICE_PERF/link_file.h"
#include "ADVICE_PERF/ptree_info.h"
#include "ADVICE_PERF/xml_read.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

namespace xml_parser = boost::property_tree::xml_parser;

// The file's whole tree as read_xml gives it; empty past the bounds.
ptree whole_tree(const char* path) {
  ptree tree;
  FILE_TEXT file;
  if (!load_file_text(path, file) || nested_too_deep(file.text.get())) return tree;
  std::istringstream text(std::string(file.text.get(), file.size));
  try {
    xml_parser::read_xml(text, tree, xml_parser::trim_whitespace);
  } catch (const xml_parser::xml_parser_error&) {
    tree.clear();
  }
  return tree;
}

// The link data's contents by path look-ups in the whole tree, in the order
// the link data makes them.
LINK_FILE by_paths(const ptree& pt) {
  LINK_FILE link;
  if (pt.empty()) return link;
  link.version = pt.get_optional<int32_t>("link_info.version").value_or(1);
  link.link_time = convert<uint64_t>(pt.get<std::string>("link_info.link_time"));
  link.link_errors = convert<int32_t>(pt.get<std::string>("link_info.link_errors", "-1"));
  for (const auto& [name, component] : pt.get_child("link_info.object_component_list")) {
    if (name != "object_component") continue;
    const std::string& id = component.get_child("<xmlattr>.id").data();
    link.object_components.emplace(id, component.get("uninitialized", false));
  }
  for (const auto& [name, group] : pt.get_child("link_info.logical_group_list")) {
    if (name != "logical_group") continue;
    const std::string& id = group.get_child("<xmlattr>.id").data();
    SECT_INFO sect;
    sect.size = convert<int32_t>(group.get<std::string>("size"));
    sect.name = group.get<std::string>("name");
    for (const auto& [ref_name, ref] : group.get_child("contents"))
      if (ref_name == "object_component_ref")
        sect.components.insert(ref.get_child("<xmlattr>.idref").data());
    link.sections.emplace(id, std::move(sect));
  }
  return link;
}

// A reading's contents, or the type and message of what it threw.
struct OUTCOME {
  LINK_FILE link;
  std::string thrown;
  bool operator==(const OUTCOME&) const = default;
};

template <typename READ>
OUTCOME outcome(READ read) {
  OUTCOME result;
  try {
    result.link = read();
  } catch (const std::exception& e) {
    result.thrown = std::string(typeid(e).name()) + ": " + e.what();
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  begin_input();
  const char* path = input_file(data, size);
  const OUTCOME selective = outcome([&] { return read_link_contents(path); });
  const OUTCOME whole = outcome([&] { return by_paths(whole_tree(path)); });
  if (selective == whole) return 0;
  std::fprintf(stderr, "link file readers differ: selective %s, whole %s\n",
               selective.thrown.c_str(), whole.thrown.c_str());
  std::abort();
}
