#pragma once
// What the harnesses share: the libFuzzer entry point, an ending of the
// process that throws instead of exiting, the input as a file or as tokens.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Thrown where the tool would end the process; a normal outcome for an input.
struct run_ended {
  int status;
};

// Installs the throwing ending and resets the diagnostics' error count; call
// at the start of each input.
void begin_input();

// Sets the driver's option objects, empty, as a run without options would
// have them; once per process.
void make_option_objects();

// A path where no file is.
inline const char* no_file = "/nonexistent/advzorv-fuzz";

// Writes the input to this process's scratch file and returns its path (valid
// until the process ends; the next call overwrites the file).
const char* input_file(const uint8_t* data, size_t size);

// Starts the input, then hands read the path of its scratch file; a document
// without the parts the reader requires (std::exception) is a normal outcome.
void read_input(const uint8_t* data, size_t size,
                const std::function<void(const char* path)>& read);

// The tokenizer's and the option scanners' input is a command file: hands each of its words
// starting with '-' to scan (without the '-') while the stream is open, from which the option
// family's next_arg also reads. False when the run ended before the last word.
bool scan_tokens(const uint8_t* data, size_t size, const char* (**next_arg)(),
                 const std::function<void(const char* option)>& scan);
