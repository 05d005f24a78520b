// The advice document: read, updated by the rules of a run, written.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  read_input(data, size, [](const char* path) {
    make_option_objects();
    const LINK_DATA link(no_file);
    ADVICE advice(path, link);
    advice.update();
    advice.output();
  });
  return 0;
}
