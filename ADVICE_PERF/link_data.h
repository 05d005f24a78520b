#pragma once
// The linker's XML link information: when the link happened, how many errors
// it had, and how many bytes of initialized, non-debug program it produced.

#include "ADVICE_PERF/link_file.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Whether a logical group counts toward the code size, and if not, why.
enum class group_count { counted, no_components, uninitialized, debug };

// One logical group as the code size sees it.
struct GROUP_SIZE {
  std::string id;
  std::string name;
  uint32_t size = 0;  // the bytes the code size adds when the group counts
  group_count count = group_count::counted;
};

class LINK_DATA {
 public:
  // Reads the file in full; a missing or unparsable file gives link time 0,
  // error count -1 and code size 0. A file lacking a required element throws
  // (see read_link_contents).
  explicit LINK_DATA(const char* file_name);
  ~LINK_DATA();
  LINK_DATA(const LINK_DATA&) = delete;
  LINK_DATA& operator=(const LINK_DATA&) = delete;

  // The link data of no link, for a document that is only read.
  static const LINK_DATA& none();

  // Seconds since the Unix epoch of the link.
  uint64_t get_link_time() const { return timestamp; }
  // Bytes of the initialized non-debug groups; 0 when nothing was counted.
  uint32_t get_code_size() const { return code_size; }
  // The linker's error count; -1 when the file doesn't give it.
  int32_t get_link_errors() const { return link_errors; }
  // Every logical group in id order, classified by the rules of the code size.
  std::vector<GROUP_SIZE> logical_groups() const;
  // The file's version: -1 for an empty file, 1 when it gives none.
  int32_t get_file_version() const { return file_version; }
  // The same as get_link_time.
  uint64_t get_timestamp() const { return timestamp; }

 private:
  void set_code_size();
  group_count classify(const SECT_INFO& sect) const;

  int32_t file_version = -1;
  uint64_t timestamp = 0;
  uint32_t code_size = 0;
  int32_t link_errors = -1;
  std::map<std::string, bool> object_components;  // id -> uninitialized
  std::map<std::string, SECT_INFO> sections;      // id of the logical group
};
