#include "programs/views/html_report.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/perf_results.h"
#include "programs/views/report_words.h"

#include <boost/property_tree/xml_parser.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <locale>

namespace {

// The chart's geometry in SVG user units: the largest bar is bar_height high,
// with room above the bars for the value and the best mark and below for keys.
constexpr double bar_height = 200, bar_width = 48, bar_gap = 24, top = 44, bottom = 28;

// Plain CSS without '<', '>' or '&', so the page reads the same as HTML and XML.
constexpr const char* style =
    "body{font-family:sans-serif;margin:2em;color:#222}"
    "table{border-collapse:collapse}td,th{border:1px solid #bbb;padding:4px 8px;text-align:left}"
    "svg text{font-size:12px;text-anchor:middle}svg .mark{font-weight:bold}"
    "svg .best rect{stroke:#000;stroke-width:3}";

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

ptree& element(ptree& parent, const std::string& name, const std::string& text = "") {
  return parent.add(name, text);
}

ptree& attr(ptree& node, const std::string& name, const std::string& value) {
  node.put("<xmlattr>." + name, value);
  return node;
}

void add_advice(ptree& body, const ADVICE::entry_map& entries) {
  element(body, "h2", "Current settings");
  element(body, "p", settings_line(entries));
  element(body, "h2", "Advice");
  ptree& table = element(body, "table");
  ptree& head = element(table, "tr");
  for (const char* title : {"Message", "Advice", "Recommended value"})
    element(head, "th", title);
  for (const auto& [code, info] : entries) {
    if (!is_listed_advice(info)) continue;
    ptree& row = element(table, "tr");
    element(row, "td", code);
    element(row, "td", info.msg);
    element(row, "td", recommended_value(info));
  }
}

void add_bar(ptree& svg, const std::string& key, const PERF_INFO& bar, double x, double height) {
  const bool best = bar.color == "green";
  ptree& group = attr(element(svg, "g"), "class", best ? "bar best" : "bar");
  const double y = top + bar_height - height;
  ptree& rect = element(group, "rect");
  attr(rect, "x", number(x));
  attr(rect, "y", number(y));
  attr(rect, "width", number(bar_width));
  attr(rect, "height", number(height));
  attr(rect, "fill", bar.color);
  element(rect, "title",
          key + ": " + std::to_string(bar.value) + " bytes, " + bar_meaning(bar.color));
  const std::string centre = number(x + bar_width / 2);
  auto label = [&](const char* kind, const std::string& text, double at) {
    attr(attr(attr(element(group, "text", text), "class", kind), "x", centre), "y", number(at));
  };
  label("value", std::to_string(bar.value), y - 6);
  if (best) label("mark", "best", y - 22);
  label("key", key, top + bar_height + 18);
}

void add_chart(ptree& body, const PERF_RESULTS& results) {
  const CHART_INFO& chart = results.get_chart();
  const PERF_RESULTS::bar_map& bars = results.get_bars();
  element(body, "h2", chart.title + " (" + chart.option + ")");
  uint32_t largest = 0;
  for (const auto& [key, bar] : bars)
    largest = std::max(largest, bar.value);
  const double width = bar_gap + static_cast<double>(bars.size()) * (bar_width + bar_gap);
  ptree& svg = element(body, "svg");
  attr(svg, "xmlns", "http://www.w3.org/2000/svg");
  attr(svg, "width", number(width));
  attr(svg, "height", number(top + bar_height + bottom));
  attr(svg, "role", "img");
  attr(svg, "aria-label", chart.valueLabel + " by " + chart.option);
  double x = bar_gap;
  for (const auto& [key, bar] : bars) {
    add_bar(svg, key, bar, x, largest ? bar_height * bar.value / largest : 0);
    x += bar_width + bar_gap;
  }
  element(body, "p",
          "Bar height: " + chart.valueLabel + ". Green: best setting; red: linked with errors.");
}

}  // namespace

void write_html_report(const std::string& file_name, const ADVICE& advice,
                       const PERF_RESULTS& results) {
  ptree page;
  ptree& html = attr(element(page, "html"), "xmlns", "http://www.w3.org/1999/xhtml");
  ptree& head = element(html, "head");
  attr(element(head, "meta"), "charset", "utf-8");
  element(head, "title", "advzorv report");
  element(head, "style", style);
  ptree& body = element(html, "body");
  element(body, "h1", "Advice and performance results");
  add_advice(body, advice.get_entries());
  add_chart(body, results);
  namespace xml_parser = boost::property_tree::xml_parser;
  const xml_parser::xml_writer_settings<std::string> settings(' ', 1, "utf-8");
  xml_parser::write_xml(file_name, page, std::locale(), settings);
}
