// Builds the constant table of one option family from its generated file.
// Included once, by the family's source file, which defines beforehand:
//   OO_TABLE_INC        the generated file, a string ("options/<family>.inc")
//   OO_FAMILY           the family's class
//   OO_OPEN_CMD_FILE    address of the family's open_cmd_file hook, or nullptr
//   OO_PRINT_USAGE      address of the family's print_usage hook, or nullptr
// and the named handlers (action_<name>) of its own that its table refers to;
// the shared ones are in option_actions.h. Each #include below compiles the
// one section of the generated file whose macro is defined just before it.
#if !defined(OO_TABLE_INC) || !defined(OO_FAMILY) || !defined(OO_OPEN_CMD_FILE) || \
    !defined(OO_PRINT_USAGE)
#error "define OO_TABLE_INC, OO_FAMILY, OO_OPEN_CMD_FILE and OO_PRINT_USAGE first"
#endif
#include "options/option_actions.h"
#include "options/option_table.h"

namespace {

const char* no_next_arg() {
  return nullptr;
}

constexpr option_action action_none = nullptr;

#define TABLE_FACTS(n, k, h, alt_slots, first_fileopt, last_fileopt, fold_case, prefix, items) \
  struct table_facts {                                                                         \
    static constexpr unsigned option_count = n;                                                \
    static constexpr unsigned class_columns = k;                                               \
    static constexpr unsigned help_classes = h;                                                \
    static constexpr unsigned alt_form_slots = alt_slots;                                      \
    static constexpr int first_file_option = first_fileopt;                                    \
    static constexpr int last_file_option = last_fileopt;                                      \
    static constexpr bool folds_case = fold_case;                                              \
    static constexpr const char* debug_prefix = prefix;                                        \
    static constexpr unsigned item_count = items;                                              \
  };
#include OO_TABLE_INC

#define ALT_FORMS(name, ...) const char* const alt_##name[] = {__VA_ARGS__ __VA_OPT__(, ) nullptr};
#include OO_TABLE_INC

#define OO_ITEM(text, value) \
  { text, value }
#define ITEM_LIST(name, ...) const option_item OO_##name##_ITEMLIST[] = {__VA_ARGS__, {nullptr, 0}};
#include OO_TABLE_INC
#undef OO_ITEM

const option_row option_definitions[] = {
#define OPTION_ROW(name, long_form, short_form, basic_order, arg_text, arg_optional, help,     \
                   long_help, internal, hidden, persistent, help_class, item_list, sort_order) \
  {long_form, alt_##name, short_form, basic_order, arg_text,   arg_optional, help,             \
   long_help, internal,   hidden,     persistent,  help_class, item_list,    sort_order},
#include OO_TABLE_INC
    // closing row: walks over the rows stop at its help class
    {"", nullptr, nullptr, 0, "", false, "", "", false, false, false,
     static_cast<int>(table_facts::help_classes), nullptr, 0},
};

const char* const enum_to_optiontxt[] = {
#define OPTION_TXT(text) text,
#include OO_TABLE_INC
    nullptr};

const char* const enum_to_enumtxt[] = {
#define ENUM_TXT(text) text,
#include OO_TABLE_INC
    nullptr};

const uint8_t parm_types[] = {
#define PARM_TYPE(kind) kind,
#include OO_TABLE_INC
};

const uint8_t classes[] = {
#define CLASS_ROW(...) __VA_ARGS__,
#include OO_TABLE_INC
};

const uint8_t conflicts[] = {
#define CONFLICT_ROW(...) __VA_ARGS__,
#include OO_TABLE_INC
};

const char* const class_descriptions[] = {
#define HELP_CLASS(name, title) title,
#include OO_TABLE_INC
    nullptr};

const scan_row scan_rows[] = {
#define SCAN_ROW(text, name, form, handler, parse_type, arg_name, low, high, default_word, \
                 case_warning, continuation, action, takes_rest)                           \
  {text,                                                                                   \
   OO_FAMILY::name,                                                                        \
   form,                                                                                   \
   static_cast<scan_handler>(handler),                                                     \
   parse_type,                                                                             \
   arg_name,                                                                               \
   low,                                                                                    \
   high,                                                                                   \
   default_word,                                                                           \
   case_warning,                                                                           \
   static_cast<scan_continuation>(continuation),                                           \
   action_##action,                                                                        \
   takes_rest},
#include OO_TABLE_INC
};

// Each of the following lists ends in an unused entry, so none is empty.
const option_default defaults[] = {
#define OPTION_DEFAULT(name, word) {OO_FAMILY::name, word},
#include OO_TABLE_INC
    {-1, nullptr}};

const also_set also_sets[] = {
#define ALSO_SETS(name, target, word, when, by_number, increment) \
  {OO_FAMILY::name, OO_FAMILY::target, word, when, by_number, increment},
#include OO_TABLE_INC
    {-1, -1, nullptr, nullptr, nullptr, false}};

const deprecation deprecations[] = {
#define DEPRECATION(name, severity, text) {OO_FAMILY::name, severity, text},
#include OO_TABLE_INC
    {-1, 0, nullptr}};

