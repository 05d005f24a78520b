#pragma once
// The tests' one way to collect what code writes: a temporary stream that
// gives back its text, which can stand in for a stream variable (such as
// DIAGNOSTIC::fp_m) or take over a standard stream's file descriptor.
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

class captured_stream {
 public:
  captured_stream() : file_(std::tmpfile()) {}
  ~captured_stream() { std::fclose(file_); }
  captured_stream(const captured_stream&) = delete;
  captured_stream& operator=(const captured_stream&) = delete;

  FILE* file() const { return file_; }
  // Everything written so far; later writes are appended.
  std::string text() const {
    std::fflush(file_);
    std::string out(static_cast<size_t>(std::ftell(file_)), '\0');
    std::rewind(file_);
    out.resize(std::fread(out.data(), 1, out.size(), file_));
    std::fseek(file_, 0, SEEK_END);
    return out;
  }

 private:
  FILE* file_;
};

// What body writes to stream (through its file descriptor, so child processes too).
inline std::string capture_output(FILE* stream, const std::function<void()>& body) {
  captured_stream sink;
  std::fflush(stream);
  const int saved = dup(fileno(stream));
  dup2(fileno(sink.file()), fileno(stream));
  body();
  std::fflush(stream);
  dup2(saved, fileno(stream));
  close(saved);
  return sink.text();
}

// What body writes to the stream it is given.
inline std::string write_to_string(const std::function<void(FILE*)>& body) {
  captured_stream sink;
  body(sink.file());
  return sink.text();
}

inline bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}
