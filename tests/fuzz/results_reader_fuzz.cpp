// The performance-results document: read, updated by a run, written.
#include <exception>

#include "ADVICE_PERF/advice.h"
#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  begin_input();
  make_option_objects();
  try {
    const LINK_DATA link(no_file);
    ADVICE advice(no_file, link);
    PERF_RESULTS results(input_file(data, size), link, &advice);
    results.update();
    results.output();
  } catch (const std::exception&) {
    // a document without the parts the reader requires
  }
  return 0;
}
