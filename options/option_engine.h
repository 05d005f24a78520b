#pragma once
// The table-driven option engine: the run-time state of one command line
// over a constant option table. option_obj and option_obj_shell are this
// engine bound to their tables.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "options/option_table.h"

class DIAGNOSTIC;
class argv_list;

// An owned copy of a text argument. The characters stay where they are when
// the argument itself moves, so a text handed out by getstrarg survives
// further arguments being added to the same option.
class arg_text {
 public:
  arg_text() = default;
  arg_text(const arg_text& other) { *this = other.c_str(); }
  arg_text(arg_text&&) noexcept = default;
  arg_text& operator=(const arg_text& other) {
    if (this != &other) *this = other.c_str();
    return *this;
  }
  arg_text& operator=(arg_text&&) noexcept = default;
  arg_text& operator=(const std::string& text) {
    chars_ = std::make_unique<char[]>(text.size() + 1);
    text.copy(chars_.get(), text.size());
    return *this;
  }
  const char* c_str() const { return chars_ ? chars_.get() : ""; }

 private:
  std::unique_ptr<char[]> chars_;
};

// One stored argument; texts for kinds 1 and 5, numbers otherwise.
struct option_arg {
  int64_t value = 0;
  arg_text text;
};

class option_engine {
 public:
  // Tools whose files can be noted in the history.
  enum tool_name : int {
    tn_abszorv,
    tn_aczorv,
    tn_aczcop,
    tn_aciazorv,
    tn_aciazcop,
    tn_advzorv,
    tn_arzorv,
    tn_asmzorv,
    tn_cbezorv,
    tn_cbeiazorv,
    tn_cgzorv,
    tn_cgzcop,
    tn_demzorv,
    tn_diszorv,
    tn_lnkzorv,
    tn_embedzorv,
    tn_embedded_options,
    tn_hexzorv,
    tn_ilkzorv,
    tn_clistzorv,
    tn_mkzorv,
    tn_nmzorv,
    tn_ocszorv,
    tn_ofdzorv,
    tn_optzorv,
    tn_optzcop,
    tn_pddzorv,
    tn_pprofzorv,
    tn_clzorv,
    tn_stripzorv,
    tn_xrefzorv,
  };

  explicit option_engine(const option_table& table);
  option_engine(const option_engine& other);
  option_engine& operator=(const option_engine& other);
  virtual ~option_engine() = default;

  // --- state (public: the rest of the system reads option_state directly)
  uint8_t debug = 0;
  std::vector<int32_t> option_state;
  std::vector<uint8_t> option_form;
  std::vector<uint32_t> option_seen;
  std::vector<uint32_t> option_parsed;
  std::vector<std::vector<option_arg>> option_args;
  const char* current_option = nullptr;
  const char* source_name = "<internal>";
  std::vector<std::pair<int, hist_argument>> history;
  std::string command_line;
  bool merging = false;
  int32_t error_count = 0;

  const option_table& table() const { return *table_; }

  // --- asking
  int isclass(int id, int cls) const;
  int testclass(int cls) const;
  unsigned seenclass(int cls) const;
  int getargcount(int id) const;
  long getnumarg(int id, unsigned index) const;
  // The argument at index as text, or null if there is none. Borrowed, never
  // freed by the caller: a text argument lives in the object until the option
  // is cleared or reset; a one-of word lives in the table; a number is
  // printed into a static ring of 15 buffers, so it lives for 14 further
  // calls of getstrarg (by any object).
  const char* getstrarg(int id, unsigned index) const;
  // Fills *arg with the option's first argument, or for a list option with
  // all of them: then arg->value.list is a new array that the caller frees
  // with free(); its texts are borrowed as from getstrarg.
  void get_argument(int id, an_argument_t* arg) const;
  int args_match_list(int id, const char* const* list) const;
  int debug_level(int) const { return debug; }
  // Borrowed from the object; valid until the next record_input_command_line.
  const char* input_command_line() const { return command_line.c_str(); }

  // --- setting (an id outside the table is ignored)
  void setopt(int id);
  void setopt(int id, long value);
  void setopt(int id, const char* value);
  void setclassmembers(int cls);
  void setarg(int id, long value);
  void setarg(int id, const char* value);
  void clearopt(int id);
  void clearclassmembers(int cls);
  void record_input_command_line(int argc, char** argv);
  void addfileopt(const std::string& file, const std::string& tool);
  // The set sequence shared by defaults, derived settings and options that
  // set others: record, store the word (if any), note in the history.
  void apply(int id, const char* word);
  // Applies the settings that the table has an option make as well.
  void apply_also_sets(int id);

  // --- scanning
  int process_option(const char* text, const char** error_pos);
  void deprecated_case(const char* end, const char* canonical);

  // --- numbers by radix
  static int get_radix(char* text);
  static long strtol_by_radix(const char* text, int* bad);
  static unsigned long strtoul_by_radix(const char* text, int* bad);

  // --- diagnostics and dependencies
  int report_diagnostic(DIAGNOSTIC& diag);
  virtual void post_process_option_depends();

