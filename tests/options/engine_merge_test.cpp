// Merging a further file's options into an accumulating object, policy by
// policy, with the synthetic table's policies, group and merge conflict.
#include <string>
#include <vector>

#include "test_family.h"

namespace {

using T = option_obj_test;

// The accumulating object (opts) and a further file (other).
class merge : public test_table_fixture {
 protected:
  T other;
  void SetUp() override {
    test_table_fixture::SetUp();
    other.source_name = "b.cmd";
  }
  void give(const char* text) { other.process_option(text, nullptr); }
  std::string text_of(int id) const {
    const char* text = opts.getstrarg(id, 0);
    return text ? text : "";
  }
  std::vector<std::string> all_args(int id) const {
    std::vector<std::string> args;
    for (int i = 0; i < opts.getargcount(id); ++i)
      args.emplace_back(opts.getstrarg(id, static_cast<unsigned>(i)));
    return args;
  }
};

TEST_F(merge, ArgumentsCompareByTypeAndAMissingOneIsLowest) {
  an_argument_t none{4, {.num = 0}, 0}, none2{4, {.num = 7}, 0};
  an_argument_t minus{0, {.num = -1}, 0}, one{0, {.num = 1}, 0};
  an_argument_t big{1, {.unum = ~0ULL}, 0}, small{1, {.unum = 1}, 0};
  an_argument_t abc{2, {.text = "abc"}, 0}, abd{2, {.text = "abd"}, 0};
  EXPECT_TRUE(none == none2);
  EXPECT_TRUE(minus < one && one > minus);  // signed
  EXPECT_TRUE(big > small);                 // unsigned: all bits set is the largest
  EXPECT_TRUE(abd > abc && !(abc == abd));
  EXPECT_TRUE(none < minus && abc > none && !(none > none2));
  // different types are neither equal nor ordered
  EXPECT_FALSE(one == small || one < small || one > small);
  an_argument_t items[] = {abc, abd};
  an_argument_t list{3, {.list = items}, 2}, same{3, {.list = items}, 2},
      shorter{3, {.list = items}, 1};
  EXPECT_TRUE(list == same);
  EXPECT_FALSE(list == shorter || list > shorter || list < shorter);
}

TEST_F(merge, ExactReportsEveryWayTheFilesDiffer) {
  diag_capture capture;
  run("-alpha_beta=x");
  opts.merge_options(other);  // set here only
  T third;
  third.source_name = "c.cmd";
  third.process_option("-alpha_beta=y", nullptr);
  opts.merge_options(third);  // set in both, different
  third.process_option("-alpha_beta=x", nullptr);
  opts.merge_options(third);  // set in both, equal: fine
  T fresh;
  fresh.merge_options(third);  // set in the further file only
  std::string text = capture.text();
  EXPECT_TRUE(
      contains(text, "option --alpha_beta=x was set in previous files, but not in \"b.cmd\""));
  EXPECT_TRUE(contains(text,
                       "option --alpha_beta=y is set in \"c.cmd\", and is incompatible with "
                       "the previously seen option --alpha_beta=x"));
  EXPECT_TRUE(
      contains(text, "option --alpha_beta=x is set in \"c.cmd\", but not in previous files"));
  EXPECT_EQ(opts.error_count, 2);
  EXPECT_EQ(fresh.error_count, 1);
  EXPECT_EQ(text_of(T::ALPHA_BETA), "x");  // exact never changes the receiver
}

TEST_F(merge, ExactNotsetComparesOnlyWhereBothHaveIt) {
  diag_capture capture;
  run("-hex=10");
  opts.merge_options(other);
  EXPECT_EQ(opts.error_count, 0);
  give("-hex=11");
  opts.merge_options(other);
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_TRUE(contains(capture.text(), "option --hex=0xB is set in \"b.cmd\""));
}

TEST_F(merge, OrAddsEveryArgumentWithoutRunningConflicts) {
  run("-names=a");
  run("-hard_a");
  run("-over_a");
  give("-names=b");
  give("-names=c");
  give("-hard_b");  // would end the run if conflicts were checked
  give("-over_b");  // would clear --over_a
  opts.merge_options(other);
  EXPECT_EQ(all_args(T::NAMES), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(opts.option_state[T::HARD_A], 1);
  EXPECT_EQ(opts.option_state[T::HARD_B], 1);
  EXPECT_EQ(opts.option_state[T::OVER_A], 1);
  EXPECT_EQ(opts.option_state[T::OVER_B], 1);
  EXPECT_FALSE(opts.merging);
  EXPECT_EQ(opts.error_count, 0);
}

TEST_F(merge, AndKeepsAnOptionOnlyWhileEveryFileHasIt) {
  run("-alpha");
  give("-alpha");
  opts.merge_options(other);
  EXPECT_NE(opts.option_state[T::ALPHA], 0);
  T without;
  opts.merge_options(without);
  EXPECT_EQ(opts.option_state[T::ALPHA], 0);
}

TEST_F(merge, MaxAndMinTakeOneOfWordsByTheirPlaceInTheList) {
  // values are alphabetical (crimson 1 < red 3), places are declared (red, crimson)
  run("-color=red");
  give("-color=crimson");
  opts.merge_options(other);
  EXPECT_EQ(text_of(T::COLOR), "crimson");
  other.process_option("-color=red", nullptr);
  opts.merge_options(other);
  EXPECT_EQ(text_of(T::COLOR), "crimson");

  run("-level=4");
  give("-level=2");
  opts.merge_options(other);
  EXPECT_EQ(opts.getnumarg(T::LEVEL, 0), 2);
  other.process_option("-level=6", nullptr);
  opts.merge_options(other);
  EXPECT_EQ(opts.getnumarg(T::LEVEL, 0), 2);
}

TEST_F(merge, MaxTakesTheFurtherFilesValueWhenTheReceiverHasNone) {
  give("-number=3");
  opts.merge_options(other);
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 3);
  other.process_option("-number=19", nullptr);
  opts.merge_options(other);
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 19);
  other.process_option("-number=4", nullptr);
  opts.merge_options(other);
  EXPECT_EQ(opts.getnumarg(T::NUMBER, 0), 19);
}

