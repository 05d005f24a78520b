// Message layout: headers, text wrapped to the line width, text formatted
// into a buffer for documents, and the quoted source line.
#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>

#include "DIAG/diag.h"
#include "UTIL/process_end.h"
#include "UTIL/safemalloc.h"

namespace {

// print() formats into one buffer that is reused by every message.
char* print_buffer = nullptr;
size_t print_buffer_size = 0;

// Layout of text formatted for documents.
constexpr int32_t sp_first_line_cols = 66;
constexpr int sp_diag_cols = 79;
constexpr int sp_indent = 0;
constexpr int sp_wrap_indent = 10;

bool is_blank(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

[[noreturn]] void line_geometry_failed() {
  std::fputs("Assertion failed: diag_cols > (indent + wrap_indent)\n", stderr);
  std::abort();
}

}  // namespace

int DIAGNOSTIC::print_header() {
  const bool wrap_enabled = wrap_enabled_m;
  if (suppress()) return 0;
  if (!wrap_headers_m) wrap_enabled_m = false;
  int count = 0;
  for (int i = 0; i < indent_m; ++i)
    count += print(" ");
  if (display_ipos_m || info->internal) count += print("%s:%u:", src_file, src_line);
  const std::string position = srcinfo_str(srcinfo);
  if (!position.empty()) count += print("%s: ", position.c_str());
  if (display_code_m || info->internal || info->severity == dc_advice) {
    count += print("%s%s #%u%s: ", info->internal ? "internal " : "", sev_str(),
                   static_cast<unsigned>(info->code), is_discretionary() ? "-D" : "");
  } else {
    count += print("%s: ", sev_str());
  }
  wrap_enabled_m = wrap_enabled;
  return count;
}

int DIAGNOSTIC::print(const char* format, ...) {
  if (suppress()) return 0;
  if (format == nullptr) format = "";
  va_list args;
  va_start(args, format);
  int length = std::vsnprintf(print_buffer, print_buffer_size, format, args);
  va_end(args);
  if (length < 0) length = 0;
  if (static_cast<size_t>(length) >= print_buffer_size) {
    std::free(print_buffer);
    print_buffer_size = static_cast<size_t>(length) + 1;
    print_buffer = static_cast<char*>(safemalloc(print_buffer_size));
    va_start(args, format);
    std::vsnprintf(print_buffer, print_buffer_size, format, args);
    va_end(args);
    print_buffer[length] = '\0';
  }
  if (wrap_enabled_m && cols_left < 1) start_new_line();
  print_formatted(print_buffer, false, &cols_left, diag_cols_m, indent_m, wrap_indent_m);
  return length;
}

char* DIAGNOSTIC::sp_print(const char* format, ...) {
  char* text = nullptr;
  va_list args;
  va_start(args, format);
  const int length = vasprintf(&text, format ? format : "", args);
  va_end(args);
  if (length < 0) {
    std::fputs("OUT OF MEMORY - APPLICATION ABORTED\n", stderr);
    end_process(1);
  }
  int32_t cols = sp_first_line_cols;
  char* formatted = print_formatted(text, true, &cols, sp_diag_cols, sp_indent, sp_wrap_indent);
  std::free(text);
  return formatted;
}

void DIAGNOSTIC::open_line(std::string* buffer, int32_t* cols, int width, int indent,
                           int wrap_indent) {
  if (buffer == nullptr) {
    start_new_line();
    *cols = cols_left;
    return;
  }
  buffer->push_back('\n');
  *cols = width;
  buffer->append(static_cast<size_t>(indent + wrap_indent), ' ');
}

char* DIAGNOSTIC::print_formatted(const char* text, bool to_buffer, int32_t* cols, int diag_cols,
                                  int indent, int wrap_indent) {
  if (!(diag_cols > indent + wrap_indent)) line_geometry_failed();
  const int width = diag_cols - (indent + wrap_indent);
  const char* p = text;
  const char* const end = text + std::strlen(text);
  std::string buffer;
  std::string* const out = to_buffer ? &buffer : nullptr;
  if (to_buffer) {
    const long lines = 1 + std::count(p, end, '\n') + 1;
    const long room = std::max(1, std::min<int>(width, *cols));
    buffer.reserve(static_cast<size_t>((lines + (end - p) / room) * diag_cols));
  }
  while (p < end) {
    const char* last = last_printable_char(p, *cols);
    if (last == p) {
      // No break fits the rest of this line: a word that fits a whole line
      // moves to the next one.
      const char* on_new_line = last_printable_char(p, width);
      if (on_new_line > p) {
        open_line(out, cols, width, indent, wrap_indent);
        last = on_new_line;
      }
    }
    if (last == p) {
      // No break at all: cut the word at the room left.
      const long room = std::min<long>(*cols, end - p);
      last = p + (room > 0 ? room : end - p) - 1;
    }
    const char* newline = static_cast<const char*>(std::memchr(p, '\n', last - p + 1));
    const char* piece_end = newline ? newline : last + 1;
    const size_t count = static_cast<size_t>(piece_end - p);
    if (to_buffer) {
      buffer.append(p, count);
    } else {
      std::fwrite(p, 1, count, fp());
    }
    *cols -= static_cast<int32_t>(count);
    // On behind the piece and the blanks that follow it, a line end among them.
    p = piece_end;
    while (p < end && is_blank(*p))
      ++p;
    if (p < end) open_line(out, cols, width, indent, wrap_indent);
  }
  if (!to_buffer) return nullptr;
  char* result = static_cast<char*>(safemalloc(buffer.size() + 1));
  std::memcpy(result, buffer.c_str(), buffer.size() + 1);
  return result;
}

const char* DIAGNOSTIC::last_printable_char(const char* text, int max) {
  if (*text == '\0') return text;
  const bool shorter_than_max =
      max >= 0 && strnlen(text, static_cast<size_t>(max)) < static_cast<size_t>(max);
  if (!wrap_enabled_m || max < 0 || shorter_than_max) {
    return text + std::strlen(text) - 1;
  }
  if (max == 0) return text;
  const char* p = text + max - 1;
  if (p[1] != '\0' && is_blank(p[1])) return p;
  while (!is_blank(*p) && p > text)
    --p;
  while (is_blank(*p) && p > text)
    --p;
  return p;
}

void DIAGNOSTIC::start_new_line() {
  FILE* out = fp();
  std::fputs("\n", out);
  const int lead = indent_m + wrap_indent_m;
  cols_left = diag_cols_m - lead;
  std::fprintf(out, "%*s", lead, "");
}

std::string DIAGNOSTIC::srcinfo_str(const DIAG_SRCINFO* src) {
  std::string text;
  if (src == nullptr) return text;
  const std::string file = src->file();
  if (file.empty()) return text;
  text = "\"" + file + "\"";
  if (src->line() != 0) text += ", line " + std::to_string(src->line());
  if (src->approx()) text += " (approximate)";
  return text;
}

void DIAGNOSTIC::show_annotated_source() {
  if (srcinfo == nullptr) return;
  const std::string file = srcinfo->file();
  const unsigned wanted = srcinfo->line();
  if (file.empty() || wanted == 0 || srcinfo->approx()) return;
  FILE* in = std::fopen(file.c_str(), "r");
  if (in == nullptr) return;
  std::string line;
  unsigned current = 1;
  for (int c = std::fgetc(in); c != EOF; c = std::fgetc(in)) {
    if (current == wanted) line.push_back(static_cast<char>(c));
    if (c == '\n' && ++current > wanted) break;
  }
  std::fclose(in);
  if (line.empty()) return;
  FILE* out = fp();
  std::fwrite(line.data(), 1, line.size(), out);
  const unsigned column = srcinfo->column();
  if (column != 0) std::fprintf(out, "%-*s^\n", static_cast<int>(column - 1), "");
}