// Merging: policies, override groups, the pairs of custom policies.
#define MERGE_FACTS(policies, override_rows, passto)              \
  struct merge_facts {                                            \
    static constexpr unsigned policy_count = policies;            \
    static constexpr unsigned override_row_count = override_rows; \
    static constexpr unsigned passto_count = passto;              \
  };
#include OO_TABLE_INC

constexpr merge_policy_fn merge_fn_unset = nullptr;
constexpr merge_policy_fn merge_fn_none = &option_engine::merge_policy_none;
constexpr merge_policy_fn merge_fn_main = &option_engine::merge_policy_main;
constexpr merge_policy_fn merge_fn_exact = &option_engine::merge_policy_exact;
constexpr merge_policy_fn merge_fn_exact_notset = &option_engine::merge_policy_exact_notset;
constexpr merge_policy_fn merge_fn_or = &option_engine::merge_policy_or;
constexpr merge_policy_fn merge_fn_and = &option_engine::merge_policy_and;
constexpr merge_policy_fn merge_fn_max = &option_engine::merge_policy_max;
constexpr merge_policy_fn merge_fn_min = &option_engine::merge_policy_min;
constexpr merge_policy_fn merge_fn_custom = &option_engine::merge_policy_custom;

#define OO_MEMBER(name) OO_FAMILY::name
#define MERGE_GROUP(group, ...)                                         \
  constexpr int members_##group[] = {__VA_ARGS__, -1};                  \
  constexpr merge_group group_data_##group = {#group, members_##group}; \
  constexpr const merge_group* group_##group = &group_data_##group;
#include OO_TABLE_INC
#undef OO_MEMBER
constexpr const merge_group* group_none = nullptr;

#define OO_PAIR(first, second, merged) \
  { first, second, merged }
#define MERGE_PAIRS(name, ...) constexpr merge_pair OO_##name##_PAIRS[] = {__VA_ARGS__, {0, 0, 0}};
#include OO_TABLE_INC
#undef OO_PAIR

constexpr merge_policy_row merge_policies[] = {
#define MERGE_ROW(name, policy, pairs, group) {merge_fn_##policy, pairs},
#include OO_TABLE_INC
};

constexpr const merge_group* mutex_merge_override_functions[] = {
#define MERGE_ROW(name, policy, pairs, group) group_##group,
#include OO_TABLE_INC
};

const uint8_t merge_conflicts[] = {
#define MERGE_CONFLICT_ROW(...) __VA_ARGS__,
#include OO_TABLE_INC
};

// Hand-on targets per option, then the list of options that have them.
#define OO_HAND(tool, text) \
  { option_engine::tn_##tool, text }
#define PASSTO_ROW(name, ...) \
  constexpr hand_on passto_##name[] = {__VA_ARGS__ __VA_OPT__(, ){-1, nullptr}};
#include OO_TABLE_INC
#undef OO_HAND

const passto_entry passto_fn_table[] = {
#define PASSTO_ROW(name, ...) {OO_FAMILY::name, passto_##name},
#include OO_TABLE_INC
    {-1, nullptr}};

template <class T, size_t N>
constexpr unsigned count_of(const T (&)[N]) {
  return static_cast<unsigned>(N);
}

family_statics statics = {&OO_FAMILY::executable_name, &OO_FAMILY::next_arg, OO_OPEN_CMD_FILE,
                          OO_PRINT_USAGE, nullptr};

static_assert(table_facts::option_count == OO_FAMILY::OPTION_COUNT);
static_assert(table_facts::help_classes == OO_FAMILY::HELP_CLASS_COUNT);
static_assert(count_of(option_definitions) == table_facts::option_count + 1);
static_assert(count_of(parm_types) == table_facts::option_count);
static_assert(count_of(classes) == table_facts::option_count * table_facts::class_columns);
static_assert(count_of(conflicts) == table_facts::option_count * table_facts::option_count);
static_assert(count_of(merge_policies) == table_facts::option_count);
static_assert(count_of(mutex_merge_override_functions) == table_facts::option_count);
static_assert(count_of(merge_conflicts) == table_facts::option_count * table_facts::option_count);
static_assert(count_of(passto_fn_table) - 1 == merge_facts::passto_count);

}  // namespace

const char* OO_FAMILY::executable_name = "<toolname>";
const char* (*OO_FAMILY::next_arg)() = no_next_arg;

const option_table OO_FAMILY::table_data = {
    table_facts::option_count,
    table_facts::class_columns,
    table_facts::help_classes,
    table_facts::alt_form_slots,
    table_facts::first_file_option,
    table_facts::last_file_option,
    table_facts::folds_case,
    table_facts::debug_prefix,
    option_definitions,
    enum_to_optiontxt,
    enum_to_enumtxt,
    parm_types,
    classes,
    conflicts,
    class_descriptions,
    scan_rows,
    count_of(scan_rows),
    defaults,
    count_of(defaults) - 1,
    also_sets,
    count_of(also_sets) - 1,
    deprecations,
    count_of(deprecations) - 1,
    merge_policies,
    mutex_merge_override_functions,
    merge_conflicts,
    passto_fn_table,
    merge_facts::passto_count,
    &statics,
};
