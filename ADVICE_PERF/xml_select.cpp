#include "ADVICE_PERF/xml_select.h"

#include "ADVICE_PERF/xml_read.h"

#include <boost/property_tree/detail/rapidxml.hpp>

#include <cstring>

namespace {

// The character classes of read_xml's parser.
using tables = boost::property_tree::detail::rapidxml::internal::lookup_tables<0>;

// Thrown where the parser would fail or the nesting passes max_xml_depth.
struct unreadable {};

}  // namespace

// Walks the text as read_xml's parser does with the flags read_xml_file gives
// it, failing where it fails; expands and records only what is kept. Parsing
// writes expanded text only behind the point it has read to, so the text
// recorded stays valid to the end.
class SELECTIVE_PARSER {
 public:
  SELECTIVE_PARSER(KEPT_TREE& tree, const KEPT_ELEMENT& root)
      : tree(tree), root(root), p(tree.file.text.get()) {}

  void document() {
    if (byte(0) == 0xEF && byte(1) == 0xBB && byte(2) == 0xBF) p += 3;
    for (;;) {
      skip(tables::lookup_whitespace);
      if (*p == 0) return;
      if (*p != '<') throw unreadable();
      ++p;
      node(nullptr);
    }
  }

 private:
  // What an element being read keeps: what is kept below it and where its
  // node and its text pieces go.
  struct KEEPING {
    const KEPT_ELEMENT& kept;
    uint32_t node;
    std::string* joined = nullptr;  // its text, once it has two pieces
  };

  unsigned char byte(std::size_t at) const { return static_cast<unsigned char>(p[at]); }
  void skip(const unsigned char* table) {
    while (table[static_cast<unsigned char>(*p)])
      ++p;
  }
  // Moves p behind the next occurrence of end, which the text must hold.
  void skip_past(const char* end) {
    const std::size_t size = std::strlen(end);
    while (std::strncmp(p, end, size) != 0) {
      if (*p == 0) throw unreadable();
      ++p;
    }
    p += size;
  }

  // A node behind its '<'; parent is null at the top level and in elements
  // that are left out.
  void node(KEEPING* parent) {
    if (*p == '?') {
      // A declaration or processing instruction, both read to their "?>".
      ++p;
      skip_past("?>");
      return;
    }
    if (*p != '!') return element(parent);
    if (p[1] == '-' && p[2] == '-') {
      p += 3;
      skip_past("-->");
      if (!parent && depth == 0) tree.has_top_level = true;
      return;
    }
    if (std::strncmp(p + 1, "[CDATA[", 7) == 0) {
      p += 8;
      const char* value = p;
      skip_past("]]>");
      if (parent) add_text(*parent, value, p - 3);
      return;
    }
    if (std::strncmp(p + 1, "DOCTYPE", 7) == 0 && tables::lookup_whitespace[byte(8)]) {
      p += 9;
      return doctype();
    }
    ++p;
    skip_past(">");
  }

  void doctype() {
    while (*p != '>') {
      if (*p == 0) throw unreadable();
      if (*p++ != '[') continue;
      for (int brackets = 1; brackets > 0; ++p) {
        if (*p == 0) throw unreadable();
        brackets += *p == '[' ? 1 : *p == ']' ? -1 : 0;
      }
    }
    ++p;
  }

  void element(KEEPING* parent) {
    const char* name_start = p;
    skip(tables::lookup_node_name);
    if (p == name_start) throw unreadable();
    const std::string_view name(name_start, p - name_start);
    const KEPT_ELEMENT* kept = nullptr;
    if (parent) {
      for (const auto& child : parent->kept.children)
        if (child.name == name) {
          kept = &child;
          break;
        }
    } else if (depth == 0) {
      tree.has_top_level = true;
      if (name == root.name) kept = &root;
    }
    const auto node = static_cast<uint32_t>(tree.nodes.size());
    if (kept) tree.nodes.push_back({name, {}, 0, false});
    skip(tables::lookup_whitespace);
    attributes(kept != nullptr);
    if (*p == '>') {
      ++p;
      KEEPING keeping{kept ? *kept : root, node};
      contents(kept ? &keeping : nullptr);
    } else if (p[0] == '/' && p[1] == '>') {
      p += 2;
    } else {
      throw unreadable();
    }
    if (kept) tree.nodes[node].end = static_cast<uint32_t>(tree.nodes.size());
  }

  void attributes(bool keep) {
    while (tables::lookup_attribute_name[byte(0)]) {
      const char* name = p;
      skip(tables::lookup_attribute_name);
      const std::size_t name_size = p - name;
      skip(tables::lookup_whitespace);
      if (*p != '=') throw unreadable();
      ++p;
      skip(tables::lookup_whitespace);
      const char quote = *p;
      if (quote != '\'' && quote != '"') throw unreadable();
      ++p;
      const unsigned char* value_chars =
          quote == '\'' ? tables::lookup_attribute_data_1 : tables::lookup_attribute_data_2;
      const char* value = p;
      const char* end = keep ? expand(value_chars, false) : check(value_chars);
      if (*p != quote) throw unreadable();
      ++p;
      if (keep) {
        const auto index = static_cast<uint32_t>(tree.nodes.size());
        tree.nodes.push_back({{name, name_size}, {value, static_cast<std::size_t>(end - value)},
                              index + 1, true});
      }
      skip(tables::lookup_whitespace);
    }
  }

