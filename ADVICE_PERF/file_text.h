#pragma once
// Reading a whole file into memory, within the bounds of max_xml_file_bytes.

#include <cstddef>
#include <memory>

// A file's text, read to its end or to its first NUL byte, NUL-terminated.
struct FILE_TEXT {
  std::unique_ptr<char[]> text;  // owned
  std::size_t size = 0;
};

// Reads the file, growing the buffer as needed; false when it can't be opened
// or read, or holds more than max_xml_file_bytes before its first NUL byte.
bool load_file_text(const char* file_name, FILE_TEXT& file);
