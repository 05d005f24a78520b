// State of an option object: construction, copying, the getters, the
// setters and the history.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "DIAG/messages.h"
#include "UTIL/safemalloc.h"
#include "options/option_engine.h"

option_engine::option_engine(const option_table& table)
    : option_state(table.n, 0),
      option_form(table.n, 0),
      option_seen(table.n, 0),
      option_parsed(table.n, 0),
      option_args(table.n),
      table_(&table),
      history_count_(table.n, 0) {}

// The copy takes the settings and a deep copy of the arguments; history,
// command line and error count start afresh.
option_engine::option_engine(const option_engine& other)
    : debug(other.debug),
      option_state(other.option_state),
      option_form(other.option_form),
      option_seen(other.option_seen),
      option_parsed(other.option_parsed),
      option_args(other.option_args),
      current_option(other.current_option),
      source_name(other.source_name),
      merging(other.merging),
      table_(other.table_),
      history_count_(other.table_->n, 0) {}

// Assignment keeps the target's history, command line and error count.
option_engine& option_engine::operator=(const option_engine& other) {
  if (this == &other) return *this;
  table_ = other.table_;
  debug = other.debug;
  current_option = other.current_option;
  source_name = other.source_name;
  merging = other.merging;
  option_form = other.option_form;
  option_parsed = other.option_parsed;
  option_state = other.option_state;
  option_seen = other.option_seen;
  option_args = other.option_args;
  history_count_.resize(table_->n, 0);
  return *this;
}

void option_engine::set_defaults() {
  for (unsigned i = 0; i < table_->default_count; ++i)
    apply(table_->defaults[i].id, table_->defaults[i].word);
}

void option_engine::trace(const char* format, ...) const {
  if (!debug) return;
  std::printf("%s: ", table_->debug_prefix);
  va_list args;
  va_start(args, format);
  std::vprintf(format, args);
  va_end(args);
}

bool option_engine::is_list_kind(int id) const {
  uint8_t k = kind(id);
  return k == kind_string_list || k == kind_number_list || k == kind_oneof_list;
}

// ------------------------------------------------------------------ asking

int option_engine::isclass(int id, int cls) const {
  if (!valid(id) || cls < 0 || static_cast<unsigned>(cls) >= table_->k) return 0;
  if (cls == 0) return 1;
  return table_->classes[id * table_->k + cls] != 0;
}

int option_engine::testclass(int cls) const {
  int count = 0;
  if (cls <= 0 || static_cast<unsigned>(cls) >= table_->k) return 0;
  for (unsigned id = 0; id < table_->n; ++id)
    if (table_->classes[id * table_->k + cls] && option_state[id] != 0) ++count;
  return count;
}

unsigned option_engine::seenclass(int cls) const {
  unsigned sum = 0;
  if (cls <= 0 || static_cast<unsigned>(cls) >= table_->k) return 0;
  for (unsigned id = 0; id < table_->n; ++id)
    if (table_->classes[id * table_->k + cls]) sum += option_seen[id];
  return sum;
}

int option_engine::getargcount(int id) const {
  if (!valid(id) || kind(id) == kind_none) return 0;
  return static_cast<int>(option_args[id].size());
}

long option_engine::getnumarg(int id, unsigned index) const {
  if (!valid(id) || option_seen[id] == 0 || index >= option_args[id].size()) return 0;
  const option_arg& arg = option_args[id][index];
  switch (kind(id)) {
    case kind_string:
    case kind_string_list:
      return strtol_by_radix(arg.text.c_str(), nullptr);
    case kind_number:
    case kind_hexnum:
    case kind_oneof:
    case kind_number_list:
    case kind_oneof_list:
      return arg.value;
    default:
      DIAG::optgen_unhandled_option_handler(__FILE__, __LINE__, __LINE__).report();
      return 0;
  }
}

// The word of the first item with the value, without its mark; null if none.
const char* option_engine::item_word(int id, long value) const {
  const option_item* item = row(id).item_list;
  for (; item && item->text; ++item)
    if (item->value == value) return item->text + 1;
  return nullptr;
}