  // --- export and listing
  // The text with letters moved 13 places and '%' and '-' swapped (how the
  // table stores names). The result is one of a static ring of five buffers:
  // borrowed, and valid until four further calls of rot13 (by any object).
  static const char* rot13(const char* text);
  // The spelling the option was given in, or its long form; null for an id
  // outside the table. A rot13 result: valid until four further rot13 calls.
  const char* format_of_option(int id) const;
  // The option's long form; a rot13 result, as above.
  const char* internal_option_string(int id) const;
  // The option (with its argument at index) as it would be spelled on a
  // command line, or null if it holds no such argument. The caller frees the
  // text with free().
  char* export_option(int id, int index) const;
  // The ids of the options that match type (export_all, export_set, ...), in
  // id order and closed by the table's option count. The caller frees the
  // array with free().
  int* export_option_list(int type) const;
  // As export_option_list, for the members of class cls only.
  int* export_option_class(int type, int cls) const;
  std::vector<optlist> export_option_pairs(int type, int cls) const;
  std::vector<int> class_list_for_option(int id) const;
  // Every set option as export_option spells it, blank-separated. The caller
  // frees the text with free().
  char* print() const;
  void dump(int all) const;
  void dump_history() const;
  // Without a topic shows the overview and returns; with one, shows the options
  // that match it and ends the run.
  void display_option_help(const char* topic) const;
  void dump_basic_class() const;
  void dump_class(int help_class) const;
  // The left column of an option's help line (its spellings and argument).
  // The text is a static buffer: borrowed, and valid until the next call.
  static const char* get_opt_txt(const char* long_form, const char* const* alt_forms,
                                 const char* short_form, const char* arg_text, int optional);

  // --- merging the options of several files (policies per option in the table);
  // carried for the toolchain's other tools, no step of an advzorv run calls it
  void merge_init(const option_engine& other);
  void merge_options(const option_engine& other);
  void do_merge_conflicts(int id, const option_engine& other);
  void merge_policy_none(int id, const option_engine& other);
  void merge_policy_main(int id, const option_engine& other);
  void merge_policy_exact(int id, const option_engine& other);
  void merge_policy_exact_notset(int id, const option_engine& other);
  void merge_policy_or(int id, const option_engine& other);
  void merge_policy_and(int id, const option_engine& other);
  void merge_policy_max(int id, const option_engine& other);
  void merge_policy_min(int id, const option_engine& other);
  void merge_policy_custom(int id, const option_engine& other);
  // The override of the option's group of mutually exclusive options: true
  // when the group was resolved here and the option's policy is skipped.
  bool mutex_merge_override(int id, const option_engine& other);

  // --- tool command lines; carried for the toolchain's other tools, no step
  // of an advzorv run calls them
  // Adds the options of the history (in its order) that go to the list's
  // tool: all options, all but those of the excluded classes, or those of
  // the included classes less those of the excluded ones.
  void add_opts_for_tool(argv_list& list);
  void add_opts_for_tool(argv_list& list, std::vector<int> exclude);
  void add_opts_for_tool(argv_list& list, std::vector<int> include, std::vector<int> exclude);
  // The texts under which a history entry of the option goes to the tool;
  // empty for a tool that does not take the option.
  std::vector<std::string> passto(int id, tool_name tool, const hist_argument& arg) const;

  // Class-wide maps of tools to their file options.
  static const std::map<std::string, tool_name>& tool_cmd_map();
  std::map<tool_name, int> tn_fileopt_map() const;

  // Ends the run after a bad argument: exit status 1.
  [[noreturn]] static void end_run();

 protected:
  // Sets the table's defaults; the families call it from their constructors.
  void set_defaults();

 private:
  const option_table* table_;
  // The number of history entries of each option.
  std::vector<uint32_t> history_count_;

  bool valid(int id) const { return id >= 0 && static_cast<unsigned>(id) < table_->n; }
  const option_row& row(int id) const { return table_->option_definitions[id]; }
  uint8_t kind(int id) const { return table_->parm_type[id]; }
  bool is_list_kind(int id) const;
  void release_args(int id);
  void ensure_seen(int id);
  void store_arg(int id, option_arg arg);
  const char* item_word(int id, long value) const;
  std::string value_text(int id, unsigned index) const;
  void trace(const char* format, ...) const __attribute__((format(printf, 2, 3)));
  void trace_arg(int id) const;
  void note_in_history(int id, hist_argument arg);

  // the steps of setting an option; id is one of the table's
  void setopt_internal(int id);
  void do_conflicts(int id);
  void register_option_form(int id, unsigned char form);
  void parsed_option(int id);
  void add_to_history(int id);
  void clear_history(int id);

  // arguments; id is one of the table's, type one of its parse types.
  // parse_arg returns the checked argument text: a pointer into rest (behind
  // its "="), or the next token of the stream; null for an optional argument
  // left out. Borrowed from the caller's text or the stream, never freed here.
  const char* parse_arg(int id, const char* rest, const char* name, int type,
                        const arg_range& range);
  // parse_oneof stores the chosen keyword's value; false for an optional
  // keyword left out (value untouched).
  bool parse_oneof(int id, const char* rest, const char* name, int type, long* value);
  void check_numerical_arg(int type, int id, const char* name, const char* arg,
                           const arg_range& range);

  // merging internals
  void apply_from(const option_engine& other, int id, int index);
  void apply_all_from(const option_engine& other, int id);
  void report_exact_mismatch(int id, const option_engine& other);
  void merge_extreme(int id, const option_engine& other, bool greater);
  an_argument_t ordered_argument(int id) const;

  // scanner internals
  int walk(char implied, const char* text, const char** end) const;
  bool takes_what_follows(const scan_row& spelling, const char* rest) const;
  const char* run_handler(const scan_row& spelling, const char* rest, char* implied);
  [[noreturn]] void run_help(const scan_row& spelling, const char* rest);
  void after_store(const scan_row& spelling, const char* rest);
  [[noreturn]] void scan_failure(const char* pos);
};
