#include "UTIL/cmdfile.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "UTIL/process_end.h"
#include "UTIL/safemalloc.h"

namespace {

const size_t initial_capacity = 80;

// Quote excerpts show at most this many characters of the quoted text.
const size_t excerpt_length = 30;

[[noreturn]] void word_too_long() {
  fprintf(stderr, ">> Option in command file longer than %zu characters; aborting\n",
          cmdfile_max_word);
  end_process(-1);
}

// A word under construction, in a buffer that doubles up to the longest word;
// freed unless released.
struct word_buffer {
  char* text = static_cast<char*>(safemalloc(initial_capacity));
  size_t length = 0;
  size_t capacity = initial_capacity;

  word_buffer() = default;
  word_buffer(const word_buffer&) = delete;
  word_buffer& operator=(const word_buffer&) = delete;
  ~word_buffer() { free(text); }

  void push(char c) {
    if (length == cmdfile_max_word) word_too_long();
    if (length + 1 == capacity) {
      capacity *= 2;
      text = static_cast<char*>(saferealloc(text, capacity));
    }
    text[length++] = c;
  }
  bool empty() const { return length == 0; }
  char last() const { return text[length - 1]; }

  // Hands the terminated word to the caller; the buffer is not used afterwards.
  char* release() {
    text[length] = '\0';
    return std::exchange(text, nullptr);
  }
};

bool is_space(int c) {
  return c != EOF && isspace(c);
}

void skip_line_comment(FILE* stream) {
  int c;
  do
    c = getc(stream);
  while (c != '\n' && c != EOF);
}

void skip_block_comment(FILE* stream) {
  for (int previous = 0, c; (c = getc(stream)) != EOF; previous = c)
    if (previous == '*' && c == '/') return;
  fputs(">> Unterminated comment in command file;", stderr);
  fputs(" aborting!\n", stderr);
  end_process(-1);
}

[[noreturn]] void unterminated_quote(const word_buffer& word, size_t quote_start) {
  fputs(">> Unterminated quote in command file; aborting\n", stderr);
  const size_t end = std::min(word.length, quote_start + excerpt_length);
  std::string_view quoted(word.text + quote_start, end - quote_start);
  if (quoted != "\n") {
    while (!quoted.empty() && quoted.back() == '\n')
      quoted.remove_suffix(1);
    fputs("   Quote starts at \"", stderr);
    for (char c : quoted) {
      if (c == '\n')
        fputs("\\n", stderr);
      else if (c == '\t')
        fputs("\\t", stderr);
      else
        fputc(c, stderr);
    }
    fputc('\n', stderr);
  }
  end_process(-1);
}

// After a pending backslash, a double quote or a backslash replaces it. Any
// character ends the pending state; true if this one was taken.
bool take_escaped(word_buffer& word, bool& pending, int c) {
  const bool replaces = pending && (c == '"' || c == '\\');
  if (replaces) word.text[word.length - 1] = static_cast<char>(c);
  pending = false;
  return replaces;
}

// Stores the characters up to the closing double quote, which is consumed.
void read_quoted(FILE* stream, word_buffer& word) {
  const size_t quote_start = word.length;
  bool pending = false;
  for (int c; (c = getc(stream)) != EOF;) {
    if (take_escaped(word, pending, c)) continue;
    if (c == '"') return;
    pending = c == '\\';
    word.push(static_cast<char>(c));
  }
  unterminated_quote(word, quote_start);
}

// "#" starts a comment unless the word, read backwards from its end, reaches a
// "-" before white space or its beginning, as in --define=X#1.
bool hash_starts_comment(const word_buffer& word) {
  for (size_t i = word.length; i > 0; --i) {
    const char c = word.text[i - 1];
    if (c == '-') return false;
    if (is_space(static_cast<unsigned char>(c))) return true;
  }
  return true;
}

}  // namespace

char* fnextopt(FILE* stream) {
  if (stream == nullptr) return nullptr;

  word_buffer word;
  bool pending = false;
  for (int c; (c = getc(stream)) != EOF;) {
    if (c == '*' && !word.empty() && word.last() == '/') {
      --word.length;
      skip_block_comment(stream);
    } else if (take_escaped(word, pending, c)) {
      // stored in place of the pending backslash
    } else if (c == '\\') {
      word.push('\\');
      pending = true;
    } else if (c == '"') {
      read_quoted(stream, word);
    } else if (c == ';' || (c == '#' && hash_starts_comment(word))) {
      skip_line_comment(stream);
    } else if (is_space(c)) {
      if (!word.empty()) return word.release();
    } else {
      word.push(static_cast<char>(c));
    }
  }

  return word.empty() ? nullptr : word.release();
}