const char* option_engine::getstrarg(int id, unsigned index) const {
  static char ring[15][20];
  static unsigned next = 0;
  if (!valid(id) || option_seen[id] == 0 || index >= option_args[id].size()) return nullptr;
  const option_arg& arg = option_args[id][index];
  const char* format = "%ld";
  switch (kind(id)) {
    case kind_string:
    case kind_string_list:
      return arg.text.c_str();
    case kind_oneof:
    case kind_oneof_list:
    case kind_number:
    case kind_number_list:
      if (const char* word = item_word(id, arg.value)) return word;  // numbers have no items
      break;
    case kind_hexnum:
      format = "0x%lX";
      break;
    default:
      DIAG::optgen_invalid_list_handler(__FILE__, __LINE__, __LINE__).report();
      return nullptr;
  }
  char* buffer = ring[next];
  next = (next + 1) % 15;
  std::snprintf(buffer, sizeof ring[0], format, static_cast<long>(arg.value));
  return buffer;
}

void option_engine::get_argument(int id, an_argument_t* arg) const {
  if (!valid(id) || !arg) return;
  arg->count = 0;
  arg->value.num = 0;
  switch (kind(id)) {
    case kind_none:
      arg->type = argument_missing;
      return;
    case kind_string:
      arg->type = argument_text;
      arg->value.text = getstrarg(id, 0);
      return;
    case kind_hexnum:
      arg->type = argument_unsigned;
      arg->value.num = getnumarg(id, 0);
      return;
    case kind_number:
    case kind_oneof:
      arg->type = argument_signed;
      arg->value.num = getnumarg(id, 0);
      return;
    default:
      break;
  }
  unsigned count = static_cast<unsigned>(option_args[id].size());
  auto* list = static_cast<an_argument_t*>(safecalloc(count ? count : 1, sizeof(an_argument_t)));
  for (unsigned i = 0; i < count; ++i) {
    if (kind(id) == kind_string_list) {
      list[i].type = argument_text;
      list[i].value.text = getstrarg(id, i);
    } else {
      list[i].type = argument_signed;
      list[i].value.num = getnumarg(id, i);
    }
  }
  arg->type = argument_list;
  arg->value.list = list;
  arg->count = count;
}

int option_engine::args_match_list(int id, const char* const* list) const {
  if (!list) return 0;
  int count = getargcount(id);
  for (int i = 0; i < count; ++i) {
    const char* text = getstrarg(id, i);
    if (!text) continue;
    for (const char* const* entry = list; *entry; ++entry)
      if (std::strcmp(text, *entry) == 0) return 1;
  }
  return 0;
}

// ------------------------------------------------------------------ setting

void option_engine::setopt_internal(int id) {
  ++option_state[id];
  ++option_seen[id];
  trace("Set    option id %s to state %d\n", rot13(table_->enum_to_enumtxt[id]), option_state[id]);
  if (!merging) do_conflicts(id);
}

void option_engine::setopt(int id) {
  if (!valid(id)) return;
  setopt_internal(id);
  add_to_history(id);
}

void option_engine::setopt(int id, long value) {
  if (!valid(id)) return;
  setopt_internal(id);
  setarg(id, value);
  add_to_history(id);
}

void option_engine::setopt(int id, const char* value) {
  if (!valid(id)) return;
  setopt_internal(id);
  setarg(id, value);
  add_to_history(id);
}

void option_engine::setclassmembers(int cls) {
  if (cls <= 0 || static_cast<unsigned>(cls) >= table_->k) return;
  for (unsigned id = 0; id < table_->n; ++id) {
    if (!table_->classes[id * table_->k + cls]) continue;
    setopt_internal(id);
    add_to_history(id);
  }
}

void option_engine::apply(int id, const char* word) {
  if (!valid(id)) return;
  if (word && (kind(id) == kind_oneof || kind(id) == kind_oneof_list)) {
    long value = 0;
    if (!parse_oneof(id, word, row(id).arg_text, parse_optional_oneof, &value)) return;
    setopt_internal(id);
    setarg(id, value);
  } else {
    setopt_internal(id);
    if (word) setarg(id, word);
  }
  add_to_history(id);
}

