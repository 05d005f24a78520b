#pragma once
// Reading an XML file into a property tree with the parser and flags of
// read_xml (white space trimmed, comments kept), within fixed bounds on what a
// file may cost, and optionally keeping only the elements a reader looks at.

#include <boost/property_tree/ptree.hpp>

#include <cstddef>
#include <span>
#include <string_view>

// Larger files count as unreadable. Reading also ends at the first NUL byte,
// where the parser stops, so an endless device ends at once.
inline constexpr std::size_t max_xml_file_bytes = std::size_t{1} << 30;
// Files nested deeper count as unreadable: well below what the recursive
// parser can take on a small stack; real documents are under 10 levels deep.
inline constexpr int max_xml_depth = 1000;

// An element a selective reading keeps, with its text and attributes, and the
// elements below it that are kept too; all others below it are left out.
struct KEPT_ELEMENT {
  std::string_view name;
  std::span<const KEPT_ELEMENT> children;
};

// The tree read_xml would give for the file, or an empty tree when the file
// can't be opened or read, is larger or nested deeper than the bounds above,
// or isn't well-formed. With root set, only a top-level element of root's name
// gets content, and only the kept elements below it; other top-level nodes
// are kept empty, so a file counts as empty exactly when read_xml's tree is.
// root is not owned and is read during the call only.
boost::property_tree::ptree read_xml_file(const char* file_name,
                                          const KEPT_ELEMENT* root = nullptr);
