#include "ADVICE_PERF/link_file.h"

#include "ADVICE_PERF/ptree_info.h"
#include "ADVICE_PERF/xml_select.h"

#include <boost/property_tree/ptree.hpp>

#include <string_view>
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

[[noreturn]] void no_such_node(const char* path) {
  BOOST_PROPERTY_TREE_THROW(boost::property_tree::ptree_bad_path("No such node", ptree::path_type(path)));
}

// The value of text as a property tree's get_value reads it.
template <typename T>
boost::optional<T> value(std::string_view text) {
  using translator = typename boost::property_tree::translator_between<std::string, T>::type;
  return translator().get_value(std::string(text));
}

class LINK_READER {
 public:
  explicit LINK_READER(const KEPT_TREE& tree) : tree(tree) {}

  // In the order of the look-ups, so that a file lacking several required
  // parts names the same one as before.
  void read(LINK_FILE& link) {
    const KEPT_NODE* info = tree.root();
    const KEPT_NODE* version = info ? tree.child(*info, "version") : nullptr;
    link.version = version ? value<int32_t>(version->text).value_or(1) : 1;
    if (!info) no_such_node("link_info.link_time");
    link.link_time = convert<uint64_t>(text(*info, "link_time", "link_info.link_time"));
    const KEPT_NODE* errors = tree.child(*info, "link_errors");
    link.link_errors = convert<int32_t>(errors ? errors->text : std::string_view("-1"));
    read_object_components(element(*info, "object_component_list",
                                   "link_info.object_component_list"),
                           link);
    read_logical_groups(element(*info, "logical_group_list", "link_info.logical_group_list"),
                        link);
  }

 private:
  const KEPT_NODE& element(const KEPT_NODE& parent, std::string_view name, const char* path) {
    const KEPT_NODE* found = tree.child(parent, name);
    if (!found) no_such_node(path);
    return *found;
  }
  std::string_view text(const KEPT_NODE& parent, std::string_view name, const char* path) {
    return element(parent, name, path).text;
  }
  std::string_view attribute(const KEPT_NODE& element, std::string_view name, const char* path) {
    const KEPT_NODE* found = tree.attribute(element, name);
    if (!found) no_such_node(path);
    return found->text;
  }

  void read_object_components(const KEPT_NODE& list, LINK_FILE& link) {
    tree.for_each_child(list, "object_component", [&](const KEPT_NODE& component) {
      const std::string_view id = attribute(component, "id", "<xmlattr>.id");
      const KEPT_NODE* flag = tree.child(component, "uninitialized");
      const bool uninitialized = flag && value<bool>(flag->text).value_or(false);
      link.object_components.emplace(id, uninitialized);
    });
  }

  void read_logical_groups(const KEPT_NODE& list, LINK_FILE& link) {
    tree.for_each_child(list, "logical_group", [&](const KEPT_NODE& group) {
      const std::string_view id = attribute(group, "id", "<xmlattr>.id");
      SECT_INFO sect;
      sect.size = convert<int32_t>(text(group, "size", "size"));
      sect.name = text(group, "name", "name");
      tree.for_each_child(element(group, "contents", "contents"), "object_component_ref",
                          [&](const KEPT_NODE& ref) {
                            sect.components.emplace(attribute(ref, "idref", "<xmlattr>.idref"));
                          });
      link.sections.emplace(id, std::move(sect));
    });
  }

  const KEPT_TREE& tree;
};

}  // namespace

LINK_FILE read_link_contents(const char* file_name) {
  LINK_FILE link;
  const KEPT_TREE tree = read_kept_elements(file_name, root);
  if (!tree.empty()) LINK_READER(tree).read(link);
  return link;
}
