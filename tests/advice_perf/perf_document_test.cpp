// The performance-results document as runs without a benchmark event read
// and rewrite it: the exact file format, what survives a run, and how far a
// damaged chart is read.
#include "tests/advice_perf/perf_fixture.h"

namespace {

const char* const chart_labels =
    "option=\"--opt_level\" title=\"Vary Optimization Level\" valueLabel=\"old label\"";

class PerfDocument : public perf_fixture {
 protected:
  // A run without any benchmark option.
  void plain_run() { run({}); }
};

TEST_F(PerfDocument, APlainRunKeepsLabelsAndBarsAndResetsOnlyTheValueLabel) {
  write_results(0x100, std::string("<chart ") + chart_labels +
                           "><bar option_value=\"3\" value=\"700\" color=\"red\"/>"
                           "<bar color=\"green\" value=\"900\" option_value=\"1\"/></chart>");
  plain_run();
  const ptree tree = read_tree(results_path);
  EXPECT_EQ(tree.get<std::string>("body.timestamp"), convert<std::string>(new_timestamp()));
  EXPECT_EQ(chart_attribute("option"), "--opt_level");
  EXPECT_EQ(chart_attribute("title"), "Vary Optimization Level");
  EXPECT_EQ(chart_attribute("valueLabel"), "Code Size (bytes)");
  EXPECT_EQ(bars_in_file(), rows({{"1", "900", "green"}, {"3", "700", "red"}}));
}

TEST_F(PerfDocument, BarsComeOutOncePerKeyInByteOrderAndForeignContentIsDropped) {
  write_results(0x100,
                "<menu><menu_item option=\"--other\" description=\"Other\"/></menu>"
                "<notes>kept nowhere</notes>"
                "<chart option=\"--opt_for_speed\" title=\"t\" valueLabel=\"v\" extra=\"x\">"
                "<bar option_value=\"2\" value=\"4294967295\" color=\"yellow\"/>"
                "<legend>ignored</legend>"
                "<bar option_value=\"10\" value=\"20\" color=\"green\"/>"
                "<bar option_value=\"1\" value=\"30\" color=\"yellow\"/>"
                "<bar option_value=\"2\" value=\"40\" color=\"red\"/>"
                "</chart>");
  plain_run();
  EXPECT_EQ(bars_in_file(),
            rows({{"1", "30", "yellow"}, {"10", "20", "green"}, {"2", "4294967295", "yellow"}}));
  const ptree tree = read_tree(results_path);
  EXPECT_EQ(tree.get_child("body").count("notes"), 0u);
  EXPECT_EQ(tree.get_child("body.chart").count("legend"), 0u);
  EXPECT_FALSE(tree.get_optional<std::string>("body.chart.<xmlattr>.extra"));
  std::vector<std::string> menu_options;
  for (const auto& [name, item] : tree.get_child("body.menu"))
    menu_options.push_back(item.get<std::string>("<xmlattr>.option"));
  EXPECT_EQ(menu_options, (std::vector<std::string>{"--opt_for_speed", "--opt_level"}));
}

TEST_F(PerfDocument, ReadingBarsStopsAtTheFirstBadOne) {
  // A value that is no unsigned number, then a bar without its colour: each
  // ends the reading at itself.
  for (const char* bad_bar : {"<bar option_value=\"5\" value=\"abc\" color=\"cyan\"/>",
                              "<bar option_value=\"5\" value=\"50\"/>"}) {
    SCOPED_TRACE(bad_bar);
    write_results(0x100, std::string("<chart ") + chart_labels +
                             "><bar option_value=\"7\" value=\"70\" color=\"cyan\"/>" + bad_bar +
                             "<bar option_value=\"0\" value=\"10\" color=\"cyan\"/></chart>");
    plain_run();
    EXPECT_EQ(bars_in_file(), rows({{"7", "70", "cyan"}}));
  }
}

TEST_F(PerfDocument, AChartWithoutTitleLosesItsTitleAndAllBars) {
  write_results(0x100,
                "<chart option=\"--opt_level\" valueLabel=\"v\">"
                "<bar option_value=\"7\" value=\"70\" color=\"cyan\"/></chart>");
  plain_run();
  EXPECT_EQ(chart_attribute("option"), "--opt_level");
  EXPECT_EQ(chart_attribute("title"), "");
  EXPECT_EQ(chart_attribute("valueLabel"), "Code Size (bytes)");
  EXPECT_TRUE(bars_in_file().empty());
}

TEST_F(PerfDocument, AnUnparsableDocumentOrOneWithoutChartGetsTheDefaultChart) {
  for (const char* content : {"<body><version>1</version><chart option=\"x\"",
                              "<body><timestamp>0x1</timestamp><bar option_value=\"7\" "
                              "value=\"70\" color=\"cyan\"/></body>"}) {
    SCOPED_TRACE(content);
    write_file(results_path, content);
    plain_run();
    EXPECT_EQ(chart_attribute("option"), "--opt_for_speed");
    EXPECT_EQ(chart_attribute("title"), "Vary Size vs Speed Setting");
    EXPECT_TRUE(bars_in_file().empty());
  }
}

TEST_F(PerfDocument, FilesNestedDeeperThanTheReaderTakesAreEmptyDocuments) {
  plain_run();
  const std::string first_results = read_file(results_path), first_advice = read_file(advice_path);
  std::string deep;
  for (int level = 0; level < 30000; ++level)
    deep += "<body>";
  for (const std::string& path : {link_path, advice_path, results_path})
    write_file(path, deep);
  plain_run();
  EXPECT_EQ(read_file(results_path), first_results);
  EXPECT_EQ(read_file(advice_path), first_advice);
}

}  // namespace
