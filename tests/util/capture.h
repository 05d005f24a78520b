#pragma once
// Collect what code writes to a stream.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

// Runs body with stream's file descriptor redirected to a temporary file.
inline std::string capture_output(FILE* stream, const std::function<void()>& body) {
  fflush(stream);
  const int saved = dup(fileno(stream));
  FILE* sink = tmpfile();
  dup2(fileno(sink), fileno(stream));
  body();
  fflush(stream);
  dup2(saved, fileno(stream));
  close(saved);
  std::string text;
  rewind(sink);
  for (int c; (c = getc(sink)) != EOF;)
    text += static_cast<char>(c);
  fclose(sink);
  return text;
}

// Runs body on an in-memory stream.
inline std::string write_to_string(const std::function<void(FILE*)>& body) {
  char* data = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&data, &size);
  body(stream);
  fclose(stream);
  std::string text(data, size);
  free(data);
  return text;
}
