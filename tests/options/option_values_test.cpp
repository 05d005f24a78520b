// The option a spelling names and the values its table lists, on the compiler
// shell's table.
#include <gmock/gmock.h>

#include "options/option_values.h"
#include "options/optobj_shell.h"

namespace {

using S = option_obj_shell;
using ::testing::ElementsAreArray;

TEST(OptionValues, SpellingsAndListedValues) {
  const struct {
    const char* spelling;
    int id;  // -1: no option is spelled so
    std::vector<std::string> values;
  } cases[] = {
      {"-mf", S::OPT_FOR_SPEED, {"0", "1", "2", "3", "4", "5"}},
      {"--OPT_LEVEL", S::OPT_LEVEL, {"off", "0", "1", "2", "3", "4"}},
      {"--perf_info", S::PERF_INFO, {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}},
      {"--silicon_version", S::SILICON_VERSION, {"28"}},                  // deprecated 27 left out
      {"--zvec_support", S::V_ZVEC_SUPPORT, {"zvec0", "zvec2", "zcrc"}},  // unlisted left out
      {"--align_for_speed", S::ALIGN_FOR_SPEED, {}},                      // a number without bounds
      {"--output_file", S::OUTPUT_FILE, {}},
      {"--keep_asm", S::KEEP_ASM, {}},
      {"--opt_for_speed=3", -1, {}},
      {"opt_level", -1, {}},
      {"-", -1, {}},
  };
  for (const auto& c : cases) {
    const int id = option_spelled(S::table_data, c.spelling);
    EXPECT_EQ(id, c.id) << c.spelling;
    EXPECT_THAT(enumerated_values(S::table_data, id), ElementsAreArray(c.values)) << c.spelling;
  }
}

}  // namespace
