#pragma once
// Reading a whole file into memory, within the bounds of max_xml_file_bytes.

#include "ADVICE_PERF/xml_read.h"

#include <cstddef>
#include <memory>

// A file's text up to its first NUL byte or its end, NUL-terminated.
struct FILE_TEXT {
  std::unique_ptr<char[]> text;  // owned
  std::size_t size = 0;          // the bytes before the terminator
};

// Reads the file, growing the buffer as needed; an interrupted open or read is
// tried again. False when it can't be opened or read, or holds more than limit
// bytes before its first NUL byte: one rule for regular files, pipes and
// devices alike.
bool load_file_text(const char* file_name, FILE_TEXT& file,
                    std::size_t limit = max_xml_file_bytes);
