#pragma once
// Numbered diagnostics: the catalogue row type, source positions, and
// DIAGNOSTIC, the base of every message class in namespace DIAG.
#include <cstdint>
#include <cstdio>
#include <stack>
#include <string>
#include <utility>
#include <vector>

// A fixed underlying type: any number is a valid value (shown as "(unknown)").
enum dc_SEVERITY : int32_t {
  dc_suppressed = 0,
  dc_no_error = 1,
  dc_advice = 2,
  dc_debug = 3,
  dc_remark = 4,
  dc_warning = 5,
  dc_error = 6,
  dc_fatal = 7,
};

// One row of the message catalogue.
struct DIAG_INFO {
  int32_t code;         // 0 ends the table
  const char* std_msg;  // printf format
  const char* vrb_msg;  // verbose format; unused, always null
  dc_SEVERITY severity;
  bool internal;           // reports a fault of the tool itself
  bool non_discretionary;  // severity may not be overridden
};

// The catalogue, terminated by a row of code 0. Writable: severity overrides
// change it at run time.
extern DIAG_INFO DIAG_INFO_ENTRY[];

// A position in the user's input.
class DIAG_SRCINFO {
 public:
  virtual std::string file() const = 0;
  virtual unsigned line() const = 0;
  virtual unsigned column() const = 0;
  virtual bool approx() const = 0;
  virtual ~DIAG_SRCINFO() = default;
  virtual bool is_equal(const DIAG_SRCINFO* other) const = 0;
};

class DIAG_SRCINFO_DATA : public DIAG_SRCINFO {
 public:
  DIAG_SRCINFO_DATA(std::string file, uint32_t line, uint32_t column, bool approx)
      : file_(std::move(file)), line_(line), column_(column), approx_(approx) {}

  std::string file() const override { return file_; }
  unsigned line() const override { return line_; }
  unsigned column() const override { return column_; }
  bool approx() const override { return approx_; }
  // Same line, column and file; approx is not compared.
  bool is_equal(const DIAG_SRCINFO* other) const override;

 private:
  std::string file_;
  uint32_t line_;
  uint32_t column_;
  bool approx_;
};

class DIAGNOSTIC {
 public:
  DIAG_INFO* info;
  int32_t cols_left;      // columns left on the current output line
  DIAG_SRCINFO* srcinfo;  // owned, may be null
  const char* src_file;   // the tool's own source position of the raise
  uint32_t src_line;

  DIAGNOSTIC(DIAG_INFO* info, const char* file, unsigned line);
  // Clones srcinfo and starts a fresh output line.
  DIAGNOSTIC(const DIAGNOSTIC& other);
  DIAGNOSTIC& operator=(const DIAGNOSTIC&) = delete;
  virtual ~DIAGNOSTIC();

  virtual DIAGNOSTIC* alloc() const = 0;
  // Prints the header; a derived class adds its text and flushes.
  virtual int report();
  // The text formatted for a document, as a new heap string the caller frees
  // with free; null here.
  virtual char* get_sp_buffer();
  // Same row and equal source positions; both objects need a srcinfo.
  virtual bool is_equal(DIAGNOSTIC* other);
  virtual void free_mem();
  virtual void dump();

  FILE* fp() const;
  bool suppress() const;
  const char* sev_str() const;
  bool is_discretionary() const;
  DIAGNOSTIC& set_src(const DIAG_SRCINFO* src);
  // Ends the message: newline, counting, and the process end at a fatal
  // row or beyond the error limit.
  void flush();

  static DIAG_INFO* get_info(int code);
  static void push_debug_mode(bool mode);
  static void pop_debug_mode();
  static void push_indent(int indent);
  static void pop_indent();

  // Formatting of messages.
  int print_header();
  // Prints the formatted text to fp() with the line wrap; gives its length.
  int print(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // The formatted text, wrapped for documents, as a new heap string the caller
  // frees with free.
  char* sp_print(const char* format, ...) __attribute__((format(printf, 2, 3)));
  char* print_formatted(const char* text, bool to_buffer, int32_t* cols, int diag_cols, int indent,
                        int wrap_indent);
  static const char* last_printable_char(const char* text, int max);
  void start_new_line();
  static std::string srcinfo_str(const DIAG_SRCINFO* src);
  void show_annotated_source();

  // Severity overrides of catalogue rows. Carried for the toolchain's other
  // tools; no step of an advzorv run calls them.
  static void override_severity(int code, dc_SEVERITY sev);
  static void override_severity(const char* codes, dc_SEVERITY sev);
  static void override_severity(dc_SEVERITY from, dc_SEVERITY to);
  static void save_severities();
  static void restore_severities();

  static bool wrap_enabled_m;
  static bool warnings_m;
  static bool advice_m;
  static bool debug_m;
  static bool remarks_m;
  static bool verbose_m;
  static bool display_code_m;
  static bool display_ipos_m;
  static bool wrap_headers_m;
  static bool debug_mode_m;
  static int32_t max_errors_m;
  static int32_t wrap_indent_m;
  static int32_t diag_cols_m;
  static int32_t indent_m;
  static std::stack<bool> debug_mode_stack_m;
  static std::stack<int> indent_stack_m;
  static FILE* fp_m;
  static int32_t error_count_m;
  static std::vector<dc_SEVERITY> saved_severities_m;

 private:
  void open_line(std::string* buffer, int32_t* cols, int width, int indent, int wrap_indent);
};
