// Naming options, exporting them as parsable text, and dumps for debugging.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "UTIL/safemalloc.h"
#include "options/option_engine.h"

namespace {

// The name under which dump_history shows file options (scrambled).
const char* const file_option_name = "%%vachg_svyr";

char* copy_out(const std::string& text) {
  return safestrdup(text.c_str());
}

int* id_list(const std::vector<int>& ids, unsigned closing) {
  int* list = static_cast<int*>(safemalloc((ids.size() + 1) * sizeof(int)));
  for (size_t i = 0; i < ids.size(); ++i)
    list[i] = ids[i];
  list[ids.size()] = static_cast<int>(closing);
  return list;
}

}  // namespace

// Letters move 13 places, '%' and '-' swap; a ring of five buffers keeps
// the last results alive.
const char* option_engine::rot13(const char* text) {
  static char* ring[5];
  static size_t capacity[5];
  static unsigned next = 0;
  if (!text) return "";
  unsigned slot = next;
  next = (next + 1) % 5;
  size_t length = std::strlen(text);
  if (capacity[slot] <= length + 1) {
    std::free(ring[slot]);
    capacity[slot] = length + 80;
    ring[slot] = static_cast<char*>(safemalloc(capacity[slot]));
  }
  char* out = ring[slot];
  for (size_t i = 0; i <= length; ++i) {
    char c = text[i];
    if (c == '%')
      c = '-';
    else if (c == '-')
      c = '%';
    else if ((c >= 'a' && c <= 'm') || (c >= 'A' && c <= 'M'))
      c = static_cast<char>(c + 13);
    else if ((c >= 'n' && c <= 'z') || (c >= 'N' && c <= 'Z'))
      c = static_cast<char>(c - 13);
    out[i] = c;
  }
  return out;
}

const char* option_engine::format_of_option(int id) const {
  if (!valid(id)) return nullptr;
  const option_row& r = row(id);
  // form 0 is the long form, form n the n-th further spelling
  unsigned n = 1;
  for (const char* const* alt = r.alt_forms; alt && *alt; ++alt, ++n)
    if (n == option_form[id]) return rot13(*alt);
  return rot13(r.long_form);
}

const char* option_engine::internal_option_string(int id) const {
  if (!valid(id)) return nullptr;
  return rot13(table_->enum_to_optiontxt[id]);
}

// The text of one stored value, as export_option and dump show it.
std::string option_engine::value_text(int id, unsigned index) const {
  if (kind(id) == kind_oneof) {
    long value = getnumarg(id, index);
    if (value == 0) return "";
    const char* word = item_word(id, value);
    return word ? word : "error";
  }
  const char* text = getstrarg(id, index);
  return text ? text : "";
}

char* option_engine::export_option(int id, int index) const {
  if (!valid(id)) return nullptr;
  if (option_seen[id] != 0 && option_state[id] == 0) return nullptr;
  std::string canonical = internal_option_string(id);
  if (kind(id) == kind_none) return copy_out(canonical);
  if (index == 0 ? option_state[id] == 0 : index < 0 || index >= getargcount(id)) return nullptr;
  std::string value = value_text(id, static_cast<unsigned>(index));
  return copy_out(value.empty() ? canonical : canonical + "=" + value);
}

int* option_engine::export_option_list(int type) const {
  return export_option_class(type, 0);
}

int* option_engine::export_option_class(int type, int cls) const {
  std::vector<int> ids;
  if (cls >= 0 && static_cast<unsigned>(cls) < table_->k) {
    for (unsigned id = 0; id < table_->n; ++id) {
      if (!isclass(static_cast<int>(id), cls)) continue;
      bool chosen = type == export_all           ? true
                    : type == export_seen_or_set ? option_seen[id] != 0 || option_state[id] != 0
                                                 : option_state[id] != 0;
      if (chosen) ids.push_back(static_cast<int>(id));
    }
  }
  return id_list(ids, table_->n);
}

std::vector<optlist> option_engine::export_option_pairs(int type, int cls) const {
  std::vector<optlist> pairs;
  int* ids = export_option_class(type, cls);
  for (int* id = ids; *id != static_cast<int>(table_->n); ++id) {
    int count = getargcount(*id);
    for (int i = 0; i < (count ? count : 1); ++i) {
      char* text = export_option(*id, i);
      pairs.push_back({*id, text ? text : ""});
      std::free(text);
    }
  }
  std::free(ids);
  return pairs;
}

std::vector<int> option_engine::class_list_for_option(int id) const {
  std::vector<int> classes;
  if (valid(id)) {
    classes.push_back(0);
    for (unsigned cls = 1; cls < table_->k; ++cls)
      if (table_->classes[id * table_->k + cls]) classes.push_back(static_cast<int>(cls));
  } else if (id > static_cast<int>(table_->n) && id <= table_->last_fileopt + 1) {
    classes.push_back(0);
  }
  return classes;
}

char* option_engine::print() const {
  std::string line;
  int* ids = export_option_list(export_set);
  for (int* id = ids; *id != static_cast<int>(table_->n); ++id) {
    int count = getargcount(*id);
    for (int i = 0; i < (count ? count : 1); ++i) {
      char* text = export_option(*id, i);  // never null: the option is set, i within its count
      if (!line.empty()) line += ' ';
      line += text;
      std::free(text);
    }
  }
  std::free(ids);
  return copy_out(line);
}

void option_engine::dump(int all) const {
  static const char* const kind_words[] = {
      "NO ARGS",         "STRING ARG:",      "NUMBER ARG:",      "HEXNUM ARG:",
      "ENUMERATED ARG:", "STRING LIST ARG:", "NUMBER LIST ARG:", "ONEOF LIST ARG:"};
  for (unsigned u = 0; u < table_->n; ++u) {
    int id = static_cast<int>(u);
    if (!all && option_state[id] == 0) continue;
    std::printf("%-25s  ", rot13(table_->enum_to_optiontxt[id]));
    if (all) {
      std::printf("%s", option_seen[id] ? "SEEN      " : "not seen  ");
      std::printf("%s", option_state[id] ? "ENABLED   " : "disabled  ");
    }
    uint8_t k = kind(id);
    if (k > kind_oneof_list) {
      std::printf("<UNKNOWN TYPE!?!?>\n");
      continue;
    }
    std::printf("%s", kind_words[k]);
    unsigned count = static_cast<unsigned>(getargcount(id));
    if (k == kind_none) {
    } else if (is_list_kind(id)) {
      std::printf(" ");
      for (unsigned i = 0; i < count; ++i)
        std::printf("%s ", value_text(id, i).c_str());
    } else if (count == 0) {
      std::printf(" <arg not provided>");
    } else {
      std::printf(" %s", value_text(id, 0).c_str());
    }
    std::printf("\n");
  }
}

void option_engine::dump_history() const {
  for (const auto& [id, arg] : history) {
    const char* name = rot13(valid(id) ? table_->enum_to_optiontxt[id] : file_option_name);
    if (arg.text.empty())
      std::printf("%s\n", name);
    else
      std::printf("%s=%s\n", name, arg.text.c_str());
  }
}
