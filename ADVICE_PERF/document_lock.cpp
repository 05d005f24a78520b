#include "ADVICE_PERF/document_lock.h"

#include "ADVICE_PERF/file_replace.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <thread>
#include <tuple>

namespace {

struct directory {
  std::string name;
  int fd;
  dev_t device;
  ino_t inode;
};

// Takes the lock on fd, trying again with growing pauses until patience runs out.
bool lock_within(int fd, int operation, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  auto pause = std::chrono::milliseconds(1);
  while (flock(fd, operation | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return true;  // a lock the file system lacks
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds(50));
  }
  return true;
}

}  // namespace

DOCUMENT_LOCKS::DOCUMENT_LOCKS(const std::vector<std::string>& documents, lock_mode mode,
                               std::chrono::milliseconds patience) {
  std::vector<directory> directories;
  for (const std::string& document : documents) {
    const std::string name = directory_of(link_target(document));
    const int fd = open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    struct stat info {};
    if (fd < 0) continue;
    fstat(fd, &info);
    directories.push_back({name, fd, info.st_dev, info.st_ino});
  }
  const auto identity = [](const directory& d) { return std::tie(d.device, d.inode); };
  std::sort(directories.begin(), directories.end(),
            [&](const directory& a, const directory& b) { return identity(a) < identity(b); });
  const int operation = mode == lock_mode::shared ? LOCK_SH : LOCK_EX;
  for (size_t i = 0; i < directories.size(); ++i) {
    const directory& d = directories[i];
    const bool named_before = i > 0 && identity(directories[i - 1]) == identity(d);
    if (!named_before && busy.empty()) {
      if (lock_within(d.fd, operation, patience)) {
        held.push_back(d.fd);
        continue;
      }
      busy = d.name;
    }
    close(d.fd);
  }
  if (!busy.empty()) release();
}

DOCUMENT_LOCKS::~DOCUMENT_LOCKS() {
  release();
}

void DOCUMENT_LOCKS::release() {
  for (int fd : held)
    close(fd);
  held.clear();
}
