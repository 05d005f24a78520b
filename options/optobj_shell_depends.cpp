// The pass over the compiler shell's options after the last token: settings
// that depend on others, the dependency rules of the table, and the end of
// the run when errors were counted.
#include <string>

#include "DIAG/messages.h"
#include "UTIL/strcase.h"
#include "options/optobj_shell.h"

namespace {

using S = option_obj_shell;

// The subject (holding subject_word, if any) is not valid with, or without,
// the other option (holding one of other_words, if any).
struct depend_rule {
  int subject;
  const char* subject_word;
  bool with;
  int other;
  const char* fixed_text;          // names the other side in the message
  int severity;                    // 5: warn and clear the subject, 6: error
  const char* const* other_words;  // null-closed
};

#define OO_TABLE_INC "options/optobj_shell.inc"

#define DEPEND_RULE(index, subject, word, with, other, text, severity, ...) \
  const char* const rule_words_##index[] = {__VA_ARGS__ __VA_OPT__(, ) nullptr};
#include OO_TABLE_INC

const depend_rule depend_rules[] = {
#define DEPEND_RULE(index, subject, word, with, other, text, severity, ...) \
  {S::subject, word, with, S::other, text, severity, rule_words_##index},
#include OO_TABLE_INC
};

// What the pass asks of an option: "set" is a non-zero state, "given" also
// means that the scanner recognised it (not a default or a derived setting),
// and word tests ignore case.
class shell_view {
 public:
  explicit shell_view(const S& options) : o_(options) {}
  bool set(int id) const { return o_.option_state[id] != 0; }
  bool given(int id) const { return set(id) && o_.option_parsed[id] != 0; }
  bool is(int id, const char* word) const {
    const char* value = set(id) ? o_.getstrarg(id, 0) : nullptr;
    return value && strcaseicmp(value, word) == 0;
  }

 private:
  const S& o_;
};

bool subject_active(const S& o, const depend_rule& rule) {
  if (o.option_state[rule.subject] == 0) return false;
  if (!rule.subject_word) return true;
  const char* const word[] = {rule.subject_word, nullptr};
  return o.getstrarg(rule.subject, 0) && o.args_match_list(rule.subject, word);
}

bool other_side_holds(const S& o, const depend_rule& rule) {
  if (o.option_state[rule.other] == 0) return false;
  if (!rule.other_words[0]) return true;
  return o.getargcount(rule.other) > 0 && o.args_match_list(rule.other, rule.other_words);
}

// The subject as the user spelled it, with its word where the rule names one.
std::string subject_text(const S& o, const depend_rule& rule) {
  std::string text = o.format_of_option(rule.subject);
  const char* word = o.getstrarg(rule.subject, 0);
  if (rule.subject_word && word) text += std::string("=") + word;
  return text;
}

void apply_depend_rules(S& o) {
  for (const depend_rule& rule : depend_rules) {
    if (!subject_active(o, rule) || other_side_holds(o, rule) != rule.with) continue;
    const std::string subject = subject_text(o, rule);
    const char* relation = rule.with ? "with" : "without";
    if (rule.severity >= dc_error) {
      DIAG::optgen_depends_on_error diag(__FILE__, __LINE__, subject.c_str(), relation,
                                         rule.fixed_text);
      o.report_diagnostic(diag);
    } else {
      DIAG::optgen_depends_on_warn diag(__FILE__, __LINE__, subject.c_str(), relation,
                                        rule.fixed_text);
      o.report_diagnostic(diag);
      o.clearopt(rule.subject);
    }
  }
}

}  // namespace

void option_obj_shell::post_process_option_depends() {
  const shell_view v(*this);
  if (!v.set(ADVICE__PERFORMANCE)) apply(ADVICE__PERFORMANCE, "all");
  apply(BUFFER_DIAGNOSTICS, nullptr);
  if (v.is(ABI, "coffabi")) apply(OBJECT_FORMAT, "coff");
  if (v.given(PROGRAM_LEVEL_RECOMPILE)) apply(C_SRC_INTERLIST, nullptr);
  if (!v.set(C89) && !v.set(C99) && !v.set(C11)) apply(C89, nullptr);

  // A build without a debug option counts as built with debug information.
  if (!v.set(SYMDEBUG__DWARF) && !v.set(SYMDEBUG__COFF) && !v.set(SYMDEBUG__NONE)) {
    if (v.set(SYMDEBUG__SKELETAL)) clearopt(SYMDEBUG__SKELETAL);
    apply(SYMDEBUG__DWARF, nullptr);
  }
  if ((v.set(SYMDEBUG__DWARF) || v.set(SYMDEBUG__SKELETAL)) && !v.set(SYMDEBUG__DWARF_VERSION)) {
    apply(SYMDEBUG__DWARF_VERSION, "3");
    if (v.is(ABI, "eabi")) apply(SYMDEBUG__DWARF_VERSION, "4");
  }
  if (!v.set(KEEP_UNNEEDED_TYPES)) {
    const bool subsections = v.is(SYMDEBUG__DWARF_SUBSECTIONS, "on");
    const bool eabi_with_debug = v.is(ABI, "eabi") && !v.set(SYMDEBUG__NONE);
    const bool version_3_or_below =
        getnumarg(SYMDEBUG__DWARF_VERSION, 0) <= ITEM_SYMDEBUG__DWARF_VERSION_3;
    apply(KEEP_UNNEEDED_TYPES,
          (subsections || eabi_with_debug) && version_3_or_below ? "true" : "false");
  }
  if (v.is(MEM_MODEL__DATA, "small")) {
    DIAG::optgen_no_small_memmodel diag(__FILE__, __LINE__);
    report_diagnostic(diag);
  }
  if (!v.set(RELAXED_ANSI) && !v.set(STRICT_ANSI)) apply(RELAXED_ANSI, nullptr);
  apply(USE_ELF_LNK, nullptr);

  // The level is always set afterwards; one the build did not give is "off".
  if (!v.given(OPT_LEVEL)) apply(OPT_LEVEL, "off");
  if (!v.set(FLOAT_SUPPORT)) apply(FLOAT_SUPPORT, v.set(TN_ZTRG_SUPPORT) ? "zfpa32" : "softlib");
  if (!v.set(SILICON_ERRATA_ZFPA1_WORKAROUND)) {
    const bool vector_unit = v.is(V_ZVEC_SUPPORT, "zvec2") || v.is(V_ZVEC_SUPPORT, "zvec2.1") ||
                             v.is(V_ZVEC_SUPPORT, "zcrc");
    const bool unaffected = v.set(TN_ZTRG_SUPPORT) || v.is(FLOAT_SUPPORT, "zfpa64") || vector_unit;
    apply(SILICON_ERRATA_ZFPA1_WORKAROUND, unaffected ? "off" : "on");
  }
  if (v.given(DISABLE_DP_LOAD_OPT)) {
    const bool eabi = v.is(ABI, "eabi");
    if (eabi) clearopt(DISABLE_DP_LOAD_OPT);
    DIAG::optgen_disable_dp_load_opt_warning diag(
        __FILE__, __LINE__, eabi ? "is not supported with --abi=eabi" : "is deprecated");
    report_diagnostic(diag);
  }
  apply_depend_rules(*this);
  option_engine::post_process_option_depends();
}
