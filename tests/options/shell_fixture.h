#pragma once
// A fresh option_obj_shell with its defaults, fed one token at a time.
#include <string>

#include "options/optobj_shell.h"
#include "test_family.h"

using S = option_obj_shell;

class shell_options : public options_fixture {
 protected:
  void SetUp() override {
    options_fixture::SetUp();
    S::next_arg = scripted_next_arg;
  }
  S opts{true};
  // Scans one token of the command file (the token less its first dash).
  int run(const char* text) { return opts.process_option(text, nullptr); }
  const char* word(int id) const { return opts.getstrarg(id, 0); }
  const char* level() const { return word(S::OPT_LEVEL); }
  const char* goal() const { return word(S::SIZE_SPEED_GOAL); }
};
