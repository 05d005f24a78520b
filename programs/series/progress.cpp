#include "programs/series/progress.h"

#include <cstdio>
#include <cstdlib>
#include <ostream>

#include <unistd.h>

namespace {

std::string seconds_text(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", seconds);
  return text;
}

}  // namespace

PROGRESS::PROGRESS(std::ostream& out, bool live, std::size_t steps)
    : out(out), live(live), steps(steps) {}

std::string PROGRESS::head() const {
  return "[" + std::to_string(index + 1) + "/" + std::to_string(steps) + "] " + setting;
}

double PROGRESS::elapsed() const {
  return std::chrono::duration<double>(clock::now() - started).count();
}

void PROGRESS::begin(std::size_t step, const std::string& step_setting) {
  index = step;
  setting = step_setting;
  started = clock::now();
  tick();
}

void PROGRESS::tick() {
  if (!live) return;
  std::string line = head() + "  " + seconds_text(elapsed());
  if (index > 0) {
    // The steps to go, this one included, at the mean time of those done.
    const double mean = finished_seconds / static_cast<double>(index);
    const double left = mean * static_cast<double>(steps - index) - elapsed();
    line += ", about " + seconds_text(left > 0 ? left : 0) + " to go";
  }
  out << "\r\x1b[K" << line << std::flush;
}

void PROGRESS::end(const std::string& outcome) {
  const double seconds = elapsed();
  finished_seconds += seconds;
  if (live) out << "\r\x1b[K";
  out << head() << "  " << seconds_text(seconds) << "  " << outcome << std::endl;
}

bool live_progress_wanted() {
  return isatty(STDERR_FILENO) && std::getenv("CI") == nullptr;
}
