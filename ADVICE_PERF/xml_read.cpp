#include "ADVICE_PERF/xml_read.h"

#include "ADVICE_PERF/file_text.h"

#include <boost/property_tree/detail/rapidxml.hpp>
#include <boost/property_tree/xml_parser.hpp>


#include <algorithm>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <vector>

using ptree = boost::property_tree::ptree;
namespace rapidxml = boost::property_tree::detail::rapidxml;
namespace xml_parser = boost::property_tree::xml_parser;

namespace {

// The flags read_xml gives the parser for trim_whitespace without no_comments.
constexpr int parse_flags = rapidxml::parse_normalize_whitespace | rapidxml::parse_trim_whitespace |
                            rapidxml::parse_comment_nodes;

// Whether the parser would nest elements deeper than max_xml_depth. Follows
// the parser's own lexical rules and character tables; at the first error it
// stops and leaves the verdict to the parser, which fails at that point too.
class DEPTH_SCAN {
 public:
  explicit DEPTH_SCAN(const char* text) : p(reinterpret_cast<const unsigned char*>(text)) {}

  bool too_deep() {
    if (p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF) p += 3;
    int depth = 0;
    for (;;) {
      skip(tables::lookup_whitespace);
      if (*p == 0) return false;
      if (*p != '<') {
        if (depth == 0) return false;
        skip(tables::lookup_text);
        continue;
      }
      if (depth > 0 && p[1] == '/') {
        p += 2;
        skip(tables::lookup_node_name);
        skip(tables::lookup_whitespace);
        if (*p != '>') return false;
        ++p;
        --depth;
        continue;
      }
      ++p;
      switch (node()) {
        case OPENED:
          if (++depth > max_xml_depth) return true;
          break;
        case ERROR:
          return false;
        case FLAT:
          break;
      }
    }
  }

 private:
  using tables = rapidxml::internal::lookup_tables<0>;
  enum NODE { FLAT, OPENED, ERROR };

  void skip(const unsigned char* table) {
    while (table[*p])
      ++p;
  }
  bool starts(const char* word) const {
    return std::strncmp(reinterpret_cast<const char*>(p), word, std::strlen(word)) == 0;
  }
  NODE skip_opening_to(std::size_t opening, const char* end) {
    p += opening;
    while (!starts(end)) {
      if (*p == 0) return ERROR;
      ++p;
    }
    p += std::strlen(end);
    return FLAT;
  }

  // One node behind its '<'. Each kind's end is searched for behind its
  // opening, as the parser does.
  NODE node() {
    if (*p == '?') return skip_opening_to(1, "?>");
    if (*p != '!') return element();
    if (starts("!--")) return skip_opening_to(3, "-->");
    if (starts("![CDATA[")) return skip_opening_to(8, "]]>");
    if (starts("!DOCTYPE") && tables::lookup_whitespace[p[8]]) {
      p += 9;
      return doctype();
    }
    return skip_opening_to(1, ">");
  }

  NODE doctype() {
    while (*p != '>') {
      if (*p == 0) return ERROR;
      if (*p++ != '[') continue;
      for (int depth = 1; depth > 0; ++p) {
        if (*p == 0) return ERROR;
        depth += *p == '[' ? 1 : *p == ']' ? -1 : 0;
      }
    }
    ++p;
    return FLAT;
  }

  NODE element() {
    const unsigned char* name = p;
    skip(tables::lookup_node_name);
    if (p == name) return ERROR;
    skip(tables::lookup_whitespace);
    while (tables::lookup_attribute_name[*p]) {
      skip(tables::lookup_attribute_name);
      skip(tables::lookup_whitespace);
      if (*p++ != '=') return ERROR;
      skip(tables::lookup_whitespace);
      const unsigned char quote = *p;
      if (quote != '\'' && quote != '"') return ERROR;
      ++p;
      while (*p != quote) {
        if (*p == 0) return ERROR;
        ++p;
      }
      ++p;
      skip(tables::lookup_whitespace);
    }
    if (*p == '>') {
      ++p;
      return OPENED;
    }
    if (p[0] == '/' && p[1] == '>') {
      p += 2;
      return FLAT;
    }
    return ERROR;
  }

  const unsigned char* p;
};

// The kept part of a document in document order, with its own copy of each
// name and text, so that the parser's memory can go before the tree is built.
class KEPT_PART {
 public:
  explicit KEPT_PART(const KEPT_ELEMENT& root) : root(root) {}

  // A top-level node: root with its kept elements, any other element and
  // every comment without contents.
  void add_top_level(const rapidxml::xml_node<char>& node) {
    if (node.type() == rapidxml::node_element) {
      if (std::string_view(node.name(), node.name_size()) == root.name)
        add_kept(node, root);
      else
        add_item(node.name(), node.name_size(), false);
    } else if (node.type() == rapidxml::node_comment) {
      const std::string comment = xml_parser::xmlcomment<std::string>();
      add_item(comment.data(), comment.size(), false);
    }
  }

