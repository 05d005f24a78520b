#include "UTIL/version.h"

#include <gtest/gtest.h>

#include <cstring>
#include <regex>
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

std::string buildid_line(const char* date, const char* time, const char* branch = "Main") {
  return write_to_string([&](FILE* out) { write_buildid(out, "L ", date, time, branch); });
}

TEST(BuildId, EncodesDayHourAndBranch) {
  EXPECT_EQ(buildid_line("Nov 17 2025", "12:09:29"), "L 1ZLHM-E1I-CCCCC-WAR-MN\n");
  EXPECT_EQ(buildid_line("Nov  7 2025", "00:00:00"), "L 1ZL7A-E1I-CCCCC-WAR-MN\n");
  EXPECT_EQ(buildid_line("Jan 10 2026", "24:00:00"), "L 1ZLAA-E1I-CCCCC-WAR-MN\n");
  // Known prefixes ignore case; "9" and "Z" are doubled, separators kept; four steps.
  const std::string head = "L 1ZLHM-E1I-CCCCC-WAR-";
  EXPECT_EQ(buildid_line("Nov 17 2025", "12:09:29", "RELEASE_9z"), head + "RL_Z9ZZ\n");
  EXPECT_EQ(buildid_line("Nov 17 2025", "12:09:29", "rel.kx"), head + "RE.AN\n");
  EXPECT_EQ(buildid_line("Nov 17 2025", "12:09:29", "a!cdef"), head + "0%23\n");
}

}  // namespace
