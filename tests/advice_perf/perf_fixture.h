#pragma once
// Runs of the tool's document steps over files in a temporary directory: the
// option objects are filled from tokens, then the link data, the advice and
// the results document are built, updated and written as in a real run.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/driver.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"
#include "DIAG/diag.h"
#include "options/optobj.h"
#include "options/optobj_shell.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

using tokens = std::vector<std::string>;
// A bar as the file shows it: option_value, value, color.
// Three attributes of one element as written in a document.
using attribute_row = std::tuple<std::string, std::string, std::string>;
using rows = std::vector<attribute_row>;

class perf_fixture : public ::testing::Test {
 protected:
  TempDir dir;
  const std::string results_path = dir.file("perf_results.xml");
  const std::string advice_path = dir.file("advice.xml");
  const std::string link_path = dir.file("link.xml");
  // The option objects of the current run, published through the globals.
  std::unique_ptr<option_obj> tool_options;
  std::unique_ptr<option_obj_shell> shell_options;

  // As in a run, the documents' texts are built without wrapping.
  void SetUp() override { DIAGNOSTIC::wrap_enabled_m = false; }
  void TearDown() override {
    cmdline_options = nullptr;
    global_options = nullptr;
  }

  // Fills fresh option objects: the tool's own options, then the build's
  // shell options as a command file would give them.
  void scan_options(const tokens& tool, const tokens& shell) {
    tool_options = std::make_unique<option_obj>(true);
    shell_options = std::make_unique<option_obj_shell>(true);
    cmdline_options = tool_options.get();
    global_options = shell_options.get();
    for (const std::string& token : tool)
      ASSERT_NE(cmdline_options->process_option(token.c_str() + 1, nullptr), 0) << token;
    for (const std::string& token : shell)
      ASSERT_NE(global_options->process_option(token.c_str() + 1, nullptr), 0) << token;
    global_options->post_process_option_depends();
    cmdline_options->post_process_option_depends();
  }

  // One invocation: build, update and write both documents.
  void run(const tokens& tool, const tokens& shell = {}) {
    scan_options(tool, shell);
    auto link = std::make_unique<LINK_DATA>(link_path.c_str());
    auto advice = std::make_unique<ADVICE>(advice_path.c_str(), *link);
    auto results = std::make_unique<PERF_RESULTS>(results_path.c_str(), *link, advice.get());
    advice->update();
    results->update();
    results->output();
    advice->output();
  }

  // The linker's file for one build: its time, its error count (none written
  // when negative) and one initialized code group of the given size.
  void write_link(uint64_t link_time, int errors, uint32_t code_size) {
    std::string xml = "<link_info><link_time>" + convert<std::string>(link_time) + "</link_time>";
    if (errors >= 0) xml += "<link_errors>" + std::to_string(errors) + "</link_errors>";
    xml +=
        "<object_component_list><object_component id=\"oc1\"/></object_component_list>"
        "<logical_group_list>";
    if (code_size != 0)
      xml += "<logical_group id=\"lg1\"><size>" + convert<std::string>(code_size) +
             "</size><name>.text</name><contents><object_component_ref idref=\"oc1\"/>"
             "</contents></logical_group>";
    xml += "</logical_group_list></link_info>";
    write_file(link_path, xml);
  }

  // A results document with the given time stamp and the inside of its body.
  void write_results(uint64_t timestamp, const std::string& body) {
    write_file(results_path, "<body><version>1</version><timestamp>" +
                                 convert<std::string>(timestamp) + "</timestamp>" + body +
                                 "</body>");
  }

  static ptree read_tree(const std::string& path) {
    ptree tree;
    boost::property_tree::read_xml(path, tree, boost::property_tree::xml_parser::trim_whitespace);
    return tree;
  }

  // The attributes a, b, c of each element called child under parent, in file order.
  static std::vector<attribute_row> attribute_rows(const std::string& path, const char* parent,
                                                   const char* child, const char* a, const char* b,
                                                   const char* c) {
    std::vector<attribute_row> rows;
    const ptree tree = read_tree(path);
    for (const auto& [name, element] : tree.get_child(parent)) {
      if (name != child) continue;
      const ptree& attributes = element.get_child("<xmlattr>");
      rows.emplace_back(attributes.get<std::string>(a), attributes.get<std::string>(b),
                        attributes.get<std::string>(c));
    }
    return rows;
  }

  // The bars in the results file as (option_value, value, color).
  std::vector<attribute_row> bars_in_file() const {
    return attribute_rows(results_path, "body.chart", "bar", "option_value", "value", "color");
  }

  std::string chart_attribute(const std::string& name) const {
    return read_tree(results_path).get<std::string>("body.chart.<xmlattr>." + name);
  }

  // The advice entries in the file as (diag_code, advice_type, value).
  std::vector<attribute_row> advice_in_file() const {
    return attribute_rows(advice_path, "body", "advice", "diag_code", "advice_type", "value");
  }
};