  // Adds the kept part to tree as read_xml would build it. Trees go into a
  // tree only by copy, so each element is copied from an empty one of its
  // name kept at hand rather than from a fresh temporary, which would cost
  // two more allocations and frees.
  void build(ptree& tree) {
    for (std::size_t next = 0; next < items.size();)
      build_element(next, tree);
  }

 private:
  // An element, followed by its attributes and then the elements below it up
  // to end; or an attribute.
  struct ITEM {
    std::size_t name, text;  // offsets into strings
    uint32_t name_size, text_size = 0;
    uint32_t end = 0;
    bool attribute;
  };
  static constexpr std::size_t most_names = 16;

  ITEM& add_item(const char* name, std::size_t name_size, bool attribute) {
    items.push_back({strings.size(), 0, static_cast<uint32_t>(name_size), 0, 0, attribute});
    strings.append(name, name_size);
    items.back().text = strings.size();
    items.back().end = static_cast<uint32_t>(items.size());
    return items.back();
  }

  // Adds an element, leaving out the elements below it that kept doesn't
  // name, and with them their contents.
  void add_kept(const rapidxml::xml_node<char>& node, const KEPT_ELEMENT& kept) {
    const std::size_t element = items.size();
    add_item(node.name(), node.name_size(), false);
    for (const auto* child = node.first_node(); child; child = child->next_sibling())
      if (child->type() == rapidxml::node_data || child->type() == rapidxml::node_cdata)
        strings.append(child->value(), child->value_size());
    items[element].text_size = static_cast<uint32_t>(strings.size() - items[element].text);
    for (const auto* attribute = node.first_attribute(); attribute;
         attribute = attribute->next_attribute()) {
      add_item(attribute->name(), attribute->name_size(), true);
      strings.append(attribute->value(), attribute->value_size());
      items.back().text_size = static_cast<uint32_t>(attribute->value_size());
    }
    for (const auto* child = node.first_node(); child; child = child->next_sibling()) {
      if (child->type() != rapidxml::node_element) continue;
      const std::string_view name(child->name(), child->name_size());
      for (const auto& kept_child : kept.children)
        if (kept_child.name == name) add_kept(*child, kept_child);
    }
    items[element].end = static_cast<uint32_t>(items.size());
  }

  std::string_view name_of(const ITEM& item) const {
    return std::string_view(strings).substr(item.name, item.name_size);
  }
  std::string_view text_of(const ITEM& item) const {
    return std::string_view(strings).substr(item.text, item.text_size);
  }

  void build_element(std::size_t& next, ptree& parent) {
    const ITEM& element = items[next++];
    ptree& tree = add(parent, name_of(element));
    tree.data() = text_of(element);
    if (next < element.end && items[next].attribute) {
      ptree& attributes = add(tree, xml_parser::xmlattr<std::string>());
      for (; next < element.end && items[next].attribute; ++next)
        add(attributes, name_of(items[next])).data() = text_of(items[next]);
    }
    while (next < element.end)
      build_element(next, tree);
  }

  ptree& add(ptree& parent, std::string_view name) {
    for (const auto& empty : empties)
      if (empty.first == name) return parent.push_back(empty)->second;
    if (empties.size() == most_names) return parent.push_back({std::string(name), ptree()})->second;
    return parent.push_back(empties.emplace_back(std::string(name), ptree()))->second;
  }

  const KEPT_ELEMENT& root;
  std::vector<ITEM> items;
  std::string strings;
  std::deque<ptree::value_type> empties;  // a deque keeps references valid
};

}  // namespace

ptree read_xml_file(const char* file_name, const KEPT_ELEMENT* root) {
  ptree tree;
  try {
    FILE_TEXT file;
    if (!load_file_text(file_name, file) || DEPTH_SCAN(file.text.get()).too_deep()) return tree;
    auto document = std::make_unique<rapidxml::xml_document<char>>();
    document->parse<parse_flags>(file.text.get());
    if (!root) {
      for (auto* node = document->first_node(); node; node = node->next_sibling())
        xml_parser::read_xml_node(node, tree, xml_parser::trim_whitespace);
      return tree;
    }
    KEPT_PART kept(*root);
    for (const auto* node = document->first_node(); node; node = node->next_sibling())
      kept.add_top_level(*node);
    document.reset();
    file.text.reset();
    kept.build(tree);
  } catch (...) {
    // A file that isn't well-formed, or too large for memory, counts as empty.
    tree.clear();
  }
  return tree;
}
