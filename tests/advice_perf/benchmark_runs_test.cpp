// Benchmark series: each event is one run over the files that the run before
// it left, as the development environment drives them.
#include "tests/advice_perf/perf_fixture.h"
#include "tests/util/capture.h"

namespace {

using entry_row = attribute_row;  // diag_code, advice_type, value

class BenchmarkRun : public perf_fixture {
 protected:
  // All documents written by this process bear this time.
  const uint64_t now = new_timestamp();

  void start(const std::string& option) {
    run({"--benchmark:event=start", "--benchmark:option=" + option});
  }
  // An append or end event for the build whose link file stands ready.
  void build(const std::string& event, const std::string& option, const std::string& value,
             const tokens& shell = {}) {
    run({"--benchmark:event=" + event, "--benchmark:option=" + option,
         "--benchmark:option_value=" + value},
        shell);
  }
  // A build linked now with the given size and error count.
  void speed_build(const std::string& event, const std::string& value, uint32_t size,
                   int errors = 0, const tokens& shell = {}) {
    write_link(now, errors, size);
    build(event, "--opt_for_speed", value, shell);
  }

  // An advice document holding a proposal and an older series result.
  void write_advice_with_series_entries() {
    write_file(advice_path,
               "<body><version>1</version><timestamp>0x1</timestamp>"
               "<link_advice_flag>true</link_advice_flag>"
               "<advice diag_code=\"27010\" advice_type=\"build_run\" option=\"\" value=\"\" "
               "action=\"runTunewise\">proposal</advice>"
               "<advice diag_code=\"27011\" advice_type=\"build_results\" "
               "option=\"--opt_for_speed\" value=\"1\">old result</advice></body>");
  }

