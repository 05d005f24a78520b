#include "ADVICE_PERF/ptree_info.h"

#include "ADVICE_PERF/file_replace.h"
#include "ADVICE_PERF/xml_text.h"

#include <boost/property_tree/xml_parser.hpp>

#include <ctime>
#include <sstream>

namespace xml_parser = boost::property_tree::xml_parser;

uint64_t new_timestamp() {
  static const uint64_t now = static_cast<uint64_t>(std::time(nullptr));
  return now;
}

ptree XML_PTREE::read(const KEPT_ELEMENT* kept) const {
  return read_xml_file(file_name, kept);
}

void XML_PTREE::write(const ptree& tree) const {
  const xml_parser::xml_writer_settings<std::string> settings('\t', 1, "utf-8");
  std::ostringstream text;
  xml_parser::write_xml(text, tree, settings);
  replace_file(file_name, strict_xml_text(text.str()));
}

PTREE_INFO::PTREE_INFO(const char* file_name)
    : file_name(file_name), xml(new XML_PTREE(file_name)) {}

PTREE_INFO::~PTREE_INFO() {
  delete xml;
}

void PTREE_INFO::input() {
  xml->read(kept_elements()).swap(pt);
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
