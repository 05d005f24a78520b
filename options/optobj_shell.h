#pragma once
// option_obj_shell: the compiler shell's options of the build, read from
// the command file.
#include "options/option_engine.h"

#define OO_TABLE_INC "options/optobj_shell.inc"

class option_obj_shell : public option_engine {
#include "options/family_members.h"

  // With true, the table's defaults are set (counted as set, not as parsed).
  explicit option_obj_shell(bool with_defaults = true);

  // Completes the settings that depend on others and ends the run with
  // status 1 if errors were counted.
  void post_process_option_depends() override;
};

#undef OO_TABLE_INC
