// The build's optimisation level and size/speed goal, as the shell options of
// a command file leave them once the options are post-processed.
#include "ADVICE_PERF/build_settings.h"
#include "ADVICE_PERF/driver.h"
#include "options/optobj_shell.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using settings = std::pair<int, int>;  // level, goal

// Scans the tokens (as they stand in a command file) into a fresh shell
// option object and reads both settings back.
settings settings_after(const std::vector<const char*>& tokens) {
  option_obj_shell options(true);
  global_options = &options;
  for (const char* token : tokens)
    EXPECT_EQ(options.process_option(token + 1, nullptr), 1) << token;
  options.post_process_option_depends();
  const settings result{opt_level(), size_speed_goal()};
  global_options = nullptr;
  return result;
}

TEST(BuildSettings, LevelAndGoalFromTheTokensThatSetThem) {
  const std::pair<std::vector<const char*>, settings> cases[] = {
      {{"-O"}, {2, 2}},
      {{"-o0"}, {0, 2}},
      {{"-O3", "--no_high_level_opt"}, {-1, 2}},
      {{"--no_high_level_opt", "-O3"}, {3, 2}},
      {{"--opt_for_speed"}, {-1, 4}},
      {{"--opt_for_speed=1"}, {-1, 1}},
      {{"--opt_for_space"}, {-1, 0}},
      {{"--size_speed_goal=LOW_RISK_PERFORMANCE"}, {-1, 3}},
      {{"-ms", "--opt_for_speed=3"}, {-1, 3}},
  };
  for (const auto& [tokens, expected] : cases)
    EXPECT_EQ(settings_after(tokens), expected) << testing::PrintToString(tokens);
}

}  // namespace
