// Conflicts applied when an option is set, error counting, and the check
// after the last token.
#include <cstdlib>
#include <string>

#include "DIAG/messages.h"
#include "options/option_engine.h"

// Applies the conflict row of an option that has just been set to the
// options set before it (see conflict_value).
void option_engine::do_conflicts(int id) {
  const uint8_t* cells = table_->conflicts + static_cast<size_t>(id) * table_->n;
  for (unsigned other = 0; other < table_->n; ++other) {
    if (option_state[other] == 0 || cells[other] == conflict_none) continue;
    std::string option = format_of_option(id);
    std::string previous = format_of_option(static_cast<int>(other));
    switch (cells[other]) {
      case conflict_quiet:
        if (debug) {
          DIAG::optgen_conflict_quiet_option diag(__FILE__, __LINE__, option.c_str(),
                                                  previous.c_str());
          report_diagnostic(diag);
        }
        clearopt(static_cast<int>(other));
        break;
      case conflict_override: {
        DIAG::optgen_conflict_override_option diag(__FILE__, __LINE__, option.c_str(),
                                                   previous.c_str());
        report_diagnostic(diag);
        clearopt(static_cast<int>(other));
        break;
      }
      default: {  // conflict_fatal
        DIAG::optgen_conflict_option diag(__FILE__, __LINE__, option.c_str(), previous.c_str());
        report_diagnostic(diag);
        end_run();
      }
    }
  }
}

int option_engine::report_diagnostic(DIAGNOSTIC& diag) {
  if (diag.info->severity >= dc_error) ++error_count;
  return diag.report();
}

void option_engine::post_process_option_depends() {
  if (error_count > 0) end_run();
}
