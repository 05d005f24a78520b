#include "UTIL/version.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "UTIL/buildid.h"
#include "capture.h"

namespace {

TEST(Version, ComposedTexts) {
  const std::pair<const char* (*)(), const char*> texts[] = {
      {isa_tool_and_version_short, "ZORVEX Advice and Performance results utility Unix v25.11.0"},
      {isa_tool_and_version_full,
       "ZORVEX Advice and Performance results utility Unix v25.11.0.LTS"},
      {os_and_version_short, "Unix v25.11.0"},
      {os_and_version_full, "Unix v25.11.0.LTS"},
      {isa_and_tool_name, "ZORVEX Advice and Performance results utility"}};
  for (const auto& [text, expected] : texts)
    EXPECT_STREQ(text(), expected);
}

// Known branch prefixes ignore case; "9" and "Z" are doubled, separators kept; four steps.
TEST(BuildId, EncodesDayHourAndBranch) {
  const char* const cases[][4] = {
      {"Nov 17 2025", "12:09:29", "Main", "1ZLHM-E1I-CCCCC-WAR-MN"},
      {"Nov  9 2025", "00:00:00", "Main", "1ZL9A-E1I-CCCCC-WAR-MN"},
      {"Jan 10 2026", "24:00:00", "Main", "1ZLAA-E1I-CCCCC-WAR-MN"},
      {"Nov 17 2025", "12:09:29", "RELEASE_9z", "1ZLHM-E1I-CCCCC-WAR-RL_Z9ZZ"},
      {"Nov 17 2025", "12:09:29", "rel.kx", "1ZLHM-E1I-CCCCC-WAR-RE.AN"},
      {"Nov 17 2025", "12:09:29", "j!0ab", "1ZLHM-E1I-CCCCC-WAR-9%Q0"}};
  for (const auto& [date, time, branch, id] : cases)
    EXPECT_EQ(write_to_string([&](FILE* out) { write_buildid(out, "L ", date, time, branch); }),
              std::string("L ") + id + "\n");
  EXPECT_EQ(capture_output(stdout, [] { write_buildid(nullptr, nullptr, "", "", "x"); }),
            "1ZL0A-E1I-CCCCC-WAR-N\n");  // stdout, no label, and short stamps count as 0
}

}  // namespace
