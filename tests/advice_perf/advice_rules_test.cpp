// The rules that fill the advice document, run over documents in a temporary
// directory with the build's options scanned from tokens.
#include "ADVICE_PERF/build_settings.h"
#include "tests/advice_perf/perf_fixture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace {

// What one run left in the advice object.
struct advice_state {
  ADVICE::entry_map entries;
  bool link_advice_flag;
};

class AdviceRules : public perf_fixture {
 protected:
  // One run of the advice document alone: read, update, write.
  advice_state advice_run(tokens shell) {
    scan_options({}, shell);
    LINK_DATA link(link_path.c_str());
    ADVICE advice(advice_path.c_str(), link);
    advice.update();
    advice.output();
    return {advice.get_entries(), advice.get_link_advice_flag()};
  }

  // An advice document last written at the given time, with the given entries.
  void write_advice(uint64_t timestamp, const std::string& inside = "") {
    write_file(advice_path, "<body><version>1</version><timestamp>" +
                                convert<std::string>(timestamp) + "</timestamp>" + inside +
                                "</body>");
  }
};

const char* const debug_note = " NOTE: debug ability will decrease.";

TEST_F(AdviceRules, TheLevelAdviceFollowsLevelAndDebugInformation) {
  auto expect_advice = [&](tokens shell, const std::string& code, const std::string& text,
                           const char* value) {
    std::filesystem::remove(advice_path);
    const advice_state state = advice_run(shell);
    auto entry = state.entries.find(code);
    ASSERT_NE(entry, state.entries.end()) << code;
    EXPECT_EQ(entry->second,
              (ADVICE_INFO{"opt_setting", "--opt_level", value, "advice #" + code + "-D: " + text,
                           "gotoBuildOption:--opt_level"}));
  };
  const std::string none =
      "Detecting compilation without optimization. Recommend setting --opt_level=3.";
  const std::string low =
      "Detecting compilation with low optimization. Recommend setting --opt_level=3.";
  const std::string three =
      "Detecting compilation at optimization level 3. Recommend setting --opt_level=4. NOTE: "
      "Compilation time will increase";
  expect_advice({}, "27007", none + debug_note, "3");
  expect_advice({"-Ooff", "--symdebug:none"}, "27007", none, "3");
  expect_advice({"-O0"}, "27008", low + debug_note, "3");
  expect_advice({"-O2", "--symdebug:none"}, "27008", low, "3");
  expect_advice({"-O3"}, "27009", three + " and debug ability will decrease.", "4");
  expect_advice({"-O3", "--symdebug:none"}, "27009", three + ".", "4");
}

TEST_F(AdviceRules, NoProposalForAnOldLinkAFailedLinkOrTheFastestGoal) {
  const uint64_t written = 0x5000;
  auto proposes = [&](uint64_t link_time, int errors, tokens shell) {
    write_advice(written);
    write_link(link_time, errors, 0x100);
    const advice_state state = advice_run(shell);
    EXPECT_EQ(state.link_advice_flag, state.entries.count("27010") == 1);
    return state.link_advice_flag;
  };
  EXPECT_FALSE(proposes(written - 1, 0, {}));
  EXPECT_FALSE(proposes(written, 1, {}));
  EXPECT_FALSE(proposes(written, -1, {}));
  EXPECT_FALSE(proposes(written + 1, 0, {"--opt_for_speed=5"}));
  EXPECT_TRUE(proposes(written + 1, 0, {"--opt_for_speed=4"}));

  std::filesystem::remove(link_path);
  std::filesystem::remove(advice_path);
  EXPECT_FALSE(advice_run({}).link_advice_flag);
}

TEST_F(AdviceRules, TheSeriesResultGoesOnceTheBuildUsesItsValue) {
  const std::string result =
      "<advice diag_code=\"27011\" advice_type=\"build_results\" option=\"--opt_for_speed\" "
      "value=\"4\">r</advice>";
  write_advice(1, result);
  EXPECT_EQ(advice_run({"-O4", "--opt_for_speed=3"}).entries.count("27011"), 1u);
  EXPECT_EQ(advice_run({"-O4", "--opt_for_speed=4"}).entries.count("27011"), 0u);
  // An empty value matches no goal.
  write_advice(1,
               "<advice diag_code=\"27011\" advice_type=\"build_results\" option=\"o\" "
               "value=\"\">r</advice>");
  EXPECT_EQ(advice_run({"-O4"}).entries.count("27011"), 1u);
}

}  // namespace
