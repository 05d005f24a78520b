#pragma once
// option_obj: the tool's own command-line options.
#include "options/option_engine.h"

#define OO_TABLE_INC "options/optobj.inc"

class option_obj : public option_engine {
#include "options/family_members.h"

  // Opens the command file named by --linker_options_file or -@; the driver
  // installs it. The default does nothing.
  static void (*open_cmd_file)(const char* path);
  // Prints the usage text and ends the run; called after the help overview.
  // The default does nothing.
  static void (*print_usage)(const char* program);

  // The tool's table has no defaults, so the flag changes nothing.
  explicit option_obj(bool with_defaults = true);
};

#undef OO_TABLE_INC
