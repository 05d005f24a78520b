// Handing the history on to a tool's command line, with the synthetic
// table's targets: ALPHA to asmzorv, ALPHA_BETA and NAMES to lnkzorv, MODE
// to embedded_options and twice to lnkzorv, NUMBER to embedded_options.
#include <string>
#include <vector>

#include "UTIL/runcmd.h"
#include "test_family.h"

namespace {

using T = option_obj_test;
using args = std::vector<std::string>;

class Tools : public test_table_fixture {
 protected:
  args line_for(const char* tool, std::vector<int> include = {0}, std::vector<int> exclude = {}) {
    argv_list list(tool, nullptr, 0);
    list.add("first");  // what the list held before stays first
    opts.add_opts_for_tool(list, std::move(include), std::move(exclude));
    return list.args;
  }
};

TEST_F(Tools, UnknownCommandAddsNothingAndCountsOneError) {
  diag_capture capture;
  run("-alpha");
  argv_list list("nosuchtool", nullptr, 0);
  opts.add_opts_for_tool(list);
  EXPECT_TRUE(list.args.empty());
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_NE(capture.text().find("Cannot find tool type with command \"nosuchtool\". Is the "
                                "command defined in the tooldef?"),
            std::string::npos);
}

TEST_F(Tools, EachToolGetsItsOwnTextsInTheOrderOfTheHistory) {
  run("-number=5");
  run("-names=a");
  run("-mode=fast");
  run("-names=b");
  run("-alpha");
  run("-number=7");  // a single-valued option goes once, where it was set last
  run("-zip=z");     // handed on to no tool
  EXPECT_EQ(line_for("lnkzorv"),
            (args{"first", "--name=a", "-m=fast", "--speed=fast", "--name=b"}));
  EXPECT_EQ(line_for("embedded_options"), (args{"first", "--mode=fast", "--number=7"}));
  EXPECT_EQ(line_for("asmzorv"), (args{"first", "--alpha"}));
  EXPECT_EQ(line_for("hexzorv"), args{"first"});
  EXPECT_EQ(opts.error_count, 0);
}

TEST_F(Tools, FileEntriesGoToTheirOwnToolOnly) {
  opts.addfileopt("main.obj", "lnkzorv");
  run("-names=a");
  opts.addfileopt("start.asm", "asmzorv");
  opts.addfileopt("data.obj", "lnkzorv");
  EXPECT_EQ(line_for("lnkzorv"), (args{"first", "main.obj", "--name=a", "data.obj"}));
  EXPECT_EQ(line_for("asmzorv"), (args{"first", "start.asm"}));
  // embedded_options has no file option of its own
  EXPECT_EQ(line_for("embedded_options"), args{"first"});
}

TEST_F(Tools, ClassesSelectWhatIsHandedOn) {
  run("-alpha_beta=w");  // classes 1 and 2
  run("-names=a");       // class 2
  run("-mode=safe");     // no class
  opts.addfileopt("main.obj", "lnkzorv");
  EXPECT_EQ(line_for("lnkzorv", {1}, {}), (args{"first", "--alpha_beta=w"}));
  EXPECT_EQ(line_for("lnkzorv", {2, 1}, {1}), (args{"first", "--name=a"}));
  argv_list all_but("lnkzorv", nullptr, 0);
  opts.add_opts_for_tool(all_but, {2});
  EXPECT_EQ(all_but.args, (args{"-m=safe", "--speed=safe", "main.obj"}));
}

TEST_F(Tools, AnOptionWithAnEmptyTargetListGoesNowhere) {
  for (int tool = T::tn_abszorv; tool <= T::tn_xrefzorv; ++tool)
    EXPECT_TRUE(opts.passto(T::INTERNAL_ROW, static_cast<T::tool_name>(tool), {0, "x"}).empty());
  EXPECT_EQ(opts.passto(T::NUMBER, T::tn_embedded_options, {0, ""}), args{"--number"});
}

}  // namespace
