// Builds the constant table of one option family from its generated parts.
// Included once, by the family's source file, which defines beforehand:
//   OO_TABLE_INC(part)  the generated file of a part
//   OO_FAMILY           the family's class
//   OO_OPEN_CMD_FILE    address of the family's open_cmd_file hook, or nullptr
//   OO_PRINT_USAGE      address of the family's print_usage hook, or nullptr
// and the named handlers (action_<name>) of its own that its table refers to;
// the shared ones are in option_actions.h.
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
#include OO_TABLE_INC(facts)
#undef TABLE_FACTS

#define ALT_FORMS(name, ...) const char* const alt_##name[] = {__VA_ARGS__ __VA_OPT__(, ) nullptr};
#include OO_TABLE_INC(alt_forms)
#undef ALT_FORMS

#define OO_ITEM(text, value) \
  { text, value }
#define ITEM_LIST(name, ...) const option_item OO_##name##_ITEMLIST[] = {__VA_ARGS__, {nullptr, 0}};
#include OO_TABLE_INC(item_lists)
#undef ITEM_LIST
#undef OO_ITEM

const option_row option_definitions[] = {
#define OPTION_ROW(name, long_form, short_form, basic_order, arg_text, arg_optional, help,     \
                   long_help, internal, hidden, persistent, help_class, item_list, sort_order) \
  {long_form, alt_##name, short_form, basic_order, arg_text,   arg_optional, help,             \
   long_help, internal,   hidden,     persistent,  help_class, item_list,    sort_order},
#include OO_TABLE_INC(definitions)
#undef OPTION_ROW
    // closing row: walks over the rows stop at its help class
    {"", nullptr, nullptr, 0, "", false, "", "", false, false, false,
     static_cast<int>(table_facts::help_classes), nullptr, 0},
};

const char* const enum_to_optiontxt[] = {
#define OPTION_TXT(text) text,
#include OO_TABLE_INC(optiontxt)
#undef OPTION_TXT
    nullptr};

const char* const enum_to_enumtxt[] = {
#define ENUM_TXT(text) text,
#include OO_TABLE_INC(enumtxt)
#undef ENUM_TXT
    nullptr};

const uint8_t parm_types[] = {
#define PARM_TYPE(kind) kind,
#include OO_TABLE_INC(parm_type)
#undef PARM_TYPE
};

const uint8_t classes[] = {
#define CLASS_ROW(...) __VA_ARGS__,
#include OO_TABLE_INC(classes)
#undef CLASS_ROW
};

const uint8_t conflicts[] = {
#define CONFLICT_ROW(...) __VA_ARGS__,
#include OO_TABLE_INC(conflicts)
#undef CONFLICT_ROW
};

const char* const class_descriptions[] = {
#define HELP_CLASS(name, title) title,
#include OO_TABLE_INC(help_classes)
#undef HELP_CLASS
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
#include OO_TABLE_INC(scan)
#undef SCAN_ROW
};

// Each of the following lists ends in an unused entry, so none is empty.
const option_default defaults[] = {
#define OPTION_DEFAULT(name, word) {OO_FAMILY::name, word},
#include OO_TABLE_INC(defaults)
#undef OPTION_DEFAULT
    {-1, nullptr}};

const also_set also_sets[] = {
#define ALSO_SETS(name, target, word, when, by_number, increment) \
  {OO_FAMILY::name, OO_FAMILY::target, word, when, by_number, increment},
#include OO_TABLE_INC(also_sets)
#undef ALSO_SETS
    {-1, -1, nullptr, nullptr, nullptr, false}};

const deprecation deprecations[] = {
#define DEPRECATION(name, severity, text) {OO_FAMILY::name, severity, text},
#include OO_TABLE_INC(deprecations)
#undef DEPRECATION
    {-1, 0, nullptr}};

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
static_assert(table_facts::last_file_option == table_facts::first_file_option + 29);

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
    &statics,
};
