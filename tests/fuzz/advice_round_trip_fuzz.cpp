// Reading an advice document, updating it by the rules of a plain run, writing
// it and reading it again gives the same entries, but for the characters XML
// can't carry, which the writer replaces, and the white space the format
// doesn't carry; and the written text is well-formed XML.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <libxml/parser.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <string>

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/xml_text.h"
#include "tests/fuzz/fuzz_support.h"
#include "tests/util/temp_dir.h"

namespace {

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "round trip: %s\n", what);
  std::abort();
}

bool well_formed(const std::string& text) {
  xmlDocPtr doc = xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                                XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  xmlFreeDoc(doc);
  return doc != nullptr;
}

// An element's text as the document format carries it: written as text, it
// is read back with its white space trimmed and condensed, so text that came
// from a CDATA section or character references need not come back as it was.
std::string as_carried(const std::string& text) {
  namespace xml_parser = boost::property_tree::xml_parser;
  boost::property_tree::ptree written, read;
  written.put("e", text).put("<xmlattr>.a", "");
  std::stringstream xml;
  xml_parser::write_xml(xml, written, xml_parser::xml_writer_settings<std::string>('\t', 1));
  xml_parser::read_xml(xml, read, xml_parser::trim_whitespace);
  return read.get<std::string>("e");
}

// The entries as the writer puts them down: each text through strict_xml_text,
// the message as the format carries it; of keys that become equal, the first
// stays, as the reader keeps it.
ADVICE::entry_map as_written(const ADVICE::entry_map& entries) {
  ADVICE::entry_map written;
  for (const auto& [key, entry] : entries) {
    written.emplace(strict_xml_text(key),
                    ADVICE_INFO{strict_xml_text(entry.advice_type), strict_xml_text(entry.option),
                                strict_xml_text(entry.value), as_carried(strict_xml_text(entry.msg)),
                                strict_xml_text(entry.action)});
  }
  return written;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  begin_input();
  make_option_objects();
  const char* path = input_file(data, size);
  const LINK_DATA link(no_file);
  ADVICE::entry_map entries;
  bool flag = false;
  try {
    ADVICE first(path, link);
    first.update();
    entries = as_written(first.get_entries());
    flag = first.get_link_advice_flag();
    first.output();
  } catch (const std::exception&) {
    return 0;  // a document the reader refuses is not written
  }
  if (!well_formed(read_file(path))) fail("the written text is not well-formed XML");
  const ADVICE second(path, link);
  if (second.get_entries() != entries || second.get_link_advice_flag() != flag)
    fail("the document read back differs");
  return 0;
}
