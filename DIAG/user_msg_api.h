#pragma once
// USER_MSG: free-text diagnostics. Each operation formats its arguments and
// reports the text through one of the general catalogue rows 99920..99927.
#include <cstdarg>

#include "DIAG/diag.h"

#define USER_MSG_PRINTF(fmt_index) __attribute__((format(printf, fmt_index, fmt_index + 1)))

class USER_MSG {
 public:
  static USER_MSG* get_umsg_obj();

  // From now on warning() reports errors.
  void emit_warnings_as_errors();
  int get_error_count() const;

  int debug(const char* format, ...) USER_MSG_PRINTF(2);
  int remark(const char* format, ...) USER_MSG_PRINTF(2);
  int advice(const char* format, ...) USER_MSG_PRINTF(2);
  int advice(const DIAG_SRCINFO* src, const char* format, ...) USER_MSG_PRINTF(3);
  // The number has no effect on the message.
  int warning(unsigned number, const char* format, ...) USER_MSG_PRINTF(3);
  int warning(const DIAG_SRCINFO* src, unsigned number, const char* format, ...) USER_MSG_PRINTF(4);
  int error(const char* format, ...) USER_MSG_PRINTF(2);
  int error(const DIAG_SRCINFO* src, const char* format, ...) USER_MSG_PRINTF(3);
  // An internal error of the tool; counted, the run goes on.
  int apperror(const char* format, ...) USER_MSG_PRINTF(2);
  // Ends the process with status 1.
  int fatal(const char* format, ...) USER_MSG_PRINTF(2);
  int fatal(const DIAG_SRCINFO* src, const char* format, ...) USER_MSG_PRINTF(3);
  // An internal fatal error "(prefix: text)"; aborts the process.
  int die(const char* prefix, const char* format, ...) USER_MSG_PRINTF(3);

  // The formatted text in a new array that the caller frees; a null format
  // counts as empty.
  static char* make_msg_str(const char* format, va_list args);

 private:
  USER_MSG() = default;

  bool warnings_as_errors_ = false;
};

#undef USER_MSG_PRINTF
