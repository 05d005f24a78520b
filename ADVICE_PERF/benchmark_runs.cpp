// The benchmark events start, append and end: how one build of a series
// changes the chart of the performance-results document and, for a
// size-vs-speed series, the advice document.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/build_settings.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"
#include "ADVICE_PERF/xml_text.h"
#include "UTIL/strcase.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr const char* speed_option = "--opt_for_speed";
constexpr const char* level_option = "--opt_level";

enum class event : long {
  none = 0,
  append = option_obj::ITEM_BENCHMARK__EVENT_APPEND,
  end = option_obj::ITEM_BENCHMARK__EVENT_END,
  start = option_obj::ITEM_BENCHMARK__EVENT_START,
};
static_assert(static_cast<long>(event::start) == 3 && static_cast<long>(event::append) == 1 &&
                  static_cast<long>(event::end) == 2,
              "the benchmark events keep the numbers the environment relies on");

event benchmark_event() {
  return static_cast<event>(tool_option_number(option_obj::BENCHMARK__EVENT));
}

const char* varied_option() {
  return tool_option_text(option_obj::BENCHMARK__OPTION);
}

// Whether the series varies the size-vs-speed setting, in any case of letters.
bool varies_speed() {
  return strcaseicmp(varied_option(), speed_option) == 0;
}

}  // namespace

bool PERF_RESULTS::process_args() {
  const event step = benchmark_event();
  if (step == event::none) return false;
  if (step == event::start) {
    if (tool_option_given(option_obj::BENCHMARK__OPTION)) return true;
    std::fputs(">> Aborting - --benchmark:event=start requires --benchmark:option=option_to_vary\n",
               stderr);
    return false;
  }
  if (tool_option_given(option_obj::BENCHMARK__OPTION) &&
      tool_option_given(option_obj::BENCHMARK__OPTION_VALUE))
    return true;
  std::fputs(
      ">> Aborting - --benchmark:event=append/end requires --benchmark:option=option_to_vary and "
      "--benchmark:option_value=option_setting\n",
      stderr);
  return false;
}

// The labels follow the option of a valid event; without one, a chart read
// from the file keeps its labels and a new chart is a size-vs-speed chart.
void PERF_RESULTS::set_chart_labels() {
  const bool by_level = benchmarking && std::strcmp(varied_option(), level_option) == 0;
  if (by_level) {
    chart.option = level_option;
    chart.title = "Vary Optimization Level";
  } else if (benchmarking || chart.option.empty()) {
    chart.option = speed_option;
    chart.title = "Vary Size vs Speed Setting";
  }
  chart.valueLabel = "Code Size (bytes)";
}

void PERF_RESULTS::update() {
  update_menu();
  if (!benchmarking) return;
  const event step = benchmark_event();
  if (step == event::start) {
    start_build_run();
    return;
  }
  append();  // the end event carries the last build's bar as well
  if (!varies_speed()) return;
  const std::string best = find_best_mf_setting();
  if (step != event::end) return;
  advice->remove_link_build_advice();
  const std::string goal = std::to_string(size_speed_goal());
  if (best != goal) advice->advice_build_results(speed_option, best);
}

void PERF_RESULTS::update_menu() {
  menu.emplace(speed_option, "Control Speed vs Size");
  menu.emplace(level_option, "Optimization Level");
}

void PERF_RESULTS::start_build_run() {
  bars.clear();
  if (varies_speed()) advice->remove_build_results_advice();
}

void PERF_RESULTS::append() {
  std::string color = varies_speed() ? "yellow" : "cyan";
  // A link older than the document's last write belongs to an earlier build:
  // this build did not link.
  if (link_data.get_link_time() < timestamp) return;
  if (link_data.get_link_errors() > 0) color = "red";
  if (link_data.get_code_size() == 0) return;
  update_bar_chart(std::move(color), link_data.get_code_size());
}

void PERF_RESULTS::update_bar_chart(std::string color, uint32_t value) {
  // The key as the document will hold it, so a key with bytes XML can't carry
  // finds its bar again in the next run.
  const std::string key = strict_xml_text(tool_option_text(option_obj::BENCHMARK__OPTION_VALUE));
  bars[key] = PERF_INFO{value, std::move(color)};
}

// The best bar is the largest one that linked without errors; of equal sizes
// the later key wins. It alone turns green, all other clean bars yellow.
std::string PERF_RESULTS::find_best_mf_setting() {
  for (auto& [key, bar] : bars)
    if (bar.color != "red") bar.color = "yellow";
  uint32_t best_value = 0;
  std::string best_key;
  for (const auto& [key, bar] : bars) {
    if (best_value <= bar.value && bar.color != "red") {
      best_value = bar.value;
      best_key = key;
    }
  }
  if (!best_key.empty()) bars[best_key].color = "green";
  return best_key;
}
