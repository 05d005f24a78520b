// The pass after the last token of the command file: derived settings, the
// dependency rules and the end of the run.
#include <gmock/gmock.h>

#include "options/optobj_shell.h"
#include "test_family.h"

namespace {

// Tokens of a command file, what the pass prints, and settings afterwards:
// the option's word, "" for set (with any word) or nullptr for unset.
struct depends_case {
  std::vector<const char*> tokens;
  const char* printed;
  std::vector<std::pair<int, const char*>> settings;
};

using S = option_obj_shell;
using ShellDepends = options_fixture;

TEST_F(ShellDepends, DerivedSettingsAndWarningRules) {
  const depends_case cases[] = {
      {{},
       "",
       {{S::ADVICE__PERFORMANCE, "all"},
        {S::SYMDEBUG__DWARF_VERSION, "4"},
        {S::KEEP_UNNEEDED_TYPES, "false"},
        {S::FLOAT_SUPPORT, "softlib"},
        {S::SILICON_ERRATA_ZFPA1_WORKAROUND, "on"},
        {S::BUFFER_DIAGNOSTICS, ""},
        {S::C89, ""},
        {S::RELAXED_ANSI, ""},
        {S::USE_ELF_LNK, ""}}},
      {{"-symdebug:none"},
       "",
       {{S::SYMDEBUG__DWARF, nullptr}, {S::SYMDEBUG__DWARF_VERSION, nullptr}}},
      {{"-symdebug:skeletal"}, "", {{S::SYMDEBUG__SKELETAL, nullptr}, {S::SYMDEBUG__DWARF, ""}}},
      {{"-symdebug:dwarf_version=3"}, "", {{S::KEEP_UNNEEDED_TYPES, "true"}}},
      {{"-abi=coffabi", "-symdebug:dwarf_subsections=ON"},
       "",
       {{S::SYMDEBUG__DWARF_VERSION, "3"},
        {S::KEEP_UNNEEDED_TYPES, "true"},
        {S::OBJECT_FORMAT, "coff"}}},
      {{"-ztrg_support"},
       "",
       {{S::FLOAT_SUPPORT, "zfpa32"}, {S::SILICON_ERRATA_ZFPA1_WORKAROUND, "off"}}},
      {{"-zvec_support=zcrc"}, "", {{S::SILICON_ERRATA_ZFPA1_WORKAROUND, "off"}}},
      {{"-zvec_support"}, "", {{S::SILICON_ERRATA_ZFPA1_WORKAROUND, "on"}}},
      {{"-plr=prog.pl", "ps", "-c99", "pm"},
       "",
       {{S::C89, nullptr}, {S::RELAXED_ANSI, nullptr}, {S::C_SRC_INTERLIST, ""}}},
      {{"-optimizer_comments", "O2"}, "", {{S::OPTIMIZER_COMMENTS, ""}}},
      // the first rule on a subject clears it, so the next one stays silent
      {{"-abi=coffabi", "-extern_c_can_throw", "lfu=ref.elf"},
       "warning: Option --extern_c_can_throw is not valid without --abi=eabi (ignored)\n"
       "warning: Option -lfu is not valid without --abi=eabi (ignored)\n",
       {{S::LFU_REFERENCE_ELF, nullptr}}},
      {{"-lfu_default=none"},
       "warning: Option --lfu_default is not valid without --lfu_reference_elf(-lfu) (ignored)\n",
       {}},
      {{"md"},
       "warning: --disable_dp_load_opt is not supported with --abi=eabi. Consider using the "
       "blocked and noblocked attributes to change the default blocking behavior for global "
       "variables.\n",
       {{S::DISABLE_DP_LOAD_OPT, nullptr}}},
      {{"-abi=coffabi", "-disable_dp_load_opt"},
       "warning: --disable_dp_load_opt is deprecated. Consider using the blocked and noblocked "
       "attributes to change the default blocking behavior for global variables.\n",
       {{S::DISABLE_DP_LOAD_OPT, ""}}},
  };
  for (const depends_case& c : cases) {
    SCOPED_TRACE(c.tokens.empty() ? "(no tokens)" : c.tokens.back());
    S o(true);
    diag_capture capture;
    for (const char* token : c.tokens)
      EXPECT_EQ(o.process_option(token, nullptr), 1) << token;
    o.post_process_option_depends();
    EXPECT_EQ(capture.text(), c.printed);
    EXPECT_EQ(o.error_count, 0);
    for (const auto& [id, value] : c.settings) {
      EXPECT_EQ(o.option_state[id] != 0, value != nullptr) << o.format_of_option(id);
      if (value && *value) {
        EXPECT_STRCASEEQ(o.getstrarg(id, 0), value);
      }
    }
  }
}

TEST_F(ShellDepends, SmallDataModelStopsBeforeTheRules) {
  S opts(true);
  opts.process_option("-mem_model:data=small", nullptr);
  opts.process_option("-optimizer_comments", nullptr);
  EXPECT_EXIT(opts.post_process_option_depends(), ::testing::ExitedWithCode(1),
              ::testing::AllOf(::testing::HasSubstr("Small memory model is no longer supported"),
                               ::testing::Not(::testing::HasSubstr("optimizer_comments"))));
  S s(true);  // an error of the scan ends the run after the pass
  EXPECT_EXIT((s.process_option("-cdebug_asm_data", nullptr), s.post_process_option_depends()),
              ::testing::ExitedWithCode(1), "cdebug_asm_data is no longer supported");
}

}  // namespace
