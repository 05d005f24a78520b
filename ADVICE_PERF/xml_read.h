#pragma once
// Reading an XML file into a property tree with the parser and flags of
// read_xml (white space trimmed, comments kept), within fixed bounds on what a
// file may cost.

#include <boost/property_tree/ptree.hpp>

#include <cstddef>

// Larger files count as unreadable. Reading also ends at the first NUL byte,
// where the parser stops, so an endless device ends at once.
inline constexpr std::size_t max_xml_file_bytes = std::size_t{1} << 30;
// Files nested deeper count as unreadable: well below what the recursive
// parser can take on a small stack; real documents are under 10 levels deep.
inline constexpr int max_xml_depth = 1000;

// Whether read_xml's parser would nest the NUL-terminated text's elements
// deeper than max_xml_depth before it meets an error, if any; text outside
// the elements, which it refuses, may count either way.
bool nested_too_deep(const char* text);

// The tree read_xml would give for the file, or an empty tree when the file
// can't be opened or read, is larger or nested deeper than the bounds above,
// or isn't well-formed.
boost::property_tree::ptree read_xml_file(const char* file_name);