void option_engine::trace_arg(int id) const {
  if (!debug) return;
  const std::vector<option_arg>& args = option_args[id];
  const option_arg& last = args.back();
  const char* name = rot13(table_->enum_to_enumtxt[id]);
  int count = static_cast<int>(args.size());
  if (kind(id) == kind_string || kind(id) == kind_string_list)
    trace("Set    option id %s arg to value '%s' (%d args)", name, last.text.c_str(), count);
  else
    trace("Set    option id %s arg to value '%ld' (%d args)", name, static_cast<long>(last.value),
          count);
  if (kind(id) == kind_oneof || kind(id) == kind_oneof_list) {
    const char* word = item_word(id, last.value);
    std::printf(" (%s)", word ? word : "");
  }
  std::printf("\n");
}

void option_engine::setarg(int id, long value) {
  if (!valid(id)) return;
  ensure_seen(id);
  option_arg arg;
  switch (kind(id)) {
    case kind_string:
    case kind_string_list:
      arg.text = std::to_string(value);
      break;
    case kind_number:
    case kind_hexnum:
    case kind_oneof:
    case kind_number_list:
    case kind_oneof_list:
      arg.value = value;
      break;
    default:
      DIAG::optgen_unhandled_clause_in_setarg(__FILE__, __LINE__, __LINE__).report();
      return;
  }
  store_arg(id, std::move(arg));
}

void option_engine::setarg(int id, const char* value) {
  if (!valid(id) || !value) return;
  ensure_seen(id);
  option_arg arg;
  switch (kind(id)) {
    case kind_string:
    case kind_string_list:
      arg.text = value;
      break;
    case kind_number:
    case kind_number_list:
      arg.value = strtol_by_radix(value, nullptr);
      break;
    case kind_hexnum:
      arg.value = static_cast<int64_t>(strtoul_by_radix(value, nullptr));
      break;
    case kind_oneof:
    case kind_oneof_list: {
      long found = 0;
      if (parse_oneof(id, value, row(id).arg_text, parse_optional_oneof, &found))
        arg.value = found;
      else
        arg.value = strtol_by_radix(value, nullptr);
      break;
    }
    default:
      DIAG::optgen_unhandled_clause_in_setarg(__FILE__, __LINE__, __LINE__).report();
      return;
  }
  store_arg(id, std::move(arg));
}

// The setarg forms first set an option that has not been seen yet.
void option_engine::ensure_seen(int id) {
  if (option_seen[id] != 0) return;
  setopt_internal(id);
  add_to_history(id);
}

// A list option gains one more argument; a single-valued one has its one
// argument replaced.
void option_engine::store_arg(int id, option_arg arg) {
  if (is_list_kind(id))
    option_args[id].push_back(std::move(arg));
  else
    option_args[id].assign(1, std::move(arg));
  trace_arg(id);
}

void option_engine::register_option_form(int id, unsigned char form) {
  option_form[id] = form;
}

void option_engine::parsed_option(int id) {
  ++option_parsed[id];
  trace("Parsed option id %s/%d\n", rot13(table_->enum_to_enumtxt[id]), option_parsed[id]);
}

void option_engine::release_args(int id) {
  option_args[id].clear();
}

void option_engine::clearopt(int id) {
  if (!valid(id) || row(id).persistent) return;
  option_state[id] = 0;
  ++option_seen[id];
  trace("Clear  option id %s to state 0\n", rot13(table_->enum_to_enumtxt[id]));
  release_args(id);
  clear_history(id);
}

void option_engine::clearclassmembers(int cls) {
  if (cls <= 0 || static_cast<unsigned>(cls) >= table_->k) return;
  for (unsigned id = 0; id < table_->n; ++id)
    if (table_->classes[id * table_->k + cls]) clearopt(id);
}

// ------------------------------------------------------------------ history

// Only the part of the history from the option's earliest entry on is
// searched and moved, so a single-valued option set again and again costs
// what was noted since it was last set, however long the history.
void option_engine::clear_history(int id) {
  auto first = history.end();
  for (unsigned found = 0; found < history_count_[id];)
    if ((--first)->first == id) ++found;
  history.erase(
      std::remove_if(first, history.end(), [id](const auto& entry) { return entry.first == id; }),
      history.end());
  history_count_[id] = 0;
}

