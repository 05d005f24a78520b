// The diagnostic core: switches, severity handling, counting and the end of
// the process at fatal messages and at the error limit.
#include "DIAG/diag.h"

#include <cstdlib>
#include <map>

#include "DIAG/messages.h"
#include "UTIL/process_end.h"

bool DIAGNOSTIC::wrap_enabled_m = true;
bool DIAGNOSTIC::warnings_m = true;
bool DIAGNOSTIC::advice_m = false;
bool DIAGNOSTIC::debug_m = false;
bool DIAGNOSTIC::remarks_m = false;
bool DIAGNOSTIC::verbose_m = false;
bool DIAGNOSTIC::display_code_m = false;
bool DIAGNOSTIC::display_ipos_m = false;
bool DIAGNOSTIC::wrap_headers_m = false;
bool DIAGNOSTIC::debug_mode_m = false;
int32_t DIAGNOSTIC::max_errors_m = 100;
int32_t DIAGNOSTIC::wrap_indent_m = 3;
int32_t DIAGNOSTIC::diag_cols_m = 79;
int32_t DIAGNOSTIC::indent_m = 0;
std::stack<bool> DIAGNOSTIC::debug_mode_stack_m;
std::stack<int> DIAGNOSTIC::indent_stack_m;
FILE* DIAGNOSTIC::fp_m = nullptr;
int32_t DIAGNOSTIC::error_count_m = 0;
std::vector<dc_SEVERITY> DIAGNOSTIC::saved_severities_m;

namespace {

// The tool's own position reported with the error-limit message. It is a
// fixed text, not __FILE__ and __LINE__: the message has always named this
// position, and its readers match the text, so it must not move with edits.
constexpr const char* limit_src_file = "DIAG/diag";
constexpr unsigned limit_src_line = 151;

DIAG_SRCINFO* copy_srcinfo(const DIAG_SRCINFO* src) {
  if (src == nullptr) return nullptr;
  return new DIAG_SRCINFO_DATA(src->file(), src->line(), src->column(), src->approx());
}

}  // namespace

bool DIAG_SRCINFO_DATA::is_equal(const DIAG_SRCINFO* other) const {
  return other != nullptr && line_ == other->line() && column_ == other->column() &&
         file_ == other->file();
}

DIAGNOSTIC::DIAGNOSTIC(DIAG_INFO* info, const char* file, unsigned line)
    : info(info), cols_left(diag_cols_m), srcinfo(nullptr), src_file(file), src_line(line) {}

DIAGNOSTIC::DIAGNOSTIC(const DIAGNOSTIC& other)
    : info(other.info),
      cols_left(diag_cols_m),
      srcinfo(copy_srcinfo(other.srcinfo)),
      src_file(other.src_file),
      src_line(other.src_line) {}

DIAGNOSTIC::~DIAGNOSTIC() {
  delete srcinfo;
}

int DIAGNOSTIC::report() {
  return print_header();
}

char* DIAGNOSTIC::get_sp_buffer() {
  return nullptr;
}

bool DIAGNOSTIC::is_equal(DIAGNOSTIC* other) {
  if (srcinfo == nullptr || other->srcinfo == nullptr) return false;
  return info->code == other->info->code && srcinfo->is_equal(other->srcinfo);
}

void DIAGNOSTIC::free_mem() {}

void DIAGNOSTIC::dump() {
  auto text = [](const char* s) { return s ? s : "(null)"; };
  std::printf("Code : %d\n", static_cast<int>(info->code));
  std::printf("std_msg : %s\n", text(info->std_msg));
  std::printf("vrb_msg : %s\n", text(info->vrb_msg));
  if (srcinfo != nullptr) {
    std::printf("File : %s\n", srcinfo->file().c_str());
    std::printf("Line : %d\n", static_cast<int>(srcinfo->line()));
    std::printf("Column: %d\n", static_cast<int>(srcinfo->column()));
  }
}

FILE* DIAGNOSTIC::fp() const {
  if (fp_m != nullptr) return fp_m;
  const int severity = info->severity;
  return (severity >= dc_suppressed && severity <= dc_remark) ? stdout : stderr;
}

bool DIAGNOSTIC::suppress() const {
  switch (info->severity) {
    case dc_suppressed:
      return true;
    case dc_advice:
      return !advice_m;
    case dc_debug:
      return !debug_m;
    case dc_remark:
      return !remarks_m;
    case dc_warning:
      return !warnings_m;
    default:
      return false;
  }
}

const char* DIAGNOSTIC::sev_str() const {
  switch (info->severity) {
    case dc_suppressed:
      return "(suppressed)";
    case dc_no_error:
      return "(no error)";
    case dc_advice:
      return "advice";
    case dc_debug:
      return "debug";
    case dc_remark:
      return "remark";
    case dc_warning:
      return "warning";
    case dc_error:
      return "error";
    case dc_fatal:
      return "fatal error";
  }
  return "(unknown)";
}

bool DIAGNOSTIC::is_discretionary() const {
  return !info->internal && !info->non_discretionary && info->severity < dc_fatal;
}

DIAGNOSTIC& DIAGNOSTIC::set_src(const DIAG_SRCINFO* src) {
  if (src != nullptr) {
    DIAG_SRCINFO* copy = copy_srcinfo(src);
    delete srcinfo;
    srcinfo = copy;
  }
  return *this;
}

void DIAGNOSTIC::flush() {
  if (cols_left >= diag_cols_m) return;  // nothing written for this message
  cols_left = diag_cols_m;
  FILE* out = fp();
  std::fputs("\n", out);
  if (verbose_m) show_annotated_source();
  std::fflush(out);
  if (debug_mode_m) return;
  if (info->severity > dc_warning) ++error_count_m;
  if (info->severity > dc_error) {
    if (info->internal) std::abort();
    end_process(1);
  }
  if (error_count_m > max_errors_m) {
    DIAG::max_errors limit(limit_src_file, limit_src_line, static_cast<unsigned>(max_errors_m));
    limit.report();
  }
}

DIAG_INFO* DIAGNOSTIC::get_info(int code) {
  static const std::map<int, DIAG_INFO*> by_code = [] {
    std::map<int, DIAG_INFO*> rows;
    for (DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; ++row)
      rows.emplace(row->code, row);
    return rows;
  }();
  auto found = by_code.find(code);
  return found == by_code.end() ? nullptr : found->second;
}

void DIAGNOSTIC::push_debug_mode(bool mode) {
  debug_mode_stack_m.push(debug_mode_m);
  debug_mode_m = mode;
}

void DIAGNOSTIC::pop_debug_mode() {
  debug_mode_m = false;
  if (!debug_mode_stack_m.empty()) {
    debug_mode_m = debug_mode_stack_m.top();
    debug_mode_stack_m.pop();
  }
}

void DIAGNOSTIC::push_indent(int indent) {
  indent_stack_m.push(indent_m);
  indent_m = indent;
}

void DIAGNOSTIC::pop_indent() {
  indent_m = 0;
  if (!indent_stack_m.empty()) {
    indent_m = indent_stack_m.top();
    indent_stack_m.pop();
  }
}
