#include "UTIL/cmdfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "UTIL/process_end.h"
#include "UTIL/retried.h"
#include "UTIL/safemalloc.h"

namespace {

const size_t initial_capacity = 80;

// Quote excerpts show at most this many characters of the quoted text.
const size_t excerpt_length = 30;

// The open command file's descriptor (-1 while none is open) and how much of
// it has been read. Command files never nest, so one is enough.
struct bounded_file {
  int fd = -1;
  size_t read_bytes = 0;
} command_file;

ssize_t read_bounded(void* cookie, char* buffer, size_t size) {
  auto* file = static_cast<bounded_file*>(cookie);
  const ssize_t got = read(file->fd, buffer, size);
  if (got > 0) file->read_bytes += static_cast<size_t>(got);
  if (file->read_bytes <= cmdfile_max_bytes) return got;
  errno = EFBIG;
  return -1;
}

int close_bounded(void* cookie) {
  auto* file = static_cast<bounded_file*>(cookie);
  return close(std::exchange(file->fd, -1));
}

// The next character of stream; an interrupted read is tried again, and any
// other read error ends the process.
int next_char(FILE* stream) {
  for (;;) {
    const int c = getc_unlocked(stream);
    if (c != EOF || !ferror(stream)) return c;
    if (errno == EINTR) {
      clearerr(stream);
      continue;
    }
    if (errno == EFBIG) {
      fprintf(stderr, ">> Command file longer than %zu bytes; aborting\n", cmdfile_max_bytes);
      end_process(-1);
    }
    fprintf(stderr, ">> Cannot read command file: %s; aborting\n", strerror(errno));
    end_process(1);
  }
}

bool is_space(int c) {
  return c != EOF && isspace(c);
}

// A word under construction. Its characters are stored up to its first NUL
// byte; of the rest only what the tokenizer asks about the word is kept: its
// length, how many "/" end it and whether a "-" or white space stands nearer
// its end. The buffer doubles as needed and is freed unless released.
class word_buffer {
 public:
  word_buffer() = default;
  word_buffer(const word_buffer&) = delete;
  word_buffer& operator=(const word_buffer&) = delete;
  ~word_buffer() { free(text); }

  void push(char c) {
    if (!cut) store(c);
    cut = cut || c == '\0';
    ++length;
    trailing_slashes = c == '/' ? trailing_slashes + 1 : 0;
    if (c == '-' || is_space(static_cast<unsigned char>(c))) dash_nearest_end = c == '-';
  }
  bool empty() const { return length == 0; }
  bool ends_in_slash() const { return trailing_slashes > 0; }
  void drop_slash() {
    --trailing_slashes;
    if (stored == length) --stored;
    --length;
  }
  // Replaces the last character, a backslash.
  void replace_last(char c) {
    if (stored == length) text[stored - 1] = c;
  }
  // "#" starts a comment unless the word, read backwards from its end,
  // reaches a "-" before white space or its beginning, as in --define=X#1.
  bool hash_starts_comment() const { return !dash_nearest_end; }

  // Hands the terminated word to the caller; the buffer is not used afterwards.
  char* release() {
    text[stored] = '\0';
    return std::exchange(text, nullptr);
  }

 private:
  void store(char c) {
    if (stored + 1 == capacity) {
      capacity *= 2;
      text = static_cast<char*>(saferealloc(text, capacity));
    }
    text[stored++] = c;
  }

  char* text = static_cast<char*>(safemalloc(initial_capacity));
  size_t stored = 0;
  size_t capacity = initial_capacity;
  size_t length = 0;
  size_t trailing_slashes = 0;
  bool cut = false;
  bool dash_nearest_end = false;
};

void skip_line_comment(FILE* stream) {
  int c;
  do
    c = next_char(stream);
  while (c != '\n' && c != EOF);
}

void skip_block_comment(FILE* stream) {
  for (int previous = 0, c; (c = next_char(stream)) != EOF; previous = c)
    if (previous == '*' && c == '/') return;
  fputs(">> Unterminated comment in command file;", stderr);
  fputs(" aborting!\n", stderr);
  end_process(-1);
}

// quoted: the first characters of the open quote's text.
[[noreturn]] void unterminated_quote(std::string_view quoted) {
  fputs(">> Unterminated quote in command file; aborting\n", stderr);
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
  if (replaces) word.replace_last(static_cast<char>(c));
  pending = false;
  return replaces;
}

// Stores the characters up to the closing double quote, which is consumed.
void read_quoted(FILE* stream, word_buffer& word) {
  std::string excerpt;  // the quoted text's first characters, as stored
  size_t count = 0;
  bool pending = false;
  for (int c; (c = next_char(stream)) != EOF;) {
    if (take_escaped(word, pending, c)) {
      if (count <= excerpt_length) excerpt.back() = static_cast<char>(c);
      continue;
    }
    if (c == '"') return;
    pending = c == '\\';
    word.push(static_cast<char>(c));
    if (++count <= excerpt_length) excerpt += static_cast<char>(c);
  }
  unterminated_quote(excerpt);
}

}  // namespace

FILE* open_command_file(const char* path) {
  if (command_file.fd >= 0) {
    errno = EBUSY;
    return nullptr;
  }
  const int fd = retried([&] { return open(path, O_RDONLY | O_CLOEXEC); });
  if (fd < 0) return nullptr;
  struct stat status {};
  if (fstat(fd, &status) == 0 && S_ISDIR(status.st_mode)) {
    close(fd);
    errno = EISDIR;
    return nullptr;
  }
  command_file = {fd, 0};
  FILE* stream = fopencookie(&command_file, "r", {read_bounded, nullptr, nullptr, close_bounded});
  if (!stream) close_bounded(&command_file);
  return stream;
}

char* fnextopt(FILE* stream) {
  if (stream == nullptr) return nullptr;

  word_buffer word;
  bool pending = false;
  for (int c; (c = next_char(stream)) != EOF;) {
    if (c == '*' && word.ends_in_slash()) {
      word.drop_slash();
      skip_block_comment(stream);
    } else if (take_escaped(word, pending, c)) {
      // stored in place of the pending backslash
    } else if (c == '\\') {
      word.push('\\');
      pending = true;
    } else if (c == '"') {
      read_quoted(stream, word);
    } else if (c == ';' || (c == '#' && word.hash_starts_comment())) {
      skip_line_comment(stream);
    } else if (is_space(c)) {
      if (!word.empty()) return word.release();
    } else {
      word.push(static_cast<char>(c));
    }
  }

  return word.empty() ? nullptr : word.release();
}
