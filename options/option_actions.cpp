// Named handlers shared by the option tables.
#include "options/option_actions.h"

#include <cstdlib>
#include <string>

#include "DIAG/messages.h"
#include "UTIL/strcase.h"
#include "options/option_engine.h"

void action_align_for_speed(option_engine& options, int id, const char*) {
  long value = options.getnumarg(id, 0);
  if (value > 0 && (value & (value - 1)) == 0) return;
  char* exported = options.export_option(id, 0);
  DIAG::optgen_align_for_speed_error diag(__FILE__, __LINE__, exported ? exported : "");
  std::free(exported);
  options.report_diagnostic(diag);
}

void action_enum_type_int(option_engine& options, int id, const char*) {
  const char* word = options.getstrarg(id, 0);
  if (!word || strcaseicmp(word, "int") != 0) return;
  DIAG::optgen_depdiag_remark diag(
      __FILE__, __LINE__, "--enum_type=int is not supported. Using --enum_type=unpacked instead.");
  options.report_diagnostic(diag);
  options.setarg(id, "unpacked");
}

void action_verbose_template(option_engine& options, int id, const char* rest) {
  const char* pos = rest;
  for (; *pos == 'v' || *pos == 'V'; ++pos)
    options.apply_also_sets(id);
  if (!*pos) return;
  std::string text = options.current_option ? std::string(options.current_option, pos) : "";
  DIAG::optgen_garbage_after_option diag(__FILE__, __LINE__, text.c_str());
  options.report_diagnostic(diag);
}
