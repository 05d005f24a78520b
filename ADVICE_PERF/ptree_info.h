#pragma once
// The common frame of the XML documents: reading a file into a property tree
// and writing one back, the version and time stamp that head the tool's own
// documents, and the one numeric text format of times, sizes and counts.

#include "ADVICE_PERF/file_replace.h"
#include "ADVICE_PERF/hex_number.h"
#include "ADVICE_PERF/xml_read.h"

#include <boost/property_tree/ptree.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

using ptree = boost::property_tree::ptree;

// Converts between a number and its text: hexadecimal with the base shown.
// Writing gives lower-case digits behind "0x" ("0" for zero); reading takes
// hexadecimal digits with or without "0x", stops at the first character that
// can't belong to the number, and gives 0 for text that isn't a number
// (hex_number.h has the details).
template <typename Target, typename Source>
Target convert(const Source& value) {
  if constexpr (std::is_same_v<Target, std::string>)
    return hex_number::write(value);
  else
    return hex_number::read<Target>(std::string_view(value));
}

// Seconds since the Unix epoch, read from the clock at the first call; later
// calls return the same value, so all documents written in one run bear one time.
uint64_t new_timestamp();

// A source of the current time in seconds since the Unix epoch.
using timestamp_clock = uint64_t (*)();
// Makes the next call of new_timestamp read clock (the system clock when
// null) and fix the run's time anew; tests use it to set the time of a run.
void set_timestamp_clock(timestamp_clock clock);

// Reads a file into a property tree and writes a tree back to the file.
class XML_PTREE {
 public:
  explicit XML_PTREE(const char* file_name) : file_name(file_name) {}
  virtual ~XML_PTREE() = default;

  // The file's tree (see read_xml_file); an empty tree when the file can't
  // be opened or parsed. A regular file that holds bytes but gives no tree is
  // marked for keeping.
  ptree read();
  // Replaces the file with the tree, as strict XML 1.0 (see strict_xml_text),
  // through replace_file, which keeps the old file when the last read could
  // not use it; failures throw xml_parser_error.
  void write(const ptree& tree) const;

 private:
  const char* file_name;  // not owned; lives for the whole run
  old_document old = old_document::dropped;
};

// Abstract base of the documents. A derived constructor sets version and
// calls input (through its init) once its own members exist.
class PTREE_INFO {
 public:
  explicit PTREE_INFO(const char* file_name);
  virtual ~PTREE_INFO();
  PTREE_INFO(const PTREE_INFO&) = delete;
  PTREE_INFO& operator=(const PTREE_INFO&) = delete;

  // Reads the file; a missing or unreadable file leaves the object as built.
  void input();
  // Rewrites the file from the object alone: version, time stamp, body.
  void output();

  int32_t get_file_version() const { return file_version; }
  // The time stamp found in the file at the last input; 0 when none was read.
  uint64_t get_timestamp() const { return timestamp; }

 protected:
  virtual void read_body() = 0;
  virtual void write_body() = 0;
  // The version in pt, or -1 when it is missing or isn't an integer.
  virtual int32_t read_version();
  virtual void write_version();
  // The time stamp text in pt; throws ptree_bad_path when it is missing.
  virtual std::string read_timestamp();
  virtual void write_timestamp();

  const char* file_name;  // not owned
  ptree pt;               // holds data only during input and output
  XML_PTREE* xml;         // owned
  int32_t version = -1;
  int32_t file_version = -1;
  uint64_t timestamp = 0;
};