void option_engine::note_in_history(int id, hist_argument arg) {
  history.emplace_back(id, std::move(arg));
  if (valid(id)) ++history_count_[id];
}

void option_engine::add_to_history(int id) {
  if (kind(id) > kind_oneof_list) {
    DIAG::optgen_unhandled_clause_in_add_hist(__FILE__, __LINE__, __LINE__).report();
    return;
  }
  if (!is_list_kind(id)) clear_history(id);
  unsigned last = static_cast<unsigned>(option_args[id].size()) - 1;
  const char* text = getstrarg(id, last);
  hist_argument arg{getnumarg(id, last), text ? text : ""};
  trace("Add option id %s to history with arg %s\n", rot13(table_->enum_to_enumtxt[id]),
        arg.text.c_str());
  note_in_history(id, std::move(arg));
}

void option_engine::record_input_command_line(int argc, char** argv) {
  if (argc <= 0) return;
  command_line.clear();
  for (int i = 0; i < argc; ++i) {
    if (i) command_line += ' ';
    command_line += argv[i] ? argv[i] : "";
  }
}

const std::map<std::string, option_engine::tool_name>& option_engine::tool_cmd_map() {
  static const std::map<std::string, tool_name> map = {
      {"abszorv", tn_abszorv},
      {"aczorv", tn_aczorv},
      {"aczcop", tn_aczcop},
      {"aciazorv", tn_aciazorv},
      {"aciazcop", tn_aciazcop},
      {"advzorv", tn_advzorv},
      {"arzorv", tn_arzorv},
      {"asmzorv", tn_asmzorv},
      {"cbezorv", tn_cbezorv},
      {"cbeiazorv", tn_cbeiazorv},
      {"cgzorv", tn_cgzorv},
      {"cgzcop", tn_cgzcop},
      {"demzorv", tn_demzorv},
      {"diszorv", tn_diszorv},
      {"lnkzorv", tn_lnkzorv},
      {"embedzorv", tn_embedzorv},
      {"embedded_options", tn_embedded_options},
      {"hexzorv", tn_hexzorv},
      {"ilkzorv", tn_ilkzorv},
      {"clistzorv", tn_clistzorv},
      {"mkzorv", tn_mkzorv},
      {"nmzorv", tn_nmzorv},
      {"ocszorv", tn_ocszorv},
      {"ofdzorv", tn_ofdzorv},
      {"optzorv", tn_optzorv},
      {"optzcop", tn_optzcop},
      {"pddzorv", tn_pddzorv},
      {"pprofzorv", tn_pprofzorv},
      {"clzorv", tn_clzorv},
      {"stripzorv", tn_stripzorv},
      {"xrefzorv", tn_xrefzorv},
  };
  return map;
}

// Every tool but embedded_options, in tool order, onto consecutive file options.
std::map<option_engine::tool_name, int> option_engine::tn_fileopt_map() const {
  std::map<tool_name, int> map;
  int fileopt = table_->first_fileopt;
  for (int tool = tn_abszorv; tool <= tn_xrefzorv; ++tool)
    if (tool != tn_embedded_options) map[static_cast<tool_name>(tool)] = fileopt++;
  return map;
}

void option_engine::addfileopt(const std::string& file, const std::string& tool) {
  if (file.empty() || tool.empty()) return;
  tool_name name = tn_abszorv;
  auto by_cmd = tool_cmd_map().find(tool);
  if (by_cmd == tool_cmd_map().end())
    DIAG::optgen_missing_fileopt(__FILE__, __LINE__, tool.c_str()).report();
  else
    name = by_cmd->second;
  int id = 0;
  std::map<tool_name, int> fileopts = tn_fileopt_map();
  auto by_tool = fileopts.find(name);
  if (by_tool == fileopts.end())
    DIAG::optgen_missing_fileopt(__FILE__, __LINE__, tool.c_str()).report();
  else
    id = by_tool->second;
  trace("Add file '%s' to %s's history\n", file.c_str(), tool.c_str());
  note_in_history(id, hist_argument{-1, file});
}