  std::vector<entry_row> series_entries() const {
    std::vector<entry_row> rows;
    for (const entry_row& row : advice_in_file())
      if (std::get<1>(row) != "curr_setting") rows.push_back(row);
    return rows;
  }
};

TEST_F(BenchmarkRun, AnEndWhoseBestIsTheGoalLeavesNoResult) {
  write_advice_with_series_entries();
  start("--opt_for_speed");
  speed_build("append", "1", 100);
  speed_build("end", "3", 200, 0, {"--opt_for_speed=3"});
  EXPECT_EQ(bars_in_file(), rows({{"1", "100", "yellow"}, {"3", "200", "green"}}));
  EXPECT_TRUE(series_entries().empty());
}

TEST_F(BenchmarkRun, AnEndWithoutAUsableBarRecommendsAnEmptyValue) {
  speed_build("end", "5", 900, 2);
  EXPECT_EQ(bars_in_file(), rows({{"5", "900", "red"}}));
  EXPECT_EQ(series_entries(), rows({{"27011", "build_results", ""}}));
}

TEST_F(BenchmarkRun, TheLargestCleanBarIsTheOnlyGreenOne) {
  speed_build("append", "1", 500);
  speed_build("append", "2", 800);  // overtakes 1
  EXPECT_EQ(bars_in_file(), rows({{"1", "500", "yellow"}, {"2", "800", "green"}}));
  speed_build("append", "3", 800);      // equal size: the later key wins
  speed_build("append", "4", 5000, 1);  // larger, but red
  EXPECT_EQ(bars_in_file(), rows({{"1", "500", "yellow"},
                                  {"2", "800", "yellow"},
                                  {"3", "800", "green"},
                                  {"4", "5000", "red"}}));
  speed_build("append", "4", 700);  // rebuilt without errors under the same key
  EXPECT_EQ(bars_in_file(), rows({{"1", "500", "yellow"},
                                  {"2", "800", "yellow"},
                                  {"3", "800", "green"},
                                  {"4", "700", "yellow"}}));
}

TEST_F(BenchmarkRun, ABarNeedsANewLinkWithCode) {
  write_results(0x100, "<chart option=\"--opt_for_speed\" title=\"t\" valueLabel=\"v\"/>");
  write_link(0xff, 0, 100);  // linked before the document's last write
  build("append", "--opt_level", "1");
  EXPECT_TRUE(bars_in_file().empty());

  write_results(0x100, "<chart option=\"--opt_level\" title=\"t\" valueLabel=\"v\"/>");
  write_link(0x100, -1, 100);  // same second; an unknown error count is no error
  build("append", "--opt_level", "1");
  EXPECT_EQ(bars_in_file(), rows({{"1", "100", "cyan"}}));

  write_link(now, 0, 0);  // a link without code
  build("append", "--opt_level", "2");
  EXPECT_EQ(bars_in_file(), rows({{"1", "100", "cyan"}}));

  std::filesystem::remove(link_path);  // no link information at all
  build("end", "--opt_level", "3");
  EXPECT_EQ(bars_in_file(), rows({{"1", "100", "cyan"}}));
}

TEST_F(BenchmarkRun, ALevelSeriesDrawsCyanAndRedBarsAndGivesNoAdvice) {
  write_advice_with_series_entries();
  start("--opt_level");
  EXPECT_EQ(chart_attribute("option"), "--opt_level");
  EXPECT_EQ(chart_attribute("title"), "Vary Optimization Level");
  write_link(now, 0, 300);
  build("append", "--opt_level", "not a level");
  write_link(now, 3, 400);
  build("end", "--opt_level", "off");
  EXPECT_EQ(bars_in_file(), rows({{"not a level", "300", "cyan"}, {"off", "400", "red"}}));
  EXPECT_EQ(series_entries(), rows({{"27010", "build_run", ""}, {"27011", "build_results", "1"}}));
}

TEST_F(BenchmarkRun, TheOptionNameIsMatchedExactlyForLevelAndInAnyCaseForSpeed) {
  write_link(now, 0, 300);
  build("append", "--OPT_LEVEL", "1");
  EXPECT_EQ(chart_attribute("option"), "--opt_for_speed");
  EXPECT_EQ(bars_in_file(), rows({{"1", "300", "cyan"}}));

  build("end", "--OPT_FOR_SPEED", "2", {"--opt_for_speed=1"});
  EXPECT_EQ(bars_in_file(), rows({{"1", "300", "yellow"}, {"2", "300", "green"}}));
  EXPECT_EQ(series_entries(), rows({{"27011", "build_results", "2"}}));
}

TEST_F(BenchmarkRun, OnlyStartClearsTheBarsEvenWhenTheOptionChanges) {
  speed_build("append", "1", 100);
  start("--opt_for_speed");
  start("--opt_for_speed");
  EXPECT_TRUE(bars_in_file().empty());

  speed_build("append", "1", 100);
  write_link(now, 0, 200);
  build("append", "--opt_level", "2");
  EXPECT_EQ(chart_attribute("option"), "--opt_level");
  EXPECT_EQ(bars_in_file(), rows({{"1", "100", "green"}, {"2", "200", "cyan"}}));
  // A speed build afterwards turns the other series' bars yellow as well.
  speed_build("append", "3", 150);
  EXPECT_EQ(bars_in_file(),
            rows({{"1", "100", "yellow"}, {"2", "200", "green"}, {"3", "150", "yellow"}}));
}

TEST_F(BenchmarkRun, AnIncompleteEventIsRefusedAndLeavesTheChartAlone) {
  write_results(0x100,
                "<chart option=\"--opt_level\" title=\"t\" valueLabel=\"v\">"
                "<bar option_value=\"3\" value=\"5\" color=\"cyan\"/></chart>");
  write_link(now, 0, 100);
  const struct {
    tokens args;
    const char* message;
  } incomplete[] = {
      {{"--benchmark:event=start"},
       ">> Aborting - --benchmark:event=start requires --benchmark:option=option_to_vary\n"},
      {{"--benchmark:event=append", "--benchmark:option=--opt_for_speed"},
       ">> Aborting - --benchmark:event=append/end requires --benchmark:option=option_to_vary "
       "and --benchmark:option_value=option_setting\n"},
      {{"--benchmark:event=end", "--benchmark:option_value=2"},
       ">> Aborting - --benchmark:event=append/end requires --benchmark:option=option_to_vary "
       "and --benchmark:option_value=option_setting\n"},
  };
  const auto errors_before = DIAGNOSTIC::error_count_m;
  for (const auto& call : incomplete) {
    SCOPED_TRACE(call.args.front());
    EXPECT_EQ(capture_output(stderr, [&] { run(call.args); }), call.message);
    EXPECT_EQ(chart_attribute("option"), "--opt_level");
    EXPECT_EQ(chart_attribute("title"), "t");
    EXPECT_EQ(bars_in_file(), rows({{"3", "5", "cyan"}}));
    EXPECT_TRUE(series_entries().empty());
  }
  EXPECT_EQ(DIAGNOSTIC::error_count_m, errors_before);
}

}  // namespace
