#include "programs/views/html_report.h"

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/file_replace.h"
#include "ADVICE_PERF/perf_results.h"
#include "ADVICE_PERF/xml_text.h"
#include "programs/views/report_words.h"

#include <boost/property_tree/xml_parser.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <sstream>

namespace {

// Plain CSS without '<', '>' or '&', so the page reads the same as HTML and XML.
// Fills: light ones carry a dark outline; best, error and the light fills stand
// at least 3:1 apart, and the error bar's outline is dashed besides.
constexpr const char* style =
    "body{font-family:sans-serif;margin:0 auto;padding:1rem;max-width:72rem;color:#1a1a1a;"
    "background:#fff;line-height:1.4}"
    "h1{font-size:1.5rem}h2{font-size:1.25rem;margin-top:2rem}"
    "table{border-collapse:collapse;margin:.5rem 0}"
    "caption{text-align:left;font-weight:bold;padding:.25rem 0}"
    "td,th{border:1px solid #767676;padding:.25rem .5rem;text-align:left;vertical-align:top;"
    "overflow-wrap:break-word}"
    ".anywhere{overflow-wrap:anywhere}td p{margin:0 0 .25rem}"
    ".number{text-align:right}.nowrap{white-space:nowrap}"
    ".chart,.legend{list-style:none;padding:0;margin:.5rem 0}"
    ".bar{display:grid;grid-template-columns:minmax(3rem,14rem) minmax(4rem,1fr) 12rem;"
    "gap:.25rem .75rem;align-items:center;margin:.4rem 0}"
    ".key{overflow:hidden;text-overflow:ellipsis;white-space:nowrap}"
    ".key:hover,.key:focus{white-space:normal;overflow-wrap:anywhere}"
    ".bar svg{display:block;width:100%;height:1.5rem}"
    ".legend svg{width:2rem;height:1rem;vertical-align:middle}"
    "svg rect{stroke:#1a1a1a;stroke-width:2px;vector-effect:non-scaling-stroke}"
    "svg rect.fill-red{stroke-dasharray:6 3}"
    ".fill-green{fill:#04300f}.fill-red{fill:#e0442f}.fill-yellow{fill:#fde68a}"
    ".fill-cyan{fill:#a5f3fc}.fill-other{fill:#ededed}"
    ".state{font-weight:bold}"
    "@media (max-width:40rem){body{padding:.75rem}.bar{grid-template-columns:1fr auto}"
    ".bar .value{grid-row:1;grid-column:2}.bar svg{grid-row:2;grid-column:1 / -1}}";

constexpr double bar_units = 1000;  // the bar area's width in SVG user units

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

ptree& with_class(ptree& node, const std::string& name) {
  return attr(node, "class", name);
}

// A table with its caption and column headings; returns its body.
ptree& table(ptree& parent, const std::string& caption,
             std::initializer_list<std::string> columns) {
  ptree& node = element(parent, "table");
  element(node, "caption", caption);
  ptree& head = element(element(node, "thead"), "tr");
  for (const std::string& title : columns)
    attr(element(head, "th", title), "scope", "col");
  return element(node, "tbody");
}

// Text in which every word naming an option ("--opt_level=3.") is kept whole
// on one line; elsewhere lines break at blanks as usual.
void add_text(ptree& node, const std::string& text) {
  std::istringstream words(text);
  std::string run;
  for (std::string word; words >> word;) {
    if (word.find("--") == std::string::npos) {
      run += (run.empty() ? "" : " ") + word;
      continue;
    }
    if (!run.empty()) element(node, "<xmltext>", run + ' ');
    run.clear();
    with_class(element(node, "span", word), "nowrap");
  }
  if (!run.empty()) element(node, "<xmltext>", run);
}

void add_time(ptree& parent, const std::string& what, uint64_t timestamp) {
  ptree& line = element(parent, "p");
  element(line, "span", what);
  if (timestamp == 0) {
    element(line, "span", local_time(timestamp));
    return;
  }
  attr(element(line, "time", local_time(timestamp)), "datetime", iso8601_utc(timestamp));
}

void add_settings(ptree& body, const ADVICE::entry_map& entries) {
  element(body, "h2", "Current settings");
  const auto settings = settings_table(entries);
  if (settings.empty()) {
    element(body, "p", "None recorded.");
    return;
  }
  ptree& rows = table(body, "The build's options as the last run found them", {"Option", "Value"});
  for (const auto& [option, value] : settings) {
    ptree& row = element(rows, "tr");
    attr(element(row, "th", option), "scope", "row");
    element(row, "td", value);
  }
}

void add_advice(ptree& body, const ADVICE::entry_map& entries) {
  element(body, "h2", "Advice");
  const bool any = std::any_of(entries.begin(), entries.end(),
                               [](const auto& entry) { return is_listed_advice(entry.second); });
  if (!any) {
    element(body, "p", "No advice.");
    return;
  }
  ptree& rows = table(body, "Advice entries, by message number", {"Message", "Advice"});
  for (const auto& [code, info] : entries) {
    if (!is_listed_advice(info)) continue;
    ptree& row = element(rows, "tr");
    attr(element(row, "th", code), "scope", "row");
    ptree& cell = element(row, "td");
    add_text(element(cell, "p"), info.msg);
    const std::string value = recommended_value(info);
    const std::string shown = value.empty() ? nothing_recommended(info) : value;
    ptree& recommends = element(cell, "p");
    element(recommends, "span", "Recommended value:");
    if (value.empty())
      element(recommends, "span", shown.empty() ? "none" : shown);
    else
      with_class(element(recommends, "span", value), "nowrap");
  }
}

// Text for an element that must not be empty: a header cell needs words, and
// an empty span would be written as <span/>, which a browser reading the page
// as HTML takes for an open tag.
std::string shown_text(const std::string& text, const char* instead) {
  return text.empty() ? instead : text;
}

std::string fill_class(const std::string& color) {
  for (const char* known : {"green", "red", "yellow", "cyan"})
    if (color == known) return std::string("fill-") + known;
  return "fill-other";
}

// A bar of length fraction (0 to 1) of the area, or a legend swatch.
void add_bar_image(ptree& parent, const std::string& color, double fraction) {
  ptree& svg = element(parent, "svg");
  attr(svg, "xmlns", "http://www.w3.org/2000/svg");
  attr(svg, "viewBox", "0 0 " + number(bar_units) + " 20");
  attr(svg, "preserveAspectRatio", "none");
  attr(svg, "aria-hidden", "true");
  attr(svg, "focusable", "false");
  ptree& rect = with_class(element(svg, "rect"), fill_class(color));
  attr(rect, "x", "1");
  attr(rect, "y", "2");
  attr(rect, "width", number(std::max(0.0, fraction * (bar_units - 2))));
  attr(rect, "height", "16");
}

void add_meaning(ptree& parent, const std::string& color) {
  with_class(attr(element(parent, "span", meaning_mark(color)), "aria-hidden", "true"), "mark");
  element(parent, "span", bar_meaning(color));
}

void add_bars(ptree& section, const std::vector<shown_bar>& shown) {
  uint32_t largest = 0;
  for (const auto& [key, bar] : shown)
    largest = std::max(largest, bar->value);
  ptree& list = with_class(element(section, "ul"), "chart");
  for (const auto& [key, bar] : shown) {
    ptree& row = with_class(element(list, "li"), std::string("bar ") + bar_meaning(bar->color));
    ptree& label = with_class(element(row, "span", shown_text(*key, "(empty key)")), "key");
    attr(attr(label, "tabindex", "0"), "title", *key);
    // A bar of any size stays visible beside one many times larger.
    const double fraction =
        largest ? std::max(0.005, static_cast<double>(bar->value) / largest) : 0;
    add_bar_image(row, bar->color, fraction);
    ptree& value = with_class(element(row, "span"), "value");
    element(value, "span", std::to_string(bar->value) + " bytes,");
    add_meaning(value, bar->color);
  }
}

void add_legend(ptree& section) {
  ptree& list = with_class(element(section, "ul"), "legend");
  for (const LEGEND_ROW& row : legend_rows()) {
    const std::string color = std::string(row.colors).substr(0, std::string(row.colors).find(','));
    ptree& item = element(list, "li");
    add_bar_image(item, color, 1);
    add_meaning(item, color);
    add_text(element(item, "span"),
             std::string("(") + row.colors + " in the document): " + row.explanation + ".");
  }
}

void add_data_table(ptree& section, const CHART_INFO& chart, const std::vector<shown_bar>& shown) {
  ptree& rows = table(section, chart.title + ": the bars as data",
                      {"Key", shown_text(chart.valueLabel, "Value"), "Meaning"});
  for (const auto& [key, bar] : shown) {
    ptree& row = element(rows, "tr");
    with_class(attr(element(row, "th", shown_text(*key, "(empty key)")), "scope", "row"),
               "anywhere");
    with_class(element(row, "td", std::to_string(bar->value)), "number");
    element(row, "td", bar_meaning(bar->color));
  }
}

void add_chart(ptree& body, const PERF_RESULTS& results) {
  const CHART_INFO& chart = results.get_chart();
  const chart_state state = state_of(results.get_bars());
  ptree& heading = element(body, "h2");
  element(heading, "<xmltext>", chart.title + " ");
  with_class(element(heading, "span", "(" + chart.option + ")"), "nowrap");
  if (state == chart_state::empty) {
    with_class(element(body, "p", state_sentence(state)), "state");
    return;
  }
  const std::vector<shown_bar> shown = display_order(results.get_bars());
  add_text(element(body, "p"), "Each bar: the key (the value of " + chart.option +
                                   " in that build), then the bar, as long as its " +
                                   chart.valueLabel +
                                   " against the largest, then the size and what the bar means.");
  add_bars(body, shown);
  if (state == chart_state::all_errors)
    with_class(element(body, "p", state_sentence(state)), "state");
  add_legend(body);
  add_data_table(body, chart, shown);
}

void add_how_to_read(ptree& body) {
  element(body, "h2", "How to read this");
  ptree& list = element(body, "ul");
  add_text(element(list, "li"), std::string(best_rule) + ' ' + best_rule_detail);
  add_text(element(list, "li"), link_time_rule);
  element(list, "li",
          "Keys that are all numbers are shown in numeric order; the documents keep them in "
          "text order.");
}

}  // namespace

