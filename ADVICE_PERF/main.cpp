#include "ADVICE_PERF/driver.h"

int main(int argc, char** argv) {
  return advzorv_main(argc, argv);
}
