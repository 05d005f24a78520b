#include "ADVICE_PERF/file_text.h"

#include "ADVICE_PERF/xml_read.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

class FILE_DESCRIPTOR {
 public:
  explicit FILE_DESCRIPTOR(const char* file_name) : fd(open(file_name, O_RDONLY | O_CLOEXEC)) {}
  ~FILE_DESCRIPTOR() {
    if (fd >= 0) close(fd);
  }
  FILE_DESCRIPTOR(const FILE_DESCRIPTOR&) = delete;
  FILE_DESCRIPTOR& operator=(const FILE_DESCRIPTOR&) = delete;
  const int fd;
};

}  // namespace

bool load_file_text(const char* file_name, FILE_TEXT& file) {
  const FILE_DESCRIPTOR input(file_name);
  if (input.fd < 0) return false;
  // Room for a regular file, the end-of-file read and the terminator, so
  // that the buffer grows only when the file does while it is read.
  struct stat status {};
  std::size_t capacity = 64 * 1024;
  if (fstat(input.fd, &status) == 0 && S_ISREG(status.st_mode)) {
    if (static_cast<std::size_t>(status.st_size) > max_xml_file_bytes) return false;
    capacity = std::max<std::size_t>(status.st_size + 2, capacity);
  }
  file.text = std::make_unique_for_overwrite<char[]>(capacity);
  for (;;) {
    if (file.size + 1 == capacity) {
      if (capacity > max_xml_file_bytes) return false;
      const std::size_t larger = std::min(capacity * 2, max_xml_file_bytes + 1);
      auto grown = std::make_unique_for_overwrite<char[]>(larger);
      std::memcpy(grown.get(), file.text.get(), file.size);
      file.text = std::move(grown);
      capacity = larger;
    }
    const ssize_t got = read(input.fd, file.text.get() + file.size, capacity - 1 - file.size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    const char* nul = static_cast<const char*>(std::memchr(file.text.get() + file.size, 0, got));
    file.size += got;
    if (nul) break;
  }
  file.text[file.size] = '\0';
  return true;
}