TEST_F(merge, CustomAppliesAMergedValueOnlyWhereItIsTheFurtherFiles) {
  diag_capture capture;
  // the further file keeps its default high; low with high merges into high
  run("-keep=low");
  opts.merge_options(other);
  EXPECT_EQ(text_of(T::KEEP), "high");
  give("-keep=low");
  opts.merge_options(other);  // merged high is not the further file's low
  EXPECT_EQ(text_of(T::KEEP), "high");
  opts.setarg(T::KEEP, 99L);  // a value no pair names
  opts.merge_options(other);
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_TRUE(contains(capture.text(),
                       "option --keep=low is set in \"b.cmd\", and is "
                       "incompatible with the previously seen option --keep"));
}

TEST_F(merge, GroupMemberOfTheFurtherFileReplacesTheReceiversInEitherOrder) {
  run("-quiet_a");
  give("-verbose");  // a later id than the receiver's member
  opts.merge_options(other);
  EXPECT_EQ(opts.option_state[T::QUIET_A], 0);
  EXPECT_EQ(opts.option_state[T::VERBOSE], 1);

  T back;
  back.process_option("-quiet_a", nullptr);  // an earlier id than the receiver's member
  opts.merge_options(back);
  EXPECT_EQ(opts.option_state[T::VERBOSE], 0);
  EXPECT_EQ(opts.option_state[T::QUIET_A], 1);  // applied once, not again by its policy

  T same;
  same.process_option("-quiet_a", nullptr);  // the same member: the policy (or) runs
  opts.merge_options(same);
  EXPECT_EQ(opts.option_state[T::QUIET_A], 2);
  T none;
  opts.merge_options(none);  // no member in the further file: the receiver's stays
  EXPECT_EQ(opts.option_state[T::QUIET_A], 2);
}

TEST_F(merge, MergeConflictIsReportedAndTheMergeGoesOn) {
  diag_capture capture;
  run("-verbose");
  give("-trace");
  give("-names=z");
  opts.merge_options(other);
  EXPECT_TRUE(contains(
      capture.text(), "option --trace in file \"b.cmd\" conflicts with previous option --verbose"));
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_EQ(text_of(T::NAMES), "z");
  EXPECT_EQ(opts.option_state[T::TRACE], 0);  // no policy: not taken over
}

TEST_F(merge, InitTakesTheFirstArgumentOfOptionsWithAPolicyOtherThanNone) {
  give("-names=a");
  give("-names=b");
  give("-mode=fast");
  give("-zip=z");  // policy none
  give("-trace");  // no policy
  opts.merge_init(other);
  EXPECT_EQ(all_args(T::NAMES), std::vector<std::string>{"a"});
  EXPECT_EQ(text_of(T::MODE), "fast");
  EXPECT_EQ(opts.option_state[T::ZIP], 0);
  EXPECT_EQ(opts.option_state[T::TRACE], 0);
  EXPECT_FALSE(opts.merging);
}

TEST_F(merge, MainAndNoneLeaveTheReceiverAlone) {
  run("-mode=safe");
  give("-mode=fast");
  give("-zip=z");
  opts.merge_options(other);
  EXPECT_EQ(text_of(T::MODE), "safe");
  EXPECT_EQ(opts.option_state[T::ZIP], 0);
}

}  // namespace
