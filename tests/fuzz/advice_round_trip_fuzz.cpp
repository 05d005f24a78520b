// Reading an advice document, writing it and reading it again gives the same
// entries, and the written text is well-formed XML.
#include <libxml/parser.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "tests/fuzz/fuzz_support.h"

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  begin_input();
  const char* path = input_file(data, size);
  const LINK_DATA link(no_file);
  ADVICE::entry_map entries;
  bool flag = false;
  try {
    ADVICE first(path, link);
    entries = first.get_entries();
    flag = first.get_link_advice_flag();
    first.output();
  } catch (const std::exception&) {
    return 0;  // a document the reader refuses is not written
  }
  if (!well_formed(file_text(path))) fail("the written text is not well-formed XML");
  const ADVICE second(path, link);
  if (second.get_entries() != entries || second.get_link_advice_flag() != flag)
    fail("the document read back differs");
  return 0;
}
