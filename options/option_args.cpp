// Finding and checking option arguments: where an argument stands, number
// ranges, one-of words, and the radix rules of numbers.
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "DIAG/messages.h"
#include "UTIL/process_end.h"
#include "UTIL/strcase.h"
#include "options/option_engine.h"

namespace {

bool is_optional(int type) {
  return type >= parse_optional_offset;
}

int base_type(int type) {
  return is_optional(type) ? type - parse_optional_offset : type;
}

bool is_numeric(int type) {
  int base = base_type(type);
  return base == parse_number || base == parse_number1 || base == parse_unsigned ||
         base == parse_bounded_number || base == parse_number8;
}

bool empty(const char* text) {
  return !text || !*text;
}

constexpr uint64_t signed_unbounded = 0x7fffffffffffffffULL;
constexpr uint64_t unsigned_unbounded = 0xffffffffffffffffULL;

}  // namespace

void option_engine::end_run() {
  end_process(1);
}

static void report_missing(const option_engine& options, int id, const char* name) {
  std::string option = options.format_of_option(id);
  std::string arg = option_engine::rot13(name);
  DIAG::optgen_missing_parameter(__FILE__, __LINE__, option.c_str(), arg.c_str()).report();
  option_engine::end_run();
}

const char* option_engine::parse_arg(int id, const char* rest, const char* name, int type,
                                     const arg_range& range) {
  if (is_optional(type)) {
    if (empty(rest)) return nullptr;
    if (std::strcmp(rest, "=") == 0) report_missing(*this, id, name);
    if (*rest == '=') ++rest;
    if (is_numeric(type)) check_numerical_arg(type, id, name, rest, range);
    return rest;
  }
  if (empty(rest))
    rest = (*table_->family->next_arg)();
  else if (*rest == '=')
    ++rest;
  if (is_numeric(type)) {
    check_numerical_arg(type, id, name, rest, range);
    return rest;
  }
  if (empty(rest)) report_missing(*this, id, name);
  return rest;
}

void option_engine::check_numerical_arg(int type, int id, const char* name, const char* arg,
                                        const arg_range& range) {
  if (empty(arg)) report_missing(*this, id, name);
  uint64_t low = range.lowest.value.unum;
  bool is_unsigned = base_type(type) == parse_unsigned;
  uint64_t unbounded = is_unsigned ? unsigned_unbounded : signed_unbounded;
  uint64_t high = range.highest.value.unum;
  int bad = 0;
  bool has_minus = std::strchr(arg, '-') != nullptr;
  bool good;
  errno = 0;
  if (is_unsigned) {
    uint64_t value = strtoul_by_radix(arg, &bad);
    good = !has_minus && !bad && errno != ERANGE && low <= value && value <= high;
  } else {
    int64_t value = strtol_by_radix(arg, &bad);
    good = !bad && errno != ERANGE && static_cast<int64_t>(low) <= value &&
           value <= static_cast<int64_t>(high);
  }
  if (good) return;
  std::string option = format_of_option(id);
  std::string arg_name = rot13(name);
  if (low == 0 && high == unbounded) {
    if (has_minus)
      DIAG::optgen_arg_out_of_range_non_neg(__FILE__, __LINE__, option.c_str(), arg_name.c_str())
          .report();
    else
      DIAG::optgen_arg_out_of_range(__FILE__, __LINE__, option.c_str(), arg_name.c_str()).report();
  } else {
    DIAG::optgen_arg_out_of_range2(__FILE__, __LINE__, option.c_str(), arg_name.c_str(),
                                   static_cast<unsigned>(low), static_cast<unsigned>(high))
        .report();
  }
  end_run();
}

// A trailing "h"/"H" makes a number hexadecimal, a trailing "q"/"Q" octal
// (when all its digits are octal); the suffix is cut off in place.
int option_engine::get_radix(char* text) {
  int radix = 10;
  if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
    radix = 16;
  else if (text[0] == '0' && text[1] >= '0' && text[1] <= '7')
    radix = 8;
  bool all_octal = true;
  char* stop = text;
  for (; std::isxdigit(static_cast<unsigned char>(*stop)); ++stop)
    if (*stop < '0' || *stop > '7') all_octal = false;
  if (*stop == 'h' || *stop == 'H') {
    *stop = '\0';
    return 16;
  }
  if ((*stop == 'q' || *stop == 'Q') && all_octal) {
    *stop = '\0';
    return 8;
  }
  return radix;
}

long option_engine::strtol_by_radix(const char* text, int* bad) {
  std::string copy = text ? text : "";
  int radix = get_radix(copy.data());
  const char* start = copy.c_str();
  char* end = nullptr;
  long value = std::strtol(start, &end, radix);
  if (bad && (end == start || *end != '\0')) *bad = 1;
  return value;
}

unsigned long option_engine::strtoul_by_radix(const char* text, int* bad) {
  std::string copy = text ? text : "";
  int radix = get_radix(copy.data());
  const char* start = copy.c_str();
  char* end = nullptr;
  unsigned long value = std::strtoul(start, &end, radix);
  if (bad && (end == start || *end != '\0')) *bad = 1;
  return value;
}

bool option_engine::parse_oneof(int id, const char* rest, const char* name, int type, long* value) {
  if (is_optional(type)) {
    if (empty(rest)) return false;
    if (std::strcmp(rest, "=") == 0) report_missing(*this, id, name);
    if (*rest == '=') ++rest;
  } else if (empty(rest)) {
    rest = (*table_->family->next_arg)();
    if (empty(rest)) report_missing(*this, id, name);
  } else {
    if (*rest == '=') ++rest;
    if (empty(rest)) report_missing(*this, id, name);
  }
  const option_item* items = row(id).item_list;
  for (const option_item* item = items; item && item->text; ++item) {
    if (strcaseicmp(rest, item->text + 1) != 0) continue;
    *value = item->value;
    if (item->text[0] == '*')
      std::fprintf(stderr,
                   "WARNING: argument '%s' to option '%s' is deprecated and will be removed in "
                   "a future release\n",
                   item->text + 1, internal_option_string(id));
    return true;
  }
  std::string offered;
  for (const option_item* item = items; item && item->text; ++item) {
    if (item->text[0] != '+') continue;
    if (!offered.empty()) offered += ',';
    offered += item->text + 1;
  }
  std::string option = format_of_option(id);
  DIAG::optgen_bad_argument(__FILE__, __LINE__, option.c_str(), offered.c_str()).report();
  end_run();
}
