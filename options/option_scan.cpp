// The option scanner: finds the spelling a token starts with, has its
// argument parsed, stores the option and runs what the option does.
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "DIAG/messages.h"
#include "UTIL/process_end.h"
#include "UTIL/strcase.h"
#include "options/option_engine.h"

namespace {

// Thrown where a token spells no option; process_option catches it, so
// nothing of the failing handler's later steps runs.
struct scan_failed {};

char fold(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

}  // namespace

void option_engine::scan_failure(const char* pos) {
  table_->family->failure_pos = pos;
  throw scan_failed{};
}

int option_engine::process_option(const char* text, const char** error_pos) {
  family_statics& family = *table_->family;
  // The try block is the recovery point; nested calls from handlers nest it.
  try {
    const char* pos = text;
    char implied = '\0';
    while (pos && *pos) {
      const char* saved = current_option;
      current_option = pos;
      family.failure_pos = pos;
      const char* end = nullptr;
      int index = walk(implied, pos, &end);
      // A first character that starts no spelling fails one character back.
      if (index < 0) scan_failure(!implied && end == pos ? pos - 1 : end);
      const scan_row& spelling = table_->scan[index];
      if (!takes_what_follows(spelling, end)) scan_failure(end);
      if (spelling.case_warning) deprecated_case(end, spelling.text + (implied ? 1 : 0));
      pos = run_handler(spelling, end, &implied);
      current_option = saved;
    }
  } catch (const scan_failed&) {
    if (error_pos) *error_pos = family.failure_pos;
    return 0;
  }
  return 1;
}

// Walks the scan rows (sorted by their folded text) character by character.
// Where a spelling ends and the next character continues a longer one, the
// longer one is taken and there is no way back. implied is a family letter
// that stands before text, or '\0'. Returns the row index and in *end the
// position behind the spelling, or -1 and in *end where the walk stopped.
int option_engine::walk(char implied, const char* text, const char** end) const {
  const scan_row* rows = table_->scan;
  const size_t skip = implied ? 1 : 0;
  unsigned lo = 0, hi = table_->scan_count;
  for (size_t i = 0;; ++i) {
    const char c = i < skip ? implied : text[i - skip];
    int ended = (lo < hi && rows[lo].text[i] == '\0') ? static_cast<int>(lo) : -1;
    unsigned next_lo = hi, next_hi = hi;
    if (c != '\0') {
      for (unsigned r = lo; r < hi; ++r) {
        char rc = rows[r].text[i];
        bool same = table_->fold_case ? fold(rc) == fold(c) : rc == c;
        if (rc == '\0' || !same) continue;
        if (next_lo == hi) next_lo = r;
        next_hi = r + 1;
      }
    }
    if (next_lo < next_hi) {
      lo = next_lo;
      hi = next_hi;
      continue;
    }
    *end = text + (i > skip ? i - skip : 0);
    return ended;
  }
}

void option_engine::deprecated_case(const char* end, const char* canonical) {
  if (!current_option || !end || !canonical) return;
  size_t length = static_cast<size_t>(end - current_option);
  if (std::strncmp(current_option, canonical, length) == 0) return;
  std::string typed(current_option, length);
  DIAG::optgen_case_insensitivity_deprecated diag(__FILE__, __LINE__, typed.c_str(), canonical);
  report_diagnostic(diag);
}

// Whether a spelling can stand before the rest of its token: an option with
// an argument takes any rest, an option without one only where the scan
// goes on behind it. The long form of help stands alone, its short form
// takes the rest as the topic.
bool option_engine::takes_what_follows(const scan_row& spelling, const char* rest) const {
  if (!*rest || spelling.handler == handler_arg || spelling.handler == handler_oneof) return true;
  if (spelling.handler == handler_help) return spelling.text[0] != '-';
  return spelling.continuation != continue_end || spelling.action_takes_rest;
}

// Runs the handler of a spelling; returns where the scan of the token goes
// on (null when the token is used up) and, for a family, its letter.
const char* option_engine::run_handler(const scan_row& spelling, const char* rest, char* implied) {
  const int id = spelling.id;
  *implied = '\0';
  if (spelling.handler == handler_help) run_help(spelling, rest);

  register_option_form(id, spelling.form);
  switch (spelling.handler) {
    case handler_arg: {
      arg_range range{};
      range.lowest.value.unum = spelling.low;
      range.highest.value.unum = spelling.high;
      const char* arg = parse_arg(id, rest, spelling.arg_name, spelling.parse_type, range);
      if (!arg) arg = spelling.default_word;
      parsed_option(id);
      setopt_internal(id);
      setarg(id, arg);
      add_to_history(id);
      after_store(spelling, rest);
      return nullptr;
    }
    case handler_oneof: {
      parsed_option(id);
      long value = 0;
      bool found = parse_oneof(id, rest, spelling.arg_name, spelling.parse_type, &value);
      if (!found && spelling.default_word)
        found =
            parse_oneof(id, spelling.default_word, spelling.arg_name, spelling.parse_type, &value);
      setopt_internal(id);
      if (found) setarg(id, value);
      add_to_history(id);
      after_store(spelling, rest);
      return nullptr;
    }
    default:
      break;
  }
  parsed_option(id);
  setopt_internal(id);
  add_to_history(id);
  after_store(spelling, rest);
  if (spelling.action_takes_rest || spelling.continuation == continue_end) return nullptr;
  if (spelling.continuation == continue_family) *implied = spelling.text[0];
  return rest;
}

// What an option does beyond being stored: its deprecation notice, the
// options it sets as well, and its named handler.
void option_engine::after_store(const scan_row& spelling, const char* rest) {
  const int id = spelling.id;
  for (unsigned i = 0; i < table_->deprecation_count; ++i) {
    const deprecation& dep = table_->deprecations[i];
    if (dep.id != id) continue;
    if (dep.severity >= deprecated_error) {
      DIAG::optgen_depdiag_error diag(__FILE__, __LINE__, dep.text);
      report_diagnostic(diag);
    } else if (dep.severity == deprecated_warning) {
      DIAG::optgen_depdiag_warning diag(__FILE__, __LINE__, dep.text);
      report_diagnostic(diag);
    } else {
      DIAG::optgen_depdiag_remark diag(__FILE__, __LINE__, dep.text);
      report_diagnostic(diag);
    }
  }
  apply_also_sets(id);
  if (spelling.action) spelling.action(*this, id, rest);
}

// Sets the options that the option sets as well, in the table's order.
void option_engine::apply_also_sets(int id) {
  for (unsigned i = 0; i < table_->also_set_count; ++i) {
    const also_set& also = table_->also_sets[i];
    if (also.id != id) continue;
    if (also.when) {
      const char* word = getstrarg(id, 0);
      if (!word || strcaseicmp(word, also.when) != 0) continue;
    }
    if (also.increment) {
      // A count at its largest stays there.
      const long count = getnumarg(also.target, 0);
      const long next = count == std::numeric_limits<long>::max() ? count : count + 1;
      apply(also.target, std::to_string(next).c_str());
    } else if (also.by_number) {
      long number = getnumarg(id, 0);
      const char* word = also.by_number;
      for (long n = 0; word && n < number; ++n) {
        word = std::strchr(word, ',');
        if (word) ++word;
      }
      if (number < 0 || !word) continue;
      std::string chosen(word, std::strcspn(word, ","));
      apply(also.target, chosen.c_str());
    } else {
      apply(also.target, also.word);
    }
  }
}

// Help is no setting: the form is stored, the topic found, help shown, and
// the run ends.
void option_engine::run_help(const scan_row& spelling, const char* rest) {
  const char* topic = nullptr;
  if (*rest) topic = *rest == '=' ? rest + 1 : rest;
  if (!topic || !*topic) topic = (*table_->family->next_arg)();
  register_option_form(spelling.id, spelling.form);
  display_option_help(topic);
  void (*print_usage)(const char*) =
      table_->family->print_usage ? *table_->family->print_usage : nullptr;
  if (!print_usage) end_process(0);
  print_usage(*table_->family->executable_name);
  end_process(1);
}
