#include "ADVICE_PERF/perf_results.h"

#include "ADVICE_PERF/link_data.h"

PERF_RESULTS::PERF_RESULTS(const char* file_name, const LINK_DATA& link_data, ADVICE* advice)
    : PTREE_INFO(file_name), advice(advice), link_data(link_data) {
  version = 1;
  init();
}

PERF_RESULTS::PERF_RESULTS(const char* file_name)
    : PTREE_INFO(file_name), advice(nullptr), link_data(LINK_DATA::none()) {
  input();
}

PERF_RESULTS::~PERF_RESULTS() = default;

void PERF_RESULTS::init() {
  input();
  benchmarking = process_args();
  set_chart_labels();
}

// Reads the chart's labels and its bars. The first missing attribute or bad
// value ends the reading silently: what was read up to there is kept, the
// rest of the chart is dropped at the next write.
void PERF_RESULTS::read_body() {
  try {
    const ptree& chart_tree = pt.get_child("body.chart");
    chart.option = chart_tree.get<std::string>("<xmlattr>.option");
    chart.title = chart_tree.get<std::string>("<xmlattr>.title");
    chart.valueLabel = chart_tree.get<std::string>("<xmlattr>.valueLabel");
    for (const auto& [name, bar] : chart_tree) {
      if (name != "bar") continue;
      std::string key = bar.get<std::string>("<xmlattr>.option_value");
      const uint32_t value = bar.get<uint32_t>("<xmlattr>.value");
      std::string color = bar.get<std::string>("<xmlattr>.color");
      bars.emplace(std::move(key), PERF_INFO{value, std::move(color)});
    }
  } catch (...) {
  }
}

void PERF_RESULTS::write_body() {
  for (const auto& [option, description] : menu) {
    ptree& item = pt.add("body.menu.menu_item", "");
    item.put("<xmlattr>.option", option);
    item.put("<xmlattr>.description", description);
  }
  pt.put("body.chart.<xmlattr>.option", chart.option);
  pt.put("body.chart.<xmlattr>.title", chart.title);
  pt.put("body.chart.<xmlattr>.valueLabel", chart.valueLabel);
  for (const auto& [option_value, info] : bars) {
    ptree& bar = pt.add("body.chart.bar", "");
    bar.put("<xmlattr>.option_value", option_value);
    bar.put("<xmlattr>.value", info.value);
    bar.put("<xmlattr>.color", info.color);
  }
}