void write_html_report(const std::string& file_name, const ADVICE& advice,
                       const PERF_RESULTS& results) {
  ptree page;
  ptree& html = attr(element(page, "html"), "xmlns", "http://www.w3.org/1999/xhtml");
  attr(attr(html, "lang", "en"), "xml:lang", "en");
  ptree& head = element(html, "head");
  attr(element(head, "meta"), "charset", "utf-8");
  attr(attr(element(head, "meta"), "name", "viewport"), "content",
       "width=device-width, initial-scale=1");
  element(head, "title", "advzorv report");
  element(head, "style", style);
  ptree& body = element(element(html, "body"), "main");
  element(body, "h1", "Advice and performance results");
  add_time(body, "Advice document written ", advice.get_timestamp());
  add_time(body, "Results document written ", results.get_timestamp());
  add_settings(body, advice.get_entries());
  add_advice(body, advice.get_entries());
  add_chart(body, results);
  add_how_to_read(body);
  namespace xml_parser = boost::property_tree::xml_parser;
  const xml_parser::xml_writer_settings<std::string> settings(' ', 1, "utf-8");
  std::ostringstream text;
  xml_parser::write_xml(text, page, settings);
  // A doctype after the declaration keeps a browser that reads the page as
  // HTML out of quirks mode.
  std::string xhtml = text.str();
  xhtml.insert(xhtml.find('\n') + 1, "<!DOCTYPE html>\n");
  replace_file(file_name, strict_xml_text(xhtml));
}
