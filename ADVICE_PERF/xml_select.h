#pragma once
// Reading chosen elements of an XML file in one pass over its text, with the
// lexical rules of read_xml with white space trimmed (comments kept) and the
// bounds of read_xml_file, and nothing built for the elements left out.

#include "ADVICE_PERF/file_text.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// An element a selective reading keeps, with its text and attributes, and the
// elements below it that are kept too; all others below it are left out.
struct KEPT_ELEMENT {
  std::string_view name;
  std::span<const KEPT_ELEMENT> children;
};

// A kept element or attribute. An element's text is what read_xml gives it:
// its text and CDATA sections joined, entities expanded, white space
// condensed and trimmed; an attribute's is its value, entities expanded.
struct KEPT_NODE {
  std::string_view name;
  std::string_view text;
  uint32_t end;  // index past the node and everything kept below it
  bool attribute;
};

// The kept part of a file: each top-level element of the root's name, and
// behind each element its attributes and the kept elements below it, in
// document order. Names and texts point into the tree's own storage; the
// nodes its functions return belong to the tree and live as long as it.
class KEPT_TREE {
 public:
  // Whether read_xml_file's tree of the file would be empty: the file can't
  // be read, breaks a bound, isn't well-formed, or has no top-level element
  // or comment.
  bool empty() const { return !has_top_level; }
  // The first kept top-level element; nullptr when the file has none.
  const KEPT_NODE* root() const { return nodes.empty() ? nullptr : nodes.data(); }
  // Calls visit with each kept top-level element, in order.
  template <typename VISIT>
  void for_each_root(VISIT visit) const {
    for (uint32_t at = 0; at < nodes.size(); at = nodes[at].end)
      visit(nodes[at]);
  }

  // The first attribute of element named name; nullptr when none.
  const KEPT_NODE* attribute(const KEPT_NODE& element, std::string_view name) const {
    return first(element, name, true);
  }
  // The first kept element below element named name; nullptr when none.
  const KEPT_NODE* child(const KEPT_NODE& element, std::string_view name) const {
    return first(element, name, false);
  }
  // Calls visit with each kept element below element named name, in order.
  template <typename VISIT>
  void for_each_child(const KEPT_NODE& element, std::string_view name, VISIT visit) const {
    for (uint32_t at = index(element) + 1; at < element.end; at = nodes[at].end)
      if (!nodes[at].attribute && nodes[at].name == name) visit(nodes[at]);
  }

 private:
  friend KEPT_TREE read_kept_elements(const char* file_name, const KEPT_ELEMENT& root);
  friend class SELECTIVE_PARSER;

  uint32_t index(const KEPT_NODE& node) const { return static_cast<uint32_t>(&node - nodes.data()); }
  const KEPT_NODE* first(const KEPT_NODE& element, std::string_view name, bool attribute) const {
    for (uint32_t at = index(element) + 1; at < element.end; at = nodes[at].end)
      if (nodes[at].attribute == attribute && nodes[at].name == name) return &nodes[at];
    return nullptr;
  }

  FILE_TEXT file;                  // the text most names and texts point into
  std::deque<std::string> joined;  // texts of elements read in several pieces
  std::vector<KEPT_NODE> nodes;
  bool has_top_level = false;
};

// Reads the file's top-level elements named root.name, keeping below them
// only the elements root names, recursively; the tree is empty wherever
// read_xml_file's would be. root is not owned and is read during the call only.
KEPT_TREE read_kept_elements(const char* file_name, const KEPT_ELEMENT& root);
