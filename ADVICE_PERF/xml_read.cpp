#include "ADVICE_PERF/xml_read.h"

#include "ADVICE_PERF/file_text.h"

#include <boost/property_tree/detail/rapidxml.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <cstring>
#include <memory>

using ptree = boost::property_tree::ptree;
namespace rapidxml = boost::property_tree::detail::rapidxml;
namespace xml_parser = boost::property_tree::xml_parser;

namespace {

// The flags read_xml gives the parser for trim_whitespace without no_comments.
constexpr int parse_flags = rapidxml::parse_normalize_whitespace | rapidxml::parse_trim_whitespace |
                            rapidxml::parse_comment_nodes;

// Whether the parser would nest elements deeper than max_xml_depth. Follows
// the parser's own lexical rules and character tables; at the first error it
// stops and leaves the verdict to the parser, which fails at that point too.
// Text outside the elements, which the parser refuses but for a leading byte
// order mark, is passed over, and so is the '>' that ends a tag.
class DEPTH_SCAN {
 public:
  explicit DEPTH_SCAN(const char* text) : p(reinterpret_cast<const unsigned char*>(text)) {}

  bool too_deep() {
    int depth = 0;
    for (;;) {
      skip(tables::lookup_whitespace);
      if (*p == 0) return false;
      if (*p != '<') {
        skip(tables::lookup_text);
        continue;
      }
      if (depth > 0 && p[1] == '/') {
        p += 2;
        skip(tables::lookup_node_name);
        skip(tables::lookup_whitespace);
        if (*p != '>') return false;
        --depth;
        continue;
      }
      ++p;
      switch (node()) {
        case OPENED:
          if (++depth > max_xml_depth) return true;
          break;
        case ERROR:
          return false;
        case FLAT:
          break;
      }
    }
  }

 private:
  using tables = rapidxml::internal::lookup_tables<0>;
  enum NODE { FLAT, OPENED, ERROR };

  void skip(const unsigned char* table) {
    while (table[*p])
      ++p;
  }
  bool starts(const char* word) const {
    return std::strncmp(reinterpret_cast<const char*>(p), word, std::strlen(word)) == 0;
  }
  NODE skip_opening_to(std::size_t opening, const char* end) {
    p += opening;
    while (!starts(end)) {
      if (*p == 0) return ERROR;
      ++p;
    }
    p += std::strlen(end);
    return FLAT;
  }

  // One node behind its '<'. Each kind's end is searched for behind its
  // opening, as the parser does.
  NODE node() {
    if (*p == '?') return skip_opening_to(1, "?>");
    if (*p != '!') return element();
    if (starts("!--")) return skip_opening_to(3, "-->");
    if (starts("![CDATA[")) return skip_opening_to(8, "]]>");
    if (starts("!DOCTYPE") && tables::lookup_whitespace[p[8]]) {
      p += 9;
      return doctype();
    }
    return skip_opening_to(1, ">");
  }

  NODE doctype() {
    while (*p != '>') {
      if (*p == 0) return ERROR;
      if (*p++ != '[') continue;
      for (int depth = 1; depth > 0; ++p) {
        if (*p == 0) return ERROR;
        depth += *p == '[' ? 1 : *p == ']' ? -1 : 0;
      }
    }
    return FLAT;
  }

  NODE element() {
    const unsigned char* name = p;
    skip(tables::lookup_node_name);
    if (p == name) return ERROR;
    skip(tables::lookup_whitespace);
    while (tables::lookup_attribute_name[*p]) {
      skip(tables::lookup_attribute_name);
      skip(tables::lookup_whitespace);
      if (*p++ != '=') return ERROR;
      skip(tables::lookup_whitespace);
      const unsigned char quote = *p;
      if (quote != '\'' && quote != '"') return ERROR;
      ++p;
      while (*p != quote) {
        if (*p == 0) return ERROR;
        ++p;
      }
      ++p;
      skip(tables::lookup_whitespace);
    }
    if (*p == '>') return OPENED;
    return p[0] == '/' && p[1] == '>' ? FLAT : ERROR;
  }

  const unsigned char* p;
};

}  // namespace

bool nested_too_deep(const char* text) {
  return DEPTH_SCAN(text).too_deep();
}

ptree read_xml_file(const char* file_name) {
  try {
    FILE_TEXT file;
    if (!load_file_text(file_name, file) || nested_too_deep(file.text.get())) return {};
    auto document = std::make_unique<rapidxml::xml_document<char>>();
    document->parse<parse_flags>(file.text.get());
    ptree tree;
    for (auto* node = document->first_node(); node; node = node->next_sibling())
      xml_parser::read_xml_node(node, tree, xml_parser::trim_whitespace);
    return tree;
  } catch (...) {
    // A file that isn't well-formed, or too large for memory, counts as empty.
    return {};
  }
}
