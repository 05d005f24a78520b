#include "test_family.h"

#define OO_TABLE_INC "options/engine_test.inc"
#define OO_FAMILY option_obj_test
#define OO_OPEN_CMD_FILE nullptr
#define OO_PRINT_USAGE nullptr
#include "options/table_builder.h"

option_obj_test::option_obj_test(bool with_defaults) : option_engine(table_data) {
  if (with_defaults) set_defaults();
}

void expect_facts(const option_engine& options, const option_facts& facts) {
  for (const auto& [id, state, args] : facts) {
    EXPECT_EQ(options.option_state[id], state) << "option " << id;
    std::string joined;
    for (int i = 0; i < options.getargcount(id); ++i)
      joined += std::string(i ? "," : "") + options.getstrarg(id, static_cast<unsigned>(i));
    if (args) {
      EXPECT_EQ(joined, args) << "option " << id;
    }
  }
}
