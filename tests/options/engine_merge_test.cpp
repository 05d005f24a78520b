// Merging a further file's options into an accumulating object, policy by
// policy, with the synthetic table's policies, group and merge conflict.
#include <string>
#include <vector>

#include "test_family.h"

namespace {

using T = option_obj_test;

using Merge = test_table_fixture;

TEST_F(Merge, ArgumentsCompareByTypeAndAMissingOneIsLowest) {
  an_argument_t none{argument_missing, {.num = 0}, 0}, none2{argument_missing, {.num = 7}, 0};
  an_argument_t minus{argument_signed, {.num = -1}, 0}, one{argument_signed, {.num = 1}, 0};
  an_argument_t big{argument_unsigned, {.unum = ~0ULL}, 0},
      small{argument_unsigned, {.unum = 1}, 0};
  an_argument_t abc{argument_text, {.text = "abc"}, 0}, abd{argument_text, {.text = "abd"}, 0};
  EXPECT_TRUE(none == none2);
  EXPECT_TRUE(minus < one && one > minus);  // signed
  EXPECT_TRUE(big > small);                 // unsigned: all bits set is the largest
  EXPECT_TRUE(abd > abc && !(abc == abd));
  EXPECT_TRUE(none < minus && abc > none && !(none > none2));
  // different types are neither equal nor ordered
  EXPECT_FALSE(one == small || one < small || one > small);
  an_argument_t items[] = {abc, abd};
  an_argument_t list{argument_list, {.list = items}, 2}, same{argument_list, {.list = items}, 2},
      shorter{argument_list, {.list = items}, 1};
  EXPECT_TRUE(list == same);
  EXPECT_FALSE(list == shorter || list > shorter || list < shorter);
}

// The receiver's and the further file's tokens, and the receiver's options
// after one merge (or, with init, after merge_init).
struct merge_case {
  std::vector<const char*> receiver, further;
  option_facts after;
  bool init = false;
};

TEST_F(Merge, EachPolicyCombinesTheFurtherFileIntoTheReceiver) {
  const merge_case cases[] = {
      {{"-alpha"}, {"-alpha"}, {{T::ALPHA, 1, ""}}},  // and
      {{"-alpha"}, {}, {{T::ALPHA, 0, ""}}},
      // or adds every argument and runs no conflicts (hard ones would end the run)
      {{"-names=a", "-hard_a", "-over_a"},
       {"-names=b", "-names=c", "-hard_b", "-over_b"},
       {{T::NAMES, 3, "a,b,c"}, {T::OVER_A, 1, ""}}},
      // max and min compare one-of words by their place in the list (red, crimson, green)
      {{"-color=crimson"}, {"-color=red"}, {{T::COLOR, 1, "crimson"}}},
      {{"-color=crimson"}, {"-color=green"}, {{T::COLOR, 2, "green"}}},
      {{"-level=4"}, {"-level=2"}, {{T::LEVEL, 2, "2"}}},
      {{"-level=2"}, {"-level=6"}, {{T::LEVEL, 1, "2"}}},
      {{}, {"-number=3"}, {{T::NUMBER, 1, "3"}}},
      {{"-number=19"}, {"-number=4"}, {{T::NUMBER, 1, "19"}}},
      // custom: low with high merges into high, taken only where it is the further file's
      {{"-keep=low"}, {}, {{T::KEEP, 3, "high"}}},
      {{}, {"-keep=low"}, {{T::KEEP, 1, "high"}}},
      {{"-mode=safe"}, {"-mode=fast", "-zip=z"}, {{T::MODE, 1, "safe"}, {T::ZIP, 0, ""}}},
      {{"-alpha_beta=x"}, {"-alpha_beta=x"}, {{T::ALPHA_BETA, 1, "x"}}},  // exact
      // a member of a group in the further file replaces the receiver's once, in
      // either order; the same member in both runs its own policy
      {{"-quiet_a"}, {"-verbose"}, {{T::QUIET_A, 0, ""}, {T::VERBOSE, 1, ""}}},
      {{"-verbose"}, {"-quiet_a"}, {{T::VERBOSE, 0, ""}, {T::QUIET_A, 1, ""}}},
      {{"-quiet_a"}, {"-quiet_a"}, {{T::QUIET_A, 2, ""}}},
      {{"-quiet_a"}, {}, {{T::QUIET_A, 1, ""}}},
      {{"-quiet_a"}, {"-align=4"}, {{T::QUIET_A, 0, ""}, {T::ALIGN, 1, "4"}}},  // member id 0
      // init takes the first argument of the options with a policy other than none,
      // and runs no conflicts
      {{"-over_a"},
       {"-names=a", "-names=b", "-mode=fast", "-zip=z", "-trace", "-over_b"},
       {{T::NAMES, 1, "a"}, {T::MODE, 1, "fast"}, {T::ZIP, 0, ""}, {T::TRACE, 0, ""},
        {T::OVER_A, 1, ""}, {T::OVER_B, 1, ""}},
       true},
  };
  for (const merge_case& c : cases) {
    SCOPED_TRACE(c.further.empty() ? c.receiver[0] : c.further[0]);
    T receiver, further;
    for (const char* token : c.receiver)
      receiver.process_option(token, nullptr);
    for (const char* token : c.further)
      further.process_option(token, nullptr);
    c.init ? receiver.merge_init(further) : receiver.merge_options(further);
    EXPECT_EQ(receiver.error_count, 0);
    EXPECT_FALSE(receiver.merging);
    expect_facts(receiver, c.after);
  }
  T bare(false), further;  // a custom policy leaves alone an option that one side lacks
  bare.setarg(T::COLOR, 99L), further.process_option("-color=green", nullptr);  // max: 99 or green
  bare.merge_options(further);
  EXPECT_EQ(bare.error_count, 0);
  expect_facts(bare, {{T::KEEP, 0, ""}, {T::COLOR, 1, "99"}});  // no item has 99: ranked last
}

// The accumulating object (opts) and a further file (other).
TEST_F(Merge, DifferencesAreReportedAndTheMergeGoesOn) {
  T other;
  other.source_name = "b.cmd";
  const auto give = [&other](const char* text) { other.process_option(text, nullptr); };
  diag_capture capture;
  run("-alpha_beta=x");
  run("-hex=10");
  run("-verbose");
  opts.merge_options(other);  // exact: set here only; exact_notset: fine
  give("-alpha_beta=y");
  give("-hex=11");
  give("-trace");
  give("-names=z");
  opts.merge_options(other);  // both set, different; a merge conflict
  T fresh;
  fresh.merge_options(other);  // set in the further file only
  // exact never changes the receiver; an option without policy is not taken over
  expect_facts(opts, {{T::ALPHA_BETA, 1, "x"}, {T::NAMES, 1, "z"}, {T::TRACE, 0, ""}});
  opts.setarg(T::KEEP, 99L);  // a value no pair names, against either word of the pair
  for (const char* word : {"-keep=low", "-keep=high"})
    give(word), opts.merge_options(other);
  const std::string text = capture.text();
  for (const char* report :
       {"option --alpha_beta=x was set in previous files, but not in \"b.cmd\"",
        "option --alpha_beta=y is set in \"b.cmd\", and is incompatible with the previously "
        "seen option --alpha_beta=x",
        "option --alpha_beta=y is set in \"b.cmd\", but not in previous files",
        "option --hex=0xB is set in \"b.cmd\"",
        "option --trace in file \"b.cmd\" conflicts with previous option --verbose",
        "option --keep=low is set in \"b.cmd\", and is incompatible with the previously seen "
        "option --keep",
        "option --keep=high is set in \"b.cmd\", and is incompatible with the previously seen "
        "option --keep"})
    EXPECT_TRUE(contains(text, report)) << report;
  EXPECT_EQ(opts.error_count, 1 + 3 + 4 + 4);  // the last merges report the three again
  EXPECT_EQ(fresh.error_count, 1);
}

}  // namespace
