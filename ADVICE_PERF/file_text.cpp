#include "ADVICE_PERF/file_text.h"

#include "UTIL/retried.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace {

class FILE_DESCRIPTOR {
 public:
  explicit FILE_DESCRIPTOR(const char* file_name)
      : fd(retried([&] { return open(file_name, O_RDONLY | O_CLOEXEC); })) {}
  ~FILE_DESCRIPTOR() {
    if (fd >= 0) close(fd);
  }
  FILE_DESCRIPTOR(const FILE_DESCRIPTOR&) = delete;
  FILE_DESCRIPTOR& operator=(const FILE_DESCRIPTOR&) = delete;
  const int fd;
};

}  // namespace

bool load_file_text(const char* file_name, FILE_TEXT& file, std::size_t limit) {
  const FILE_DESCRIPTOR input(file_name);
  if (input.fd < 0) return false;
  // Room for a regular file, the end-of-file read and the terminator, so that
  // the buffer grows only when the file does while it is read. The buffer
  // never needs more than limit + 1 bytes and the terminator: one byte past
  // the limit decides.
  const std::size_t most = limit + 2;
  struct stat status {};
  std::size_t capacity = std::min<std::size_t>(64 * 1024, most);
  if (fstat(input.fd, &status) == 0 && S_ISREG(status.st_mode))
    capacity = std::clamp<std::size_t>(status.st_size + 2, capacity, most);
  file.text = std::make_unique_for_overwrite<char[]>(capacity);
  file.size = 0;
  for (;;) {
    if (file.size + 1 == capacity) {
      const std::size_t larger = std::min(capacity * 2, most);
      auto grown = std::make_unique_for_overwrite<char[]>(larger);
      std::memcpy(grown.get(), file.text.get(), file.size);
      file.text = std::move(grown);
      capacity = larger;
    }
    const ssize_t got = retried(
        [&] { return read(input.fd, file.text.get() + file.size, capacity - 1 - file.size); });
    if (got < 0) return false;
    if (got == 0) break;
    char* const start = file.text.get() + file.size;
    const char* nul = static_cast<const char*>(std::memchr(start, 0, got));
    file.size += nul ? nul - start : got;
    if (file.size > limit) return false;
    if (nul) break;
  }
  file.text[file.size] = '\0';
  return true;
}
