#pragma once
// The pieces of GitHub-flavoured Markdown that the Markdown views share.

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

// text with every character that Markdown or a table would read as inline
// syntax escaped by a backslash, and line breaks turned into spaces, so it
// shows as written inside a paragraph, a list item, a heading or a table cell
// (never at the start of a line).
std::string markdown_escape(std::string_view text);

// A bar of block characters, columns wide for the largest value.
std::string text_bar(uint64_t value, uint64_t largest, unsigned columns);

// One table row of cells that are already Markdown.
void table_row(std::ostream& out, std::initializer_list<std::string> cells);
