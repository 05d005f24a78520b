// The tool's signal handler has a stack of its own: even a stack overflow ends
// with the tool's report and status 2.
#include "ADVICE_PERF/signals.h"

#include <gtest/gtest.h>

#include "ADVICE_PERF/driver.h"

namespace {

// Each call keeps a frame that the next one reads, so none can be dropped.
char recurse(unsigned depth, volatile char* caller) {
  volatile char frame[1024];
  frame[0] = caller[0];
  if (depth > 0) recurse(depth - 1, frame);
  return frame[0];
}

TEST(SignalsDeathTest, StackOverflowEndsWithTheReport) {
  tool_path = "advzorv";
  EXPECT_EXIT(
      {
        install_signal_handlers();
        volatile char start = 1;
        recurse(~0u, &start);
      },
      testing::ExitedWithCode(2),
      "INTERNAL ERROR: advzorv experienced a segmentation fault while\n");
}

}  // namespace