  void contents(KEEPING* keeping) {
    if (++depth > max_xml_depth) throw unreadable();
    for (;;) {
      skip(tables::lookup_whitespace);
      while (*p != '<') {
        if (*p == 0) throw unreadable();
        text(keeping);
      }
      if (p[1] == '/') {
        p += 2;
        skip(tables::lookup_node_name);
        skip(tables::lookup_whitespace);
        if (*p != '>') throw unreadable();
        ++p;
        --depth;
        return;
      }
      ++p;
      node(keeping);
    }
  }

  // A text piece, which starts past white space; its one trailing space goes.
  void text(KEEPING* keeping) {
    if (!keeping) {
      check(tables::lookup_text);
      return;
    }
    const char* value = p;
    const char* end = expand(tables::lookup_text, true);
    if (end[-1] == ' ') --end;
    add_text(*keeping, value, end);
  }

  void add_text(KEEPING& keeping, const char* value, const char* end) {
    std::string_view& text = tree.nodes[keeping.node].text;
    const std::string_view piece(value, end - value);
    if (text.empty()) {
      text = piece;
      return;
    }
    if (!keeping.joined) keeping.joined = &tree.joined.emplace_back(text);
    keeping.joined->append(piece);
    text = *keeping.joined;
  }

  // Moves p past the characters of the class chars, expanding entity and
  // character references in place, and with condense each run of white space
  // into one space; returns the end of the expanded text.
  char* expand(const unsigned char* chars, bool condense) {
    while (chars[byte(0)] && *p != '&' && !(condense && tables::lookup_whitespace[byte(0)]))
      ++p;
    char* out = p;
    while (chars[byte(0)]) {
      if (*p == '&') {
        if (const char* entity = named_entity()) {
          *out++ = *entity;
          continue;
        }
        if (p[1] == '#') {
          append_code(out, character_reference());
          continue;
        }
      }
      if (condense && tables::lookup_whitespace[byte(0)]) {
        *out++ = ' ';
        ++p;
        skip(tables::lookup_whitespace);
        continue;
      }
      *out++ = *p++;
    }
    return out;
  }

  // Moves p past the characters of the class chars as expand does, only
  // checking the character references.
  const char* check(const unsigned char* chars) {
    for (;;) {
      while (chars[byte(0)] && *p != '&')
        ++p;
      if (*p != '&') return p;
      if (p[1] != '#') {
        ++p;
        continue;
      }
      const unsigned long code = character_reference();
      if (code >= 0x110000) throw unreadable();
    }
  }

  // The character of the entity reference at p, moving p past it; null for
  // any other '&', which stays as it is.
  const char* named_entity() {
    static constexpr struct {
      const char* reference;
      const char* character;
    } entities[] = {{"&amp;", "&"}, {"&apos;", "'"}, {"&quot;", "\""}, {"&gt;", ">"}, {"&lt;", "<"}};
    for (const auto& entity : entities) {
      const std::size_t size = std::strlen(entity.reference);
      if (std::strncmp(p, entity.reference, size) == 0) {
        p += size;
        return entity.character;
      }
    }
    return nullptr;
  }

  // The code of the character reference at p, moving p past it. As the
  // parser reads them, both forms take hexadecimal digits, the number wraps
  // at the width of unsigned long, and the ';' must follow the digits.
  unsigned long character_reference() {
    const bool hexadecimal = p[2] == 'x';
    const unsigned long base = hexadecimal ? 16 : 10;
    p += hexadecimal ? 3 : 2;
    unsigned long code = 0;
    for (unsigned char digit; (digit = tables::lookup_digits[byte(0)]) != 0xFF; ++p)
      code = code * base + digit;
    if (*p != ';') throw unreadable();
    ++p;
    return code;
  }

  // Writes the character as UTF-8; codes past U+10FFFF have none.
  static void append_code(char*& out, unsigned long code) {
    int size = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : code < 0x110000 ? 4 : 0;
    if (size == 0) throw unreadable();
    static constexpr unsigned char lead[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (int at = size - 1; at > 0; --at, code >>= 6)
      out[at] = static_cast<char>(0x80 | (code & 0x3F));
    out[0] = static_cast<char>(lead[size] | code);
    out += size;
  }

  KEPT_TREE& tree;
  const KEPT_ELEMENT& root;
  char* p;
  int depth = 0;  // elements open
};

KEPT_TREE read_kept_elements(const char* file_name, const KEPT_ELEMENT& root) {
  try {
    KEPT_TREE tree;
    if (load_file_text(file_name, tree.file)) SELECTIVE_PARSER(tree, root).document();
    return tree;
  } catch (...) {
    // Not well-formed, nested too deep or too large for memory: empty.
    return {};
  }
}
