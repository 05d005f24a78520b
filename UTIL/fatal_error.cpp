#include "UTIL/fatal_error.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "UTIL/version.h"

namespace {

const char* const support_forum_address = "https://forumline.orvane.example/support";

// Callers may pass a small integer where a text is expected; such values are
// not dereferenced.
const uintptr_t pointer_threshold = 100000;

bool valid(const void* pointer) {
  return reinterpret_cast<uintptr_t>(pointer) > pointer_threshold;
}

const size_t text_buffer_size = 2048;
char format_buffer[text_buffer_size];
char append_buffer[text_buffer_size];

signal_callback_fn callback = nullptr;
std::atomic<const char*> reason{nullptr};

struct signal_reason {
  int sig;
  const char* text;
};

constexpr signal_reason signal_reasons[] = {
    {SIGILL, "executed an illegal instruction"},
    {SIGTRAP, "received a TRAP signal"},
    {SIGABRT, "had an internal inconsistency and aborted"},
    {SIGBUS, "experienced a bus alignment fault"},
    {SIGFPE, "received a floating point exception"},
    {SIGSEGV, "experienced a segmentation fault"},
    {SIGXCPU, "exceeded the CPU time limit"},
    {SIGXFSZ, "exceeded the file size limit"},
    {SIGSYS, "experienced a bad system call"},
};

constexpr int handled_signals[] = {SIGILL, SIGABRT, SIGFPE, SIGSEGV, SIGTERM, SIGINT,
                                   SIGHUP, SIGTRAP, SIGBUS, SIGSYS,  SIGXCPU, SIGXFSZ};

// Tool names whose users should send the preprocessed source.
constexpr const char* compiler_tools[] = {"C/C++ Parser", "C/C++ Optimizer", "C/C++ Codegen"};

bool names_compiler_tool(const char* name) {
  for (const char* tool : compiler_tools)
    if (strstr(name, tool) != nullptr) return true;
  return false;
}

}  // namespace

const char* fatal_signal_reason(int sig) {
  for (const signal_reason& known : signal_reasons)
    if (known.sig == sig) return known.text;
  return "experienced a fatal internal fault";
}

void print_support_message() {
  fprintf(stderr,
          "This is caused by a defect in the Orvane %s.\n"
          "Orvane Customer Support may be able to suggest a workaround to avoid this.\n"
          "\n"
          "Upgrading to the newest version of the compiler may fix this problem.\n"
          "\n"
          "Contact Orvane on the Forumline support forums at %s\n"
          "\n"
          "We need to see this ENTIRE error message and a complete, reproducible\n"
          "test case including ALL of the command-line options.\n",
          tool_name(), support_forum_address);
  fputs(support_closing(tool_name()), stderr);
}

const char* support_closing(const char* name) {
  if (names_compiler_tool(name))
    return "Include the .pp file created by option --preproc_with_comment\n\n";
  if (strcmp(name, "Linker") == 0)
    return "Include all of the object files, libraries, and linker command files\n"
           "used to link the program.\n\n";
  return "\n";
}

void try_gen_corefile(int) {}

void install_common_handlers(signal_handler_fn handler, signal_callback_fn new_callback) {
  callback = new_callback;
  for (int sig : handled_signals)
    signal(sig, handler);
}

void common_signal_handler(int sig, const char* name, const char* fmt, ...) {
  const char* shown = valid(name) ? name : "unknown";
  if (sig == SIGTERM || sig == SIGINT || sig == SIGHUP) {
    if (sig == SIGTERM)
      fprintf(stderr, "[%s received a terminate signal]\n", shown);
    else
      fprintf(stderr, "[%s forced exit]\n", shown);
    _Exit(2);
  }

  if (valid(fmt)) {
    va_list args;
    va_start(args, fmt);
    vsnprintf(format_buffer, text_buffer_size, fmt, args);
    va_end(args);
  }

  // The first fatal signal's reason stands for the rest of the process.
  const char* unset = nullptr;
  reason.compare_exchange_strong(unset, fatal_signal_reason(sig));

  fprintf(stderr, "\nINTERNAL ERROR: %s %s\n", shown, reason.load());
  if (fmt != nullptr && format_buffer[0] != '\0')
    fprintf(stderr, "                  %s\n", format_buffer);
  fputc('\n', stderr);
  fflush(nullptr);

  print_support_message();
  fflush(nullptr);

  if (callback != nullptr) callback(sig);
  try_gen_corefile(sig);
  _Exit(2);
}

void sigstrnappend(char* buf, size_t size, const char* fmt, ...) {
  if (!valid(buf) || size == 0) return;
  if (valid(fmt)) {
    va_list args;
    va_start(args, fmt);
    vsnprintf(append_buffer, text_buffer_size, fmt, args);
    va_end(args);
  }
  const size_t length = strnlen(buf, size);
  if (length < size - 1) {
    const size_t room = size - 1 - length;
    const size_t count = std::min(strlen(append_buffer), room);
    memcpy(buf + length, append_buffer, count);
    buf[length + count] = '\0';
  }
  buf[size - 1] = '\0';
}
