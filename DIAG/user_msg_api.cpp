// Free-text diagnostics through the general catalogue rows.
#include "DIAG/user_msg_api.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "DIAG/messages.h"
#include "UTIL/safemalloc.h"

namespace {

// The tool's own position given to every message of this interface.
constexpr const char* umsg_src_file = "DIAG/user_msg_api";

std::string format_text(const char* format, va_list args) {
  char* text = USER_MSG::make_msg_str(format, args);
  std::string result(text);
  std::free(text);
  return result;
}

// Builds the message class on the stack for the formatted text and reports it,
// with the source position when one is given.
template <class Message>
int report_text(unsigned line, const DIAG_SRCINFO* src, const std::string& text) {
  Message message(umsg_src_file, line, text.c_str());
  return message.set_src(src).report();
}

}  // namespace

// Forms the text of a reporting operation from the format and the variable
// arguments that follow its last named parameter.
#define FORMATTED_TEXT(text, last_param, format)      \
  va_list args;                                       \
  va_start(args, last_param);                         \
  const std::string text = format_text(format, args); \
  va_end(args)

USER_MSG* USER_MSG::get_umsg_obj() {
  static USER_MSG* instance = new USER_MSG();
  return instance;
}

void USER_MSG::emit_warnings_as_errors() {
  warnings_as_errors_ = true;
}

int USER_MSG::get_error_count() const {
  return DIAGNOSTIC::error_count_m;
}

char* USER_MSG::make_msg_str(const char* format, va_list args) {
  if (format == nullptr) format = "";
  va_list measure;
  va_copy(measure, args);
  int length = std::vsnprintf(nullptr, 0, format, measure);
  va_end(measure);
  if (length < 0) length = 0;
  char* text = static_cast<char*>(safemalloc(static_cast<size_t>(length) + 1));
  text[0] = '\0';
  std::vsnprintf(text, static_cast<size_t>(length) + 1, format, args);
  return text;
}

int USER_MSG::debug(const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gdebug>(__LINE__, nullptr, text);
}

int USER_MSG::remark(const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gremark>(__LINE__, nullptr, text);
}

int USER_MSG::advice(const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gadvice>(__LINE__, nullptr, text);
}

int USER_MSG::advice(const DIAG_SRCINFO* src, const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gadvice>(__LINE__, src, text);
}

int USER_MSG::warning(unsigned, const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  if (warnings_as_errors_) return report_text<DIAG::gerror>(__LINE__, nullptr, text);
  return report_text<DIAG::gwarning>(__LINE__, nullptr, text);
}

int USER_MSG::warning(const DIAG_SRCINFO* src, unsigned, const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  if (warnings_as_errors_) return report_text<DIAG::gerror>(__LINE__, src, text);
  return report_text<DIAG::gwarning>(__LINE__, src, text);
}

int USER_MSG::error(const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gerror>(__LINE__, nullptr, text);
}

int USER_MSG::error(const DIAG_SRCINFO* src, const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gerror>(__LINE__, src, text);
}

int USER_MSG::apperror(const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gapperror>(__LINE__, nullptr, text);
}

int USER_MSG::fatal(const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gfatal>(__LINE__, nullptr, text);
}

int USER_MSG::fatal(const DIAG_SRCINFO* src, const char* format, ...) {
  FORMATTED_TEXT(text, format, format);
  return report_text<DIAG::gfatal>(__LINE__, src, text);
}

int USER_MSG::die(const char* prefix, const char* format, ...) {
  // The prefix joins the format, so it is formatted too.
  const std::string joined = std::string(prefix ? prefix : "") + ": " + (format ? format : "");
  FORMATTED_TEXT(text, format, joined.c_str());
  return report_text<DIAG::gdie>(__LINE__, nullptr, text);
}
