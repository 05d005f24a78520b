// The documents' rules that no end-to-end case reaches: odd numbers, deep or
// damaged files, the link's code size, series, refused events, stale links.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/driver.h"
#include "ADVICE_PERF/file_text.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"
#include "ADVICE_PERF/xml_read.h"
#include "DIAG/diag.h"
#include "options/optobj.h"
#include "options/optobj_shell.h"
#include "tests/util/capture.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using tokens = std::vector<std::string>;

// The results an iostream set to hex | showbase gives, odd inputs included.
TEST(Convert, ReadsAndWritesAsAHexStreamDoes) {
  const struct {
    const char* text;
    int32_t as_int32;
    uint64_t as_uint64;
  } cases[] = {
      {"0x10", 16, 0x10},
      {"10", 16, 0x10},
      {"0X1F", 31, 0x1f},
      {"-1", -1, ~uint64_t{0}},
      {"+7", 7, 7},
      {"12g3", 18, 0x12},
      {" 1", 0, 0},
      {"+-1", 0, 0},
      {"0x0x5", 0, 0},
      {"80000000", INT32_MAX, 0x80000000},
      {"-80000001", INT32_MIN, 0xffffffff7fffffff},
      {"-8000000000000001", INT32_MIN, 0x7fffffffffffffff},  // below the long read in between
      {"10000000000000000", INT32_MAX, ~uint64_t{0}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(convert<int32_t>(std::string(c.text)), c.as_int32) << c.text;
    EXPECT_EQ(convert<uint64_t>(std::string(c.text)), c.as_uint64) << c.text;
  }
  EXPECT_EQ(convert<std::string>(uint64_t{0}), "0");
  EXPECT_EQ(convert<std::string>(int32_t{-2}), "0xfffffffe");
}

// Nesting up to the bound is read, deeper is not, counted as the parser nests:
// past what comments, sections, declarations, a document type and attribute values hold, and
// closed elements count no more. Endless devices and directories are empty at once.
TEST(ReadXmlFile, NestingAndEndlessInputAreBounded) {
  TempDir dir;
  const std::string path = dir.file("nested.xml");
  const auto nested = [](int depth, const std::string& level_text) {
    std::string open, close;
    for (int level = 0; level < depth; ++level)
      open += "<a x =\"/>a\" y= '>'>" + level_text, close += "</a >";
    return open + close;
  };
  const std::string inside = "<!--<b>--><![CDATA[<c>]]><?p <d>?><!ELEMENT[<e>><f/>text<![CDATA[]]>";
  const std::pair<std::string, bool> cases[] = {
      {nested(max_xml_depth, inside), true},
      {"<?\?>" + nested(max_xml_depth + 1, inside), false},
      {"<!DOCTYPE a [<!ENTITY g \"[]></y>\">]>" + nested(max_xml_depth + 1, ""), false},
      {"<r>" + nested(1, "") + nested(max_xml_depth - 1, "") + "</r>", true},
      {"<r>" + nested(1, "") + nested(max_xml_depth, "") + "</r>", false},
      {"<a x=\"1\"", false},
      {"<r><!--->" + nested(max_xml_depth + 1, "") + "--></r>", true},  // a comment's end: "-->"
  };
  for (const auto& [xml, readable] : cases) {
    write_file(path, xml);
    EXPECT_EQ(read_xml_file(path.c_str()).empty(), !readable) << xml.substr(0, 30);
  }
  EXPECT_FALSE(nested_too_deep(("<a !>" + nested(max_xml_depth + 1, "")).c_str()));  // an error
  EXPECT_TRUE(read_xml_file("/dev/zero").empty());
  EXPECT_TRUE(read_xml_file(dir.path().c_str()).empty());
}

// One size rule for regular files and pipes: more than the limit before the
// first NUL byte is too much, and a NUL ends the text.
TEST(LoadFileText, RegularFilesAndPipesShareOneSizeRule) {
  TempDir dir;
  const std::string path = dir.file("text"), x100(100, 'x');
  const std::pair<std::string, bool> cases[] = {
      {x100, true}, {x100 + "x", false}, {x100 + '\0' + x100 + x100, true}, {"", true}};
  for (const auto& [content, fits] : cases) {
    write_file(path, content);
    int ends[2];  // the pipe gets the text in two writes 20 ms apart, so it is read in parts
    const size_t half = content.size() / 2;
    ASSERT_TRUE(pipe(ends) == 0 && write(ends[1], content.data(), half) >= 0);
    std::thread rest([&] {
      usleep(20000);
      EXPECT_GE(write(ends[1], content.data() + half, content.size() - half), 0);
      close(ends[1]);
    });
    for (const std::string& source : {path, "/proc/self/fd/" + std::to_string(ends[0])}) {
      FILE_TEXT file;
      EXPECT_EQ(load_file_text(source.c_str(), file, 100), fits) << content << " in " << source;
      EXPECT_TRUE(!fits || std::string(file.text.get(), file.size) == content.c_str()) << source;
    }
    rest.join(), close(ends[0]);
  }
  FILE_TEXT file;
  EXPECT_FALSE(load_file_text("/proc/self/mem", file));  // a read that fails
  // Without standard input the file is opened as descriptor 0, and closed again.
  EXPECT_TRUE((close(0), load_file_text(path.c_str(), file)) && close(0) == -1);
}

// Moves on at every reading: only a time read once per run keeps both documents on one stamp.
uint64_t clock_now;

class Documents : public ::testing::Test {
 protected:
  TempDir dir;
  const std::string results_path = dir.file("perf.xml");
  const std::string advice_path = dir.file("advice.xml");
  const std::string link_path = dir.file("link.xml");

  void SetUp() override {
    DIAGNOSTIC::wrap_enabled_m = false;
    clock_now = 0x1000;
    set_timestamp_clock([] { return clock_now++; });
  }
  void TearDown() override {
    cmdline_options = nullptr;
    global_options = nullptr;
    set_timestamp_clock(nullptr);
  }

  // One invocation with the tool's own options and the build's shell options.
  void run(const tokens& tool, const tokens& shell = {}) {
    option_obj tool_options(true);
    option_obj_shell shell_options(true);
    cmdline_options = &tool_options;
    global_options = &shell_options;
    for (const std::string& token : tool)
      ASSERT_NE(cmdline_options->process_option(token.c_str() + 1, nullptr), 0) << token;
    for (const std::string& token : shell)
      ASSERT_NE(global_options->process_option(token.c_str() + 1, nullptr), 0) << token;
    global_options->post_process_option_depends();
    cmdline_options->post_process_option_depends();
    const LINK_DATA link_data(link_path.c_str());
    ADVICE advice(advice_path.c_str(), link_data);
    PERF_RESULTS results(results_path.c_str(), link_data, &advice);
    advice.update();
    results.update();
    results.output();
    advice.output();
  }

  // The linker's file: groups as (size, name, component), the error count and the
  // time of the link, by default the second of the runs.
  uint32_t link(const std::string& components, const std::string& groups, int errors = 0,
                uint64_t time = new_timestamp()) {
    write_file(link_path, "<link_info><link_time>" + convert<std::string>(time) +
                              "</link_time><link_errors>" + std::to_string(errors) +
                              "</link_errors><object_component_list>" + components +
                              "</object_component_list><logical_group_list>" + groups +
                              "</logical_group_list></link_info>");
    return LINK_DATA(link_path.c_str()).get_code_size();
  }
  int groups = 0;
  // A group of the components whose one-letter ids refs holds.
  std::string group(const char* size, const char* name, const std::string& refs) {
    std::string xml = "<logical_group id=\"g" + std::to_string(++groups) + "\"><size>" + size +
                      "</size><name>" + name + "</name><contents>";
    for (const char id : refs)
      xml += "<object_component_ref idref=\"" + std::string(1, id) + "\"/>";
    return xml + "</contents></logical_group>";
  }
  // One build of a series: a link with size bytes of code, then the run of its event.
  void build(const std::string& event, const std::string& option, const std::string& value,
             uint32_t size, int errors = 0, uint64_t time = new_timestamp()) {
    link("<object_component id=\"a\"/>", group(convert<std::string>(size).c_str(), ".text", "a"),
         errors, time);
    run({"--benchmark:event=" + event, "--benchmark:option=" + option,
         "--benchmark:option_value=" + value});
  }

  // The bars of the results document as "option_value:value:color ...".
  std::string bars() const {
    const PERF_RESULTS results(results_path.c_str());
    std::string text;
    for (const auto& [key, bar] : results.get_bars())
      text += key + ":" + std::to_string(bar.value) + ":" + bar.color + " ";
    return text;
  }
  CHART_INFO chart() const { return PERF_RESULTS(results_path.c_str()).get_chart(); }
};

// Initialized non-debug groups count, each judged by its smallest component
// id; sizes are signed and the sum wraps at 32 bits.
TEST_F(Documents, CodeSizeOfTheLink) {
  const std::string components =
      "<object_component id=\"z\"/><object_component id=\"b\"><uninitialized>true</uninitialized>"
      "</object_component><object_component id=\"c\"><uninitialized>0</uninitialized>"
      "</object_component>";
  EXPECT_EQ(link(components, group("0x100", ".text", "z") + group("100", ".data", "c") +
                                 group("0x1000", ".bss", "b") +
                                 group("0x1000", ".debug_info", "z") + group("0x8", ".debu", "c")),
            0x208u);
  EXPECT_EQ(link(components, group("0x40", ".data", "zb")), 0u);
  EXPECT_EQ(link(components, group("0x7fffffff", ".text", "z") + group("0x7fffffff", ".text", "z") +
                                 group("3", ".text", "z")),
            1u);
  EXPECT_EQ(link(components, group("0xffffffff", ".text", "z")), 0x7fffffffu);
}

TEST_F(Documents, ALevelSeriesDrawsCyanAndRedBarsAndAnIncompleteEventIsRefused) {
  run({"--benchmark:event=start", "--benchmark:option=--opt_level"});
  build("append", "--opt_level", "1", 1);
  build("end", "--opt_level", "off", 400, 3);
  EXPECT_EQ(capture_output(stderr, [&] { run({"--benchmark:event=start"}); }),
            ">> Aborting - --benchmark:event=start requires --benchmark:option=option_to_vary\n");
  EXPECT_EQ(chart().option, "--opt_level");
  EXPECT_EQ(bars(), "1:1:cyan off:400:red ");
}

// In a speed series the largest bar of a link without errors is the one green
// bar; of two equal ones the later key; a key built again replaces its bar; a
// new series starts empty.
TEST_F(Documents, TheLargestCleanBarIsTheOnlyGreenOne) {
  build("append", "--opt_for_speed", "1", 500);
  build("append", "--opt_for_speed", "2", 800);
  build("append", "--opt_for_speed", "3", 800);
  build("append", "--opt_for_speed", "4", 5000, 1);
  EXPECT_EQ(bars(), "1:500:yellow 2:800:yellow 3:800:green 4:5000:red ");
  build("append", "--opt_for_speed", "4", 700, -1);  // a link without an error count is clean
  EXPECT_EQ(bars(), "1:500:yellow 2:800:yellow 3:800:green 4:700:yellow ");
  run({"--benchmark:event=start", "--benchmark:option=--opt_for_speed"});
  EXPECT_EQ(bars(), "");
}

// A link older than the documents' last write belongs to an earlier build: no bar, no series
// proposed. One of that same second does, unless without error count or at the fastest goal.
TEST_F(Documents, ALinkOlderThanTheDocumentsIsIgnored) {
  run({});  // both documents written at 0x1000
  build("append", "--opt_level", "1", 300, 0, 0xfff);
  build("append", "--opt_level", "2", 400, 0, 0x1000);
  EXPECT_EQ(bars(), "2:400:cyan ");
  const std::tuple<int, uint64_t, int, bool> cases[] = {
      {0, 0xfff, 4, false}, {-1, 0x1000, 4, false}, {0, 0x1000, 5, false}, {0, 0x1000, 4, true}};
  for (const auto& [errors, time, goal, flag] : cases) {
    link("", "", errors, time);
    run({}, {"-mf" + std::to_string(goal)});
    EXPECT_EQ(ADVICE(advice_path.c_str()).get_link_advice_flag(), flag) << time << errors << goal;
  }
}

// A bar that can't be read ends the chart's reading there.
TEST_F(Documents, ReadingBarsStopsAtTheFirstBadOne) {
  write_file(results_path,
             "<body><version>1</version><timestamp>0x1</timestamp><chart option=\"--opt_level\" "
             "title=\"t\" valueLabel=\"v\"><bar option_value=\"7\" value=\"70\" color=\"cyan\"/>"
             "<bar option_value=\"5\" value=\"abc\" color=\"cyan\"/>"
             "<bar option_value=\"0\" value=\"10\" color=\"cyan\"/></chart></body>");
  run({});
  EXPECT_EQ(bars(), "7:70:cyan ");
}

// The level advice: its code and value follow the level, its note the debug information.
TEST_F(Documents, TheLevelAdviceFollowsLevelAndDebugInformation) {
  const std::string recommend3 = "Recommend setting --opt_level=3.",
                    none = "27007 3 Detecting compilation without optimization. " + recommend3,
                    low = "27008 3 Detecting compilation with low optimization. " + recommend3,
                    three =
                        "27009 4 Detecting compilation at optimization level 3. Recommend "
                        "setting --opt_level=4. NOTE: Compilation time will increase",
                    debug = " NOTE: debug ability will decrease.";
  const std::pair<tokens, std::string> cases[] = {
      {{}, none + debug},
      {{"-O0"}, low + debug},
      {{"-O4"}, ""},
      {{"-O3"}, three + " and debug ability will decrease."},
      {{"-O3", "--symdebug:none"}, three + "."},
  };
  for (const auto& [shell, expected] : cases) {
    std::filesystem::remove(advice_path);
    run({}, shell);
    std::string got;
    const ADVICE advice(advice_path.c_str());
    for (const auto& [code, entry] : advice.get_entries())
      if (entry.advice_type == "opt_setting")
        got += code + " " + entry.value + " " + entry.msg.substr(entry.msg.find(": ") + 2);
    EXPECT_EQ(got, expected) << testing::PrintToString(shell);
  }
}

TEST_F(Documents, TheSeriesResultGoesOnceTheBuildUsesItsValue) {
  ADVICE first(advice_path.c_str());
  first.add_advice("27011", "r", "build_results", "--opt_for_speed", "4", "");
  first.output();
  run({}, {"-O4", "--opt_for_speed=3"});
  const ADVICE kept(advice_path.c_str());
  EXPECT_EQ(kept.get_entries().count("27011"), 1u);
  EXPECT_TRUE(kept.get_settings().empty());  // settings are never read back
  EXPECT_FALSE(kept.get_link_advice_flag());
  run({}, {"-O4", "--opt_for_speed=4"});
  EXPECT_EQ(ADVICE(advice_path.c_str()).get_entries().count("27011"), 0u);
  first.output();  // a new speed series drops it too
  run({"--benchmark:event=start", "--benchmark:option=--opt_for_speed"});
  EXPECT_EQ(ADVICE(advice_path.c_str()).get_entries().count("27011"), 0u);
  run({}, {"--opt_for_speed=0"});  // the lowest goal is written as a setting too
  EXPECT_NE(read_file(advice_path).find("--opt_for_speed=0"), std::string::npos);
  EXPECT_EQ((set_timestamp_clock([] { return uint64_t{7}; }), new_timestamp()), 7u);  // a new clock
}

}  // namespace
