#include "ADVICE_PERF/ptree_info.h"

#include "ADVICE_PERF/xml_text.h"

#include <boost/property_tree/xml_parser.hpp>

#include <sys/stat.h>

#include <ctime>
#include <optional>
#include <sstream>

namespace xml_parser = boost::property_tree::xml_parser;

namespace {

uint64_t system_clock() {
  return static_cast<uint64_t>(std::time(nullptr));
}

timestamp_clock run_clock = system_clock;
std::optional<uint64_t> run_time;  // fixed at the first call of new_timestamp

}  // namespace

uint64_t new_timestamp() {
  if (!run_time) run_time = run_clock();
  return *run_time;
}

void set_timestamp_clock(timestamp_clock clock) {
  run_clock = clock ? clock : system_clock;
  run_time.reset();
}

ptree XML_PTREE::read() {
  ptree tree = read_xml_file(file_name);
  // Absent, empty or read whole, the old file has nothing the new one lacks;
  // any other file that gave no tree (not well-formed, a read error, no
  // permission) is kept when it is replaced.
  struct stat status {};
  const bool unread = tree.empty() && stat(file_name, &status) == 0 &&
                      S_ISREG(status.st_mode) && status.st_size > 0;
  old = unread ? old_document::kept : old_document::dropped;
  return tree;
}

void XML_PTREE::write(const ptree& tree) const {
  const xml_parser::xml_writer_settings<std::string> settings('\t', 1, "utf-8");
  std::ostringstream text;
  xml_parser::write_xml(text, tree, settings);
  replace_file(file_name, strict_xml_text(text.str()), old);
}

PTREE_INFO::PTREE_INFO(const char* file_name)
    : file_name(file_name), xml(new XML_PTREE(file_name)) {}

PTREE_INFO::~PTREE_INFO() {
  delete xml;
}

void PTREE_INFO::input() {
  // A device, FIFO or socket named as a document holds no document and is
  // not read: reading it could wait forever.
  struct stat status {};
  if (stat(file_name, &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
    return;
  xml->read().swap(pt);
  if (pt.empty()) return;
  file_version = read_version();
  timestamp = convert<uint64_t>(read_timestamp());
  read_body();
  pt.clear();
}

void PTREE_INFO::output() {
  pt.clear();
  write_version();
  write_timestamp();
  write_body();
  xml->write(pt);
}

int32_t PTREE_INFO::read_version() {
  return pt.get_optional<int32_t>("body.version").value_or(-1);
}

void PTREE_INFO::write_version() {
  pt.put("body.version", version);
}

std::string PTREE_INFO::read_timestamp() {
  return pt.get<std::string>("body.timestamp");
}

void PTREE_INFO::write_timestamp() {
  pt.put("body.timestamp", convert<std::string>(new_timestamp()));
}
