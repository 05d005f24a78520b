#pragma once
// The constant data of one option table, as the generator lays it out, and
// the records the engine shares with its callers.
#include <cstdint>
#include <string>

class option_engine;

// What an an_argument_t holds.
enum argument_type : uint32_t {
  argument_signed = 0,
  argument_unsigned = 1,
  argument_text = 2,
  argument_list = 3,
  argument_missing = 4,
};

// One argument as handed out by get_argument.
struct an_argument_t {
  uint32_t type;  // an argument_type
  union {
    int64_t num;
    uint64_t unum;
    const char* text;
    an_argument_t* list;
  } value;
  uint32_t count;
};

// Equal: same type and value, texts compared exactly, lists element by
// element. In the order a missing argument is below all others;
// numbers compare by their signedness, texts bytewise; different types
// and lists have no order.
bool operator==(const an_argument_t& a, const an_argument_t& b);
bool operator>(const an_argument_t& a, const an_argument_t& b);
bool operator<(const an_argument_t& a, const an_argument_t& b);

struct arg_range {
  an_argument_t lowest;
  an_argument_t highest;
};

struct hist_argument {
  int64_t number;
  std::string text;
};

struct optlist {
  int id;
  std::string text;
};

// A one-of item: the first character of text is its mark ('+' listed,
// '*' deprecated, '-' accepted but not listed). A null text closes a list.
struct option_item {
  const char* text;
  long value;
};

struct option_row {
  const char* long_form;         // scrambled
  const char* const* alt_forms;  // scrambled, null-closed
  const char* short_form;        // scrambled or null
  uint32_t basic_order;
  const char* arg_text;  // scrambled, maybe empty
  bool arg_optional;
  const char* help_text;       // scrambled
  const char* long_help_text;  // scrambled, maybe empty
  bool internal;
  bool hidden;
  bool persistent;
  int help_class;
  const option_item* item_list;
  uint32_t sort_order;
};

enum parm_kind : uint8_t {
  kind_none = 0,
  kind_string = 1,
  kind_number = 2,
  kind_hexnum = 3,
  kind_oneof = 4,
  kind_string_list = 5,
  kind_number_list = 6,
  kind_oneof_list = 7,
};

// How a handler wants its argument: 0..8 required, 9..17 the same optional.
enum parse_option_type : int {
  parse_number = 0,
  parse_number1 = 1,
  parse_unsigned = 2,
  parse_text = 3,
  parse_text_list = 4,
  parse_bounded_number = 5,
  parse_oneof_type = 6,
  parse_oneof_list = 7,
  parse_number8 = 8,
  parse_optional_offset = 9,
  parse_optional_unsigned = 11,
  parse_optional_oneof = 15,
  parse_optional_oneof_list = 16,
  parse_last = 17,
};

enum export_option_list_type : int {
  export_all = 0,
  export_seen_or_set = 1,
  export_set = 2,
};

enum scan_handler : uint8_t { handler_none, handler_arg, handler_oneof, handler_help };

// What follows a spelling of an option without argument in the same token.
enum scan_continuation : uint8_t {
  continue_end,      // nothing may follow
  continue_cluster,  // the rest is scanned as a new short option
  continue_family,   // the rest is a further member of the spelling's family
};

// A named handler, run after the option has been stored. rest is what
// followed the spelling in the token.
using option_action = void (*)(option_engine& options, int id, const char* rest);

// One spelling as the scanner knows it.
struct scan_row {
  const char* text;  // the token less its first dash, plain
  int id;
  uint8_t form;  // value for option_form
  scan_handler handler;
  int parse_type;
  const char* arg_name;      // scrambled
  uint64_t low, high;        // range of a numeric argument (bit patterns)
  const char* default_word;  // taken when an optional argument is left out
  bool case_warning;
  scan_continuation continuation;
  option_action action;
  bool action_takes_rest;
};

struct option_default {
  int id;
  const char* word;
};

// Options that an option sets as well, applied after it.
struct also_set {
  int id;
  int target;
  const char* word;       // argument to give the target, or null
  const char* when;       // only when the option's own word is this one
  const char* by_number;  // comma-separated words picked by the option's number
  bool increment;         // the target's number grows by 1 (0 before the first)
};

// The severities of deprecation notices, numbered as the message catalogue
// numbers its severities.
enum deprecation_severity : int {
  deprecated_remark = 4,
  deprecated_warning = 5,
  deprecated_error = 6,
};

// What setting an option does to a conflicting option set before it: the
// cells of the conflict matrix (and 3 in the merge conflict matrix).
enum conflict_value : uint8_t {
  conflict_none = 0,
  conflict_quiet = 1,     // cleared without a word
  conflict_override = 2,  // cleared with a warning
  conflict_fatal = 3,     // an error that ends the run
};

struct deprecation {
  int id;
  int severity;  // a deprecation_severity
  const char* text;
};

// A policy of merge_options: combines option id of other into the receiver.
using merge_policy_fn = void (option_engine::*)(int id, const option_engine& other);

// For merge_policy_custom: two one-of values (in either order) that merge
// into merged. A list closes with merged == 0.
struct merge_pair {
  long first;
  long second;
  long merged;
};

struct merge_policy_row {
  merge_policy_fn policy;   // null: the option has no policy
  const merge_pair* pairs;  // the callable's data for merge_policy_custom
};

// Options of which at most one should stand: merging resolves them as one.
struct merge_group {
  const char* name;
  const int* members;  // option ids, closed by -1
};

// One text under which an option is handed on to a tool (scrambled).
// A list closes with tool == -1.
struct hand_on {
  int tool;
  const char* text;
};

// An option that is handed on, and the tools and texts it goes to.
struct passto_entry {
  int id;
  const hand_on* targets;
};

// Class-wide state of one family of option objects.
struct family_statics {
  const char** executable_name;
  const char* (**next_arg)();
  void (**open_cmd_file)(const char* path);
  void (**print_usage)(const char* program);  // null: help exits with 0
  const char* failure_pos;                    // where the last scan failed
};

struct option_table {
  unsigned n;  // options
  unsigned k;  // class columns
  unsigned h;  // help classes
  unsigned alt_slots;
  int first_fileopt;
  int last_fileopt;
  bool fold_case;
  const char* debug_prefix;
  const option_row* option_definitions;  // n rows and a closing row with help_class == h
  const char* const* enum_to_optiontxt;  // canonical texts, scrambled
  const char* const* enum_to_enumtxt;    // upper-case internal names, scrambled
  const uint8_t* parm_type;
  const uint8_t* classes;                 // n rows of k bytes
  const uint8_t* conflicts;               // n rows of n bytes
  const char* const* class_descriptions;  // h titles, null-closed
  const scan_row* scan;
  unsigned scan_count;
  const option_default* defaults;
  unsigned default_count;
  const also_set* also_sets;
  unsigned also_set_count;
  const deprecation* deprecations;
  unsigned deprecation_count;
  const merge_policy_row* merge_policies;  // n rows
  // n entries: the group whose override merges the option, or null
  const merge_group* const* mutex_merge_override_functions;
  const uint8_t* merge_conflicts;       // n rows of n bytes: 0, or 3 for a conflict
  const passto_entry* passto_fn_table;  // in id order
  unsigned passto_count;
  family_statics* family;
};
