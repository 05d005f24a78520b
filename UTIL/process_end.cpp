#include "UTIL/process_end.h"

#include <cstdlib>

namespace {
process_ending_fn installed = nullptr;
}  // namespace

void end_process(int status) {
  if (installed) installed(status);
  std::exit(status);
}

process_ending_fn set_process_ending(process_ending_fn ending) {
  process_ending_fn previous = installed;
  installed = ending;
  return previous;
}
