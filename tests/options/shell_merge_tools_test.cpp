// The shell table's merge rows and hand-on targets at work.
#include <algorithm>
#include <string>
#include <vector>

#include "UTIL/runcmd.h"
#include "shell_fixture.h"

namespace {

class shell_merge : public shell_options {
 protected:
  S other{true};
  void SetUp() override {
    shell_options::SetUp();
    other.source_name = "second.cmd";
  }
  void give(const char* text) { other.process_option(text, nullptr); }
  std::vector<std::string> line_for(S::tool_name tool) {
    for (const auto& [name, value] : S::tool_cmd_map()) {
      if (value != tool) continue;
      argv_list list(name.c_str(), nullptr, 0);
      opts.add_opts_for_tool(list);
      return list.args;
    }
    return {};
  }
};

TEST_F(shell_merge, OptLevelIsHandedToEmbeddedOptionsOnly) {
  run("O3");
  for (int tool = S::tn_abszorv; tool <= S::tn_xrefzorv; ++tool) {
    std::vector<std::string> line = line_for(static_cast<S::tool_name>(tool));
    EXPECT_EQ(std::count(line.begin(), line.end(), "-O=3"), tool == S::tn_embedded_options)
        << "tool " << tool;
  }
  EXPECT_EQ(opts.error_count, 0);
}

TEST_F(shell_merge, ListOptionIsHandedOnOncePerSettingToEachOfItsTools) {
  run("-define=A");
  run("-define=B=1");
  run("-define=A");
  for (S::tool_name tool : {S::tn_asmzorv, S::tn_cbeiazorv}) {
    std::vector<std::string> line = line_for(tool);
    EXPECT_EQ(std::count(line.begin(), line.end(), "--define=A"), 2);
    EXPECT_EQ(std::count(line.begin(), line.end(), "--define=B=1"), 1);
  }
  std::vector<std::string> linker = line_for(S::tn_lnkzorv);
  EXPECT_EQ(std::count(linker.begin(), linker.end(), "--define=A"), 0);
}

TEST_F(shell_merge, VectorSupportMergesByItsPairTable) {
  diag_capture capture;
  run("-zvec_support=zvec0");
  give("-zvec_support=zvec2.1");
  opts.merge_options(other);
  EXPECT_STREQ(opts.getstrarg(S::V_ZVEC_SUPPORT, 0), "zvec2.1");
  S older{true};
  older.process_option("-zvec_support=zvec2", nullptr);
  opts.merge_options(older);  // merges into zvec2.1, which stays
  EXPECT_STREQ(opts.getstrarg(S::V_ZVEC_SUPPORT, 0), "zvec2.1");
  EXPECT_EQ(opts.error_count, 0);
  S odd{true};
  odd.source_name = "odd.cmd";
  odd.process_option("-zvec_support=zcrc", nullptr);
  older.merge_options(odd);  // zvec2 with zcrc: no pair
  EXPECT_EQ(older.error_count, 1);
  EXPECT_NE(capture.text().find("option --zvec_support=zcrc is set in \"odd.cmd\", and is "
                                "incompatible with the previously seen option "
                                "--zvec_support=zvec2"),
            std::string::npos);
}

TEST_F(shell_merge, AbiMustBeTheSameInAllFiles) {
  diag_capture capture;
  opts.merge_options(other);  // both have the default
  EXPECT_EQ(opts.error_count, 0);
  give("-abi=coffabi");
  opts.merge_options(other);
  EXPECT_EQ(opts.error_count, 1);
  EXPECT_NE(capture.text().find("option --abi=coffabi is set in \"second.cmd\""),
            std::string::npos);
}

TEST_F(shell_merge, DialectOfTheFurtherFileReplacesTheReceiversAlone) {
  run("-c89");
  run("-strict_ansi");
  give("-c99");
  opts.merge_options(other);
  EXPECT_EQ(opts.option_state[S::C89], 0);
  EXPECT_EQ(opts.option_state[S::C99], 1);
  EXPECT_EQ(opts.option_state[S::STRICT_ANSI], 1);  // another group: untouched
}

}  // namespace
