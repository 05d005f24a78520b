#include <algorithm>
#include <cstring>

#include "UTIL/text_queue.h"

namespace {

const long line_width = 79;

bool ends_line_here(char c) {
  return c == ' ' || c == '\n' || c == '\0';
}

}  // namespace

void fill_text(FILE* stream, const char* text, const char* padding) {
  const long pad = static_cast<long>(strlen(padding));
  const long line = line_width - pad;
  const long end = static_cast<long>(strlen(text));
  if (end == 0) {
    fputc('\n', stream);
    return;
  }

  long start = 0;
  long last_break = 0;
  for (;;) {
    const long reach = last_break + line;
    const bool fits = end <= reach;
    const long candidate = fits ? end : reach;

    // The last blank, line end or terminator at or before the candidate.
    long brk = -1;
    for (long i = candidate; i > start; --i)
      if (ends_line_here(text[i])) {
        brk = i;
        break;
      }

    if (brk >= 0) {
      // A line end ahead of that break comes first.
      const void* newline = memchr(text + start, '\n', static_cast<size_t>(brk - start));
      if (newline != nullptr) brk = static_cast<const char*>(newline) - text;
    } else {
      // A word longer than the line: break at the next blank, keeping it whole.
      const char* blank = fits ? nullptr : strchr(text + std::max(candidate, start), ' ');
      if (blank == nullptr) {
        fprintf(stream, "%s\n", text + start);
        return;
      }
      brk = blank - text;
    }

    fwrite(text + start, 1, static_cast<size_t>(brk - start), stream);
    if (text[brk] == '\n') fputc('\n', stream);
    start = brk + 1;
    last_break = brk;
    fputc('\n', stream);
    if (start >= end) return;
    fprintf(stream, "%*s", static_cast<int>(pad + 1), "");
  }
}
