#include "options/option_values.h"

#include <cstdint>

#include "UTIL/strcase.h"

namespace {

// The largest numbers of an argument without bounds, signed and unsigned.
constexpr uint64_t signed_unbounded = 0x7fffffffffffffffULL;
constexpr uint64_t unsigned_unbounded = 0xffffffffffffffffULL;

bool same_spelling(const option_table& table, const char* row_text, const std::string& text) {
  const std::string rest = text.substr(1);  // scan rows hold a token less its first dash
  return table.fold_case ? strcaseicmp(row_text, rest.c_str()) == 0 : rest == row_text;
}

}  // namespace

int option_spelled(const option_table& table, const std::string& text) {
  if (text.size() < 2 || text[0] != '-') return -1;
  for (unsigned i = 0; i < table.scan_count; ++i)
    if (same_spelling(table, table.scan[i].text, text)) return table.scan[i].id;
  return -1;
}

std::vector<std::string> enumerated_values(const option_table& table, int id) {
  std::vector<std::string> values;
  if (id < 0 || static_cast<unsigned>(id) >= table.n) return values;
  const uint8_t kind = table.parm_type[id];
  if (kind == kind_oneof || kind == kind_oneof_list) {
    for (const option_item* item = table.option_definitions[id].item_list; item && item->text;
         ++item)
      if (item->text[0] == '+') values.emplace_back(item->text + 1);
    return values;
  }
  if (kind != kind_number) return values;
  for (unsigned i = 0; i < table.scan_count; ++i) {
    const scan_row& row = table.scan[i];
    if (row.id != id || row.handler != handler_arg) continue;
    if (row.high == signed_unbounded || row.high == unsigned_unbounded) return values;
    for (uint64_t n = row.low; n <= row.high; ++n)
      values.push_back(std::to_string(n));
    return values;
  }
  return values;
}
