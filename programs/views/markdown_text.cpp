#include "programs/views/markdown_text.h"

std::string markdown_escape(std::string_view text) {
  // Inline syntax only: the views never start a line with escaped text.
  static constexpr std::string_view syntax = "\\`*_[]<>|~&";
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    if (c == '\n' || c == '\r') {
      escaped += ' ';
      continue;
    }
    if (syntax.find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string text_bar(uint64_t value, uint64_t largest, unsigned columns) {
  const uint64_t filled = largest ? value * columns / largest : 0;
  std::string bar;
  for (uint64_t i = 0; i < filled; ++i)
    bar += "\u2588";
  return bar;
}

void table_row(std::ostream& out, std::initializer_list<std::string> cells) {
  out << '|';
  for (const std::string& cell : cells)
    out << ' ' << cell << " |";
  out << '\n';
}
