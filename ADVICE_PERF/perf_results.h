#pragma once
// The performance-results document: one bar chart of code sizes, one bar per
// value of the compiler option that a benchmark series varies, and the menu of
// options such a series may vary.

#include "ADVICE_PERF/ptree_info.h"

#include <cstdint>
#include <map>
#include <string>

class ADVICE;
class LINK_DATA;

// One bar of the chart.
struct PERF_INFO {
  uint32_t value = 0;  // code size of the build, in bytes
  std::string color;   // "cyan", "yellow", "red" or "green"
};

// The chart's labels.
struct CHART_INFO {
  std::string option;  // the varied option in long form, e.g. "--opt_for_speed"
  std::string title;
  std::string valueLabel;
};

class PERF_RESULTS : public PTREE_INFO {
 public:
  using menu_map = std::map<std::string, std::string>;
  using bar_map = std::map<std::string, PERF_INFO>;

  // Reads the document, then validates this run's benchmark options and sets
  // the chart's labels. The link data must be complete and outlive this
  // object; the advice must exist.
  PERF_RESULTS(const char* file_name, const LINK_DATA& link_data, ADVICE* advice);
  // Reads the file for a reader that never updates nor writes it: no
  // benchmark options are looked at and the chart's labels stay as read.
  explicit PERF_RESULTS(const char* file_name);
  ~PERF_RESULTS() override;

  // Applies this run's benchmark event, if any, to the chart and the advice,
  // and fills the menu.
  void update();

  const CHART_INFO& get_chart() const { return chart; }
  const bar_map& get_bars() const { return bars; }

 protected:
  void read_body() override;
  void write_body() override;

 private:
  void init();
  // Whether the benchmark options make a valid event; complains on stderr
  // about an event that lacks the options it needs. (The name is the one the
  // toolchain's other tools use for this step.)
  bool process_args();
  void set_chart_labels();
  void update_menu();
  void start_build_run();
  // Adds the bar of the build just linked, if the link is new and has a size.
  void append();
  // Sets the bar of this build's option value, which every appending event has.
  void update_bar_chart(std::string color, uint32_t value);
  // Colours the bars of a size-vs-speed series and returns the best key, or "".
  // "mf" is the short form of --opt_for_speed; the toolchain knows the step by this name.
  std::string find_best_mf_setting();

  menu_map menu;  // both maps in byte order of their keys, the file's order
  bar_map bars;
  CHART_INFO chart;
  bool benchmarking = false;
  ADVICE* advice;  // not owned
  const LINK_DATA& link_data;
};
