#pragma once
// What the link data takes from the linker's XML link information, read from
// the file's few elements it needs, the rest of the file only parsed.

#include <cstdint>
#include <map>
#include <set>
#include <string>

// One logical group of the link (an output section).
struct SECT_INFO {
  int32_t size = 0;
  std::string name;
  std::set<std::string> components;  // ids of the object components it holds
  bool operator==(const SECT_INFO&) const = default;
};

// The contents of a link file as the link data reads them.
struct LINK_FILE {
  int32_t version = -1;  // -1 when the file is empty; 1 when it gives none
  uint64_t link_time = 0;
  int32_t link_errors = -1;                        // -1 when the file doesn't give it
  std::map<std::string, bool> object_components;  // id -> uninitialized
  std::map<std::string, SECT_INFO> sections;      // id of the logical group
  bool operator==(const LINK_FILE&) const = default;
};

// Reads the file. A file that can't be read, isn't well-formed or breaks the
// bounds of read_xml_file gives an empty LINK_FILE. A file that lacks a
// required element or attribute throws the ptree_bad_path a look-up of its
// path in the file's property tree throws.
LINK_FILE read_link_contents(const char* file_name);
