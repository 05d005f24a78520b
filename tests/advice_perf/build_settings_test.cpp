// The build's optimisation level and size/speed goal, as the shell options of
// a command file leave them once the options are post-processed.
#include "ADVICE_PERF/build_settings.h"
#include "ADVICE_PERF/driver.h"
#include "options/optobj_shell.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>

namespace {

struct settings {
  int level;
  int goal;
};

// Scans the tokens (as they stand in a command file) into a fresh shell
// option object and reads both settings back.
settings settings_after(std::initializer_list<const char*> tokens) {
  auto options = std::make_unique<option_obj_shell>(true);
  global_options = options.get();
  for (const char* token : tokens)
    EXPECT_EQ(options->process_option(token + 1, nullptr), 1) << token;
  options->post_process_option_depends();
  settings result{opt_level(), size_speed_goal()};
  global_options = nullptr;
  return result;
}

TEST(build_settings, a_build_without_settings_is_unoptimised_with_the_default_goal) {
  settings s = settings_after({});
  EXPECT_EQ(s.level, -1);
  EXPECT_EQ(s.goal, 2);
}

TEST(build_settings, optimisation_level_in_every_spelling) {
  EXPECT_EQ(settings_after({"-O"}).level, 2);
  EXPECT_EQ(settings_after({"-O3"}).level, 3);
  EXPECT_EQ(settings_after({"-o0"}).level, 0);
  EXPECT_EQ(settings_after({"--opt_level=4"}).level, 4);
  EXPECT_EQ(settings_after({"--opt_level=1"}).level, 1);
  EXPECT_EQ(settings_after({"-Ooff"}).level, -1);
  EXPECT_EQ(settings_after({"-O3", "--no_high_level_opt"}).level, -1);
  EXPECT_EQ(settings_after({"--no_high_level_opt", "-O3"}).level, 3);
}

TEST(build_settings, size_speed_goal_from_the_options_that_fill_it) {
  EXPECT_EQ(settings_after({"--opt_for_speed"}).goal, 4);
  EXPECT_EQ(settings_after({"--opt_for_speed=1"}).goal, 1);
  EXPECT_EQ(settings_after({"--opt_for_speed=0"}).goal, 0);
  EXPECT_EQ(settings_after({"-mf2"}).goal, 2);
  EXPECT_EQ(settings_after({"-mf5"}).goal, 5);
  EXPECT_EQ(settings_after({"--opt_for_space"}).goal, 0);
  EXPECT_EQ(settings_after({"-ms"}).goal, 0);
  EXPECT_EQ(settings_after({"--size_speed_goal=medium_risk_size"}).goal, 1);
  EXPECT_EQ(settings_after({"--size_speed_goal=LOW_RISK_PERFORMANCE"}).goal, 3);
  EXPECT_EQ(settings_after({"-ms", "--opt_for_speed=3"}).goal, 3);
}

}  // namespace
