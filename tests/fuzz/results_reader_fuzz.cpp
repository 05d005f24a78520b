// The performance-results document: read, updated by a run, written.
#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  read_input(data, size, [](const char* path) {
    make_option_objects();
    const LINK_DATA link(no_file);
    ADVICE advice(no_file, link);
    PERF_RESULTS results(path, link, &advice);
    results.update();
    results.output();
  });
  return 0;
}
