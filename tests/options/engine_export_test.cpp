// Naming, export, dumps and help over the synthetic table.
#include <cstdlib>
#include <vector>

#include "test_family.h"

namespace {

using T = option_obj_test;

using Export = test_table_fixture;

// The ids of a list that ends with OPTION_COUNT, which is freed.
std::vector<int> ids(int* list) {
  std::vector<int> out;
  for (int* id = list; *id != T::OPTION_COUNT; ++id)
    out.push_back(*id);
  std::free(list);
  return out;
}

TEST(Rot13, IsItsOwnInverseAndSwapsDashAndPercent) {
  const char* scrambled = option_engine::rot13("--Help_me-Zz%");
  EXPECT_STREQ(option_engine::rot13(scrambled), "--Help_me-Zz%");
  EXPECT_STREQ(option_engine::rot13(nullptr), "");
  for (int call = 0; call < 3; ++call)
    EXPECT_EQ(option_engine::rot13(std::string(500, 'a').c_str()), std::string(500, 'n'));
  EXPECT_STREQ(scrambled, "%%Uryc_zr%Mm-");  // alive through four further calls
}

TEST_F(Export, ExportGivesParsableText) {
  for (const char* token : {"-color=red", "v", "n=a", "n=b", "-zip"})
    run(token);
  char* line = opts.print();
  EXPECT_STREQ(line, "--color=red --keep=high --names=a --names=b --verbose --zip");
  std::free(line);
  opts.clearopt(T::COLOR), opts.clearopt(T::VERBOSE);
  // no such argument, not set, cleared
  for (auto [id, index] :
       {std::pair{T::NAMES, 2}, {T::ALPHA_BETA, 0}, {T::COLOR, 0}, {T::VERBOSE, 0}})
    EXPECT_EQ(opts.export_option(id, index), nullptr) << id;
  EXPECT_TRUE(opts.format_of_option(-1) == nullptr && opts.internal_option_string(-1) == nullptr);
  const option_row& mode = opts.table().option_definitions[T::MODE];  // help's left column
  EXPECT_STREQ(T::get_opt_txt(mode.long_form, mode.alt_forms, mode.short_form, mode.arg_text,
                              mode.arg_optional),
               "--mode,-m[=mode]");
}

TEST_F(Export, ListsChooseBySeenAndSetAndClass) {
  run("-alpha");
  run("-alpha_beta=x");
  opts.clearopt(T::ALPHA_BETA);
  EXPECT_EQ(ids(opts.export_option_list(export_seen_or_set)),
            (std::vector<int>{T::ALPHA, T::ALPHA_BETA, T::KEEP}));
  EXPECT_EQ(ids(opts.export_option_class(export_set, 1)), std::vector<int>{T::ALPHA});
  EXPECT_TRUE(ids(opts.export_option_class(export_all, 9)).empty());  // no such class
  std::vector<optlist> pairs = opts.export_option_pairs(export_set, 0);
  ASSERT_EQ(pairs.size(), 2u);
  EXPECT_EQ(pairs[1].id, T::KEEP);
  EXPECT_EQ(pairs[1].text, "--keep=high");
  EXPECT_TRUE(opts.export_option_pairs(export_set, 4).empty());
}

TEST_F(Export, DumpsShowStateAndHistory) {
  EXPECT_EQ(capture_output(stdout, [] { T(false).dump(0); }), "");
  run("-color=green");
  run("-zip");
  opts.addfileopt("x.c", "clzorv");
  const std::string out = capture_output(stdout, [this] {
    opts.dump(0);
    opts.dump_history();
  });
  EXPECT_TRUE(contains(out, "--color                    ENUMERATED ARG: green\n"));
  EXPECT_TRUE(contains(out, "--zip                      STRING ARG: <arg not provided>\n"));
  EXPECT_TRUE(contains(out, "--keep=high\n--color=green\n--zip\n--input_file=x.c\n"));
}

}  // namespace
