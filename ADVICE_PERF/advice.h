#pragma once
// The advice document: the entries the development environment shows in its
// advice view, kept from run to run, and the rules that fill them.

#include "ADVICE_PERF/ptree_info.h"

#include <map>
#include <string>

class DIAGNOSTIC;
class LINK_DATA;

// One advice entry.
struct ADVICE_INFO {
  std::string advice_type;  // "curr_setting", "opt_setting", "build_run", "build_results"
  std::string option;       // the compiler option spoken of, long form; may be empty
  std::string value;        // the value recommended for it; may be empty
  std::string msg;          // the line the view shows
  std::string action;       // what a double-click does; may be empty

  bool operator==(const ADVICE_INFO&) const = default;
};

class ADVICE : public PTREE_INFO {
 public:
  // Entries keyed by message number (five digits, so byte order is numeric).
  using entry_map = std::map<std::string, ADVICE_INFO>;
  // Current settings: option in long form -> the text shown for it.
  using settings_map = std::map<std::string, std::string>;

  // Reads the file; the link data must be complete and outlive this object.
  ADVICE(const char* file_name, const LINK_DATA& link_data);
  // Reads the file for a reader that never updates nor writes it.
  explicit ADVICE(const char* file_name);
  ~ADVICE() override;

  // Runs the rules of a run (the settings entry always, the others only when
  // no benchmark event was given).
  void update();
  // The result of a finished benchmark series over option: value was best.
  void advice_build_results(const std::string& option, const std::string& value);

  // Stores an entry under key, replacing one that is there.
  void add_advice(const std::string& key, const std::string& msg, const std::string& advice_type,
                  const std::string& option, const std::string& value, const std::string& action);
  void remove_advice_type(const std::string& advice_type);
  // The first entry in key order of that type, or the end of the entries.
  entry_map::iterator find_advice_type(const std::string& advice_type);
  // Removes the proposal to run the benchmark series; it won't come back.
  void remove_link_build_advice();
  void remove_build_results_advice();

  const entry_map& get_entries() const { return entries; }
  const settings_map& get_settings() const { return settings; }
  bool get_link_advice_flag() const { return link_advice_flag; }

 protected:
  void read_body() override;
  void write_body() override;

 private:
  void init();
  void current_settings();
  void advice_option_settings();
  void advice_linker();
  void advice_perf_results();
  // Turns a message into an entry keyed by its number.
  void emit_advice(DIAGNOSTIC& diag, const std::string& advice_type, const std::string& option,
                   const std::string& value, const std::string& action);

  settings_map settings;
  entry_map entries;
  bool link_advice_flag = false;
  const LINK_DATA& link_data;
};
