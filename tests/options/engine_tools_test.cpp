// Handing the history on to a tool's command line, by the passto lines of
// engine_test.opt.
#include <string>
#include <vector>

#include "UTIL/runcmd.h"
#include "test_family.h"

namespace {

using T = option_obj_test;
using args = std::vector<std::string>;

using Tools = test_table_fixture;

TEST_F(Tools, EachToolGetsItsOwnTextsFilesAndClassesInTheOrderOfTheHistory) {
  const auto line_for = [this](const char* tool, std::vector<int> include = {0},
                               std::vector<int> exclude = {}) {
    argv_list list(tool, nullptr, 0);
    list.add("first");  // what the list held before stays first
    opts.add_opts_for_tool(list, std::move(include), std::move(exclude));
    return list.args;
  };
  opts.addfileopt("main.obj", "lnkzorv");
  for (const char* token : {"-number=5", "-names=a", "-mode=fast"})
    run(token);
  opts.addfileopt("start.asm", "asmzorv");
  run("-alpha");
  run("-alpha_beta=w");  // classes 1 and 2
  run("-number=7");      // a single-valued option goes once, where it was set last
  run("-zip=z");         // handed on to no tool
  EXPECT_EQ(line_for("lnkzorv"),
            (args{"first", "main.obj", "--name=a", "-m=fast", "--speed=fast", "--alpha_beta=w"}));
  EXPECT_EQ(line_for("embedded_options"), (args{"first", "--mode=fast", "--number=7"}));
  EXPECT_EQ(line_for("asmzorv"), (args{"first", "start.asm", "--alpha"}));
  // Classes select: included ones less excluded ones, or all but the excluded.
  EXPECT_EQ(line_for("lnkzorv", {1}, {}), (args{"first", "--alpha_beta=w"}));
  EXPECT_EQ(line_for("lnkzorv", {2, 1}, {1}), (args{"first", "--name=a"}));
  argv_list all_but("lnkzorv", nullptr, 0);
  opts.add_opts_for_tool(all_but, {2});
  EXPECT_EQ(all_but.args, (args{"main.obj", "-m=fast", "--speed=fast"}));
  // An empty target list goes nowhere; an unknown command adds nothing and counts.
  EXPECT_TRUE(opts.passto(T::INTERNAL_ROW, T::tn_lnkzorv, {0, "x"}).empty());
  EXPECT_EQ(opts.passto(T::NUMBER, T::tn_embedded_options, {0, ""}), args{"--number"});
  diag_capture capture;
  argv_list unknown("nosuchtool", nullptr, 0);
  opts.add_opts_for_tool(unknown);
  EXPECT_TRUE(unknown.args.empty());
  EXPECT_EQ(opts.error_count, 1);  // and nothing before counted
  EXPECT_TRUE(contains(capture.text(),
                       "Cannot find tool type with command \"nosuchtool\". Is "
                       "the command defined in the tooldef?"));
}

}  // namespace
