// State of an option object: history, clearing, classes, conflicts, copies.
#include <cstdlib>

#include "test_family.h"

namespace {

using T = option_obj_test;

using State = test_table_fixture;

// setarg on an unseen option sets it first.
TEST_F(State, StoredValues) {
  for (int bad : {-1, int{T::OPTION_COUNT}})  // ids outside the table are ignored
    opts.setopt(bad), opts.setopt(bad, 1L), opts.setopt(bad, "x"), opts.apply(bad, "x"),
        opts.setarg(bad, 1L), opts.setarg(bad, "x"), opts.clearopt(bad);
  opts.setarg(T::NUMBER, 12L);
  ASSERT_EQ(opts.history.size(), 2u);              // the constructor's default, then NUMBER
  EXPECT_EQ(opts.history.back().second.text, "");  // noted before the value came
  opts.setarg(T::ALPHA_BETA, nullptr);             // a null text does nothing
  opts.setarg(T::ZIP, "z");
  opts.setopt(T::NUMBER, 5L), opts.setopt(T::ZIP);  // set again; ZIP keeps its text
  expect_facts(opts, {{T::NUMBER, 2, "5"}, {T::ALPHA_BETA, 0, ""}, {T::ZIP, 2, "z"}});
  EXPECT_TRUE(opts.history.back().first == T::ZIP && opts.history[1].second.number == 5);
  // Text arguments convert to numbers by radix.
  opts.setopt(T::ALPHA_BETA, "0x10");
  EXPECT_EQ(opts.getnumarg(T::ALPHA_BETA, 0), 16);
  opts.setopt(T::COLOR, "green");
  EXPECT_EQ(opts.getnumarg(T::COLOR, 0), T::ITEM_COLOR_GREEN);
  opts.setarg(T::COLOR, 99L);  // no item has it: printed as the number
  expect_facts(opts, {{T::COLOR, 1, "99"}});
  // get_argument describes the stored values (numbers: the merge tests).
  run("n=one");
  run("n=two");
  an_argument_t arg{argument_signed, {.num = 7}, 2};
  opts.get_argument(T::ALPHA, &arg);
  EXPECT_TRUE(arg.type == argument_missing && arg.value.num == 0 && arg.count == 0);
  opts.get_argument(T::NAMES, &arg);
  ASSERT_EQ(arg.type, argument_list);
  ASSERT_EQ(arg.count, 2u);
  EXPECT_STREQ(arg.value.list[1].value.text, "two");
  std::free(arg.value.list);
}

TEST_F(State, ClassesCountMembersAndClassZeroMeansAll) {
  EXPECT_EQ(std::make_tuple(opts.isclass(T::ZIP, 0), opts.isclass(T::ZIP, 1),
                            opts.isclass(T::ALPHA_BETA, 2), opts.isclass(T::ALPHA, 4),
                            opts.isclass(T::OPTION_COUNT, 0)),
            std::make_tuple(1, 0, 1, 0, 0));
  opts.setopt(T::class_id(1));
  expect_facts(opts, {{T::ALPHA, 1, ""}, {T::ALPHA_BETA, 1, ""}});
  EXPECT_EQ(opts.testclass(1), 2);
  EXPECT_EQ(opts.testclass(0), 0);
  EXPECT_EQ(opts.seenclass(0) + opts.seenclass(4), 0u);  // no column, past the 4 columns
  opts.clearopt(T::class_id(1));
  EXPECT_EQ(opts.testclass(1), 0);
  EXPECT_EQ(opts.seenclass(1), 4u);
}

TEST_F(State, QuietConflictClearsWithoutAWordUnlessDebugging) {
  diag_capture capture;
  run("-quiet_a");
  run("-quiet_b");
  expect_facts(opts, {{T::QUIET_A, 0, ""}, {T::QUIET_B, 1, ""}});
  EXPECT_EQ(capture.text(), "");
  DIAGNOSTIC::remarks_m = true;
  opts.debug = 1;
  capture_output(stdout, [this] { run("-quiet_a"); });  // debug trace lines
  EXPECT_EQ(capture.text(), "remark: option --quiet_a clears preceding option --quiet_b\n");
}

// A copy is deep and starts without history.
TEST_F(State, CopiesAreDeep) {
  run("n=one");
  run("-color=red");
  opts.error_count = 3;
  T copy(opts);
  run("n=two");
  opts.clearopt(T::COLOR), opts.clearopt(T::NAMES);
  run("n=three");  // a cleared list starts anew
  expect_facts(copy, {{T::NAMES, 1, "one"}, {T::COLOR, 1, "red"}});
  copy.process_option("-color=green", nullptr);  // a history of its own: one entry
  EXPECT_EQ(copy.history.size(), 1u);
  EXPECT_EQ(copy.error_count, 0);
  EXPECT_EQ(copy.option_parsed[T::NAMES], 1u);
  // Assignment keeps the target's history and count.
  T target;
  target.process_option("-alpha", nullptr);
  target.process_option("-names=old", nullptr);  // a text the assignment overwrites
  target.error_count = 2;
  run("-color=green");
  opts.debug = 2, opts.merging = true, opts.source_name = "a.cmd", opts.current_option = "x";
  target = opts;
  EXPECT_EQ(std::tie(target.debug, target.merging, target.source_name, target.current_option),
            std::tie(opts.debug, opts.merging, opts.source_name, opts.current_option));
  EXPECT_TRUE(target.option_form == opts.option_form &&
              target.option_parsed == opts.option_parsed && target.option_seen == opts.option_seen);
  expect_facts(target, {{T::COLOR, 1, "green"}, {T::ALPHA, 0, ""}, {T::NAMES, 1, "three"}});
  EXPECT_EQ(target.history.size(), 3u);  // KEEP, ALPHA and NAMES, its own
  EXPECT_EQ(target.error_count, 2);
  target = target;
  EXPECT_STREQ(target.getstrarg(T::COLOR, 0), "green");
}

TEST_F(State, FileOptionsEnterTheHistoryByTool) {
  diag_capture capture;
  opts.debug = 1;
  EXPECT_EQ(capture_output(stdout, [this] { opts.addfileopt("a.asm", "asmzorv"); }),
            "test option debug: Add file 'a.asm' to asmzorv's history\n");
  opts.debug = 0;
  opts.addfileopt("b.hex", "hexzorv");  // after the gap of embedded_options
  opts.addfileopt("c.x", "nosuchtool");
  opts.addfileopt("", "asmzorv");
  opts.addfileopt("d.x", "embedded_options");  // a tool without a file option: id 0
  ASSERT_EQ(opts.history.size(), 5u);
  EXPECT_EQ(std::tie(opts.history[1].first, opts.history[2].first, opts.history[3].first,
                     opts.history[4].first),
            std::make_tuple(40 + 7, 40 + 16, 40, 0));
  EXPECT_EQ(opts.history[3].second.number, -1);
  EXPECT_NE(capture.text().find("No known tool \"nosuchtool\" when adding file to option list."),
            std::string::npos);
  EXPECT_EQ(opts.class_list_for_option(70), std::vector<int>{0});  // the last file option + 1
  EXPECT_TRUE(opts.class_list_for_option(T::OPTION_COUNT).empty());
  EXPECT_TRUE(opts.class_list_for_option(71).empty());
  EXPECT_EQ(opts.class_list_for_option(T::ALPHA_BETA), (std::vector<int>{0, 1, 2}));
}

}  // namespace
