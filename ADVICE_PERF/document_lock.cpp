#include "ADVICE_PERF/document_lock.h"

#include "ADVICE_PERF/file_replace.h"
#include "UTIL/retried.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <tuple>

namespace {

using std::chrono::steady_clock;
using namespace std::chrono_literals;

// How often a waiting lock call is interrupted to look at its deadline.
constexpr std::chrono::milliseconds tick = 100ms;

struct directory {
  std::string name;
  dev_t device;
  ino_t inode;
  std::vector<std::string> documents;  // the names in it, for locking them instead
};

timeval as_timeval(std::chrono::microseconds span) {
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(span);
  return {static_cast<time_t>(whole.count()), static_cast<suseconds_t>((span - whole).count())};
}

// While it lives, SIGALRM interrupts a blocking lock call first after first
// and then every tick, so that a wait that sleeps in the kernel until the lock
// is free still ends near its deadline.
class wait_alarm {
 public:
  explicit wait_alarm(std::chrono::microseconds first) {
    struct sigaction wake {};
    wake.sa_handler = [](int) {};
    sigemptyset(&wake.sa_mask);  // no SA_RESTART: the interrupted call returns
    sigaction(SIGALRM, &wake, &saved_action);
    const itimerval alarm{as_timeval(tick), as_timeval(std::max(first, 1us))};
    setitimer(ITIMER_REAL, &alarm, &saved_timer);
  }
  // The timer stops before the handler goes, so no alarm finds the default action.
  ~wait_alarm() {
    setitimer(ITIMER_REAL, &saved_timer, nullptr);
    sigaction(SIGALRM, &saved_action, nullptr);
  }
  wait_alarm(const wait_alarm&) = delete;
  wait_alarm& operator=(const wait_alarm&) = delete;

 private:
  struct sigaction saved_action {};
  itimerval saved_timer{};
};

// Takes a lock through take(wait), a call that gives 0 or -1 with errno, at
// once or, waiting, by the deadline.
template <typename Take>
int lock_by(Take take, steady_clock::time_point deadline) {
  int result = retried([&] { return take(false); });
  const bool busy = result != 0 && (errno == EWOULDBLOCK || errno == EAGAIN || errno == EACCES);
  if (!busy || steady_clock::now() >= deadline) return result;
  const wait_alarm alarm(
      std::chrono::duration_cast<std::chrono::microseconds>(deadline - steady_clock::now()));
  while ((result = take(true)) != 0 && errno == EINTR)
    if (steady_clock::now() >= deadline) {
      errno = EWOULDBLOCK;
      break;
    }
  return result;
}

bool is_busy(int error) {
  return error == EWOULDBLOCK || error == EAGAIN || error == EACCES;
}

bool same_file(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

int open_retried(const std::string& path, int flags) {
  return retried([&] { return open(path.c_str(), flags | O_CLOEXEC, 0666); });
}

}  // namespace

DOCUMENT_LOCKS::DOCUMENT_LOCKS(const std::vector<std::string>& documents, lock_mode mode,
                               std::chrono::milliseconds patience) {
  std::vector<directory> directories;
  for (const std::string& document : documents) {
    const std::string file = link_target(document);
    const std::string name = directory_of(file);
    struct stat info {};
    if (stat(name.c_str(), &info) != 0) continue;
    directories.push_back(
        {name, info.st_dev, info.st_ino, {std::filesystem::path(file).filename().string()}});
  }
  const auto identity = [](const directory& d) { return std::tie(d.device, d.inode); };
  std::sort(directories.begin(), directories.end(),
            [&](const directory& a, const directory& b) { return identity(a) < identity(b); });
  // One entry per directory, with the names of all its documents in order.
  for (size_t i = 1; i < directories.size();)
    if (identity(directories[i - 1]) == identity(directories[i])) {
      directories[i - 1].documents.push_back(directories[i].documents.front());
      directories.erase(directories.begin() + static_cast<std::ptrdiff_t>(i));
    } else {
      ++i;
    }
  const auto deadline = steady_clock::now() + patience;
  const int operation = mode == lock_mode::shared ? LOCK_SH : LOCK_EX;
  for (directory& d : directories) {
    OUTCOME outcome = lock_directory(d.name, operation, deadline);
    if (outcome == OUTCOME::unsupported) {
      std::sort(d.documents.begin(), d.documents.end());
      d.documents.erase(std::unique(d.documents.begin(), d.documents.end()), d.documents.end());
      for (const std::string& document : d.documents)
        if ((outcome = lock_document(d.name + "/" + document, mode, deadline)) == OUTCOME::busy)
          break;
    }
    if (outcome == OUTCOME::busy) {
      busy = d.name;
      release();
      return;
    }
  }
}

DOCUMENT_LOCKS::~DOCUMENT_LOCKS() {
  release();
}

DOCUMENT_LOCKS::OUTCOME DOCUMENT_LOCKS::lock_directory(const std::string& name, int operation,
                                                       steady_clock::time_point deadline) {
  const int fd = open_retried(name, O_RDONLY | O_DIRECTORY);
  if (fd < 0) return OUTCOME::unsupported;
  if (lock_by([&](bool wait) { return flock(fd, operation | (wait ? 0 : LOCK_NB)); }, deadline) ==
      0) {
    held.push_back({fd, ""});
    return OUTCOME::held;
  }
  const bool busy_elsewhere = is_busy(errno);
  close(fd);
  return busy_elsewhere ? OUTCOME::busy : OUTCOME::unsupported;
}

DOCUMENT_LOCKS::OUTCOME DOCUMENT_LOCKS::lock_document(const std::string& path, lock_mode mode,
                                                      steady_clock::time_point deadline) {
  struct flock range {};
  range.l_type = mode == lock_mode::shared ? F_RDLCK : F_WRLCK;
  range.l_whence = SEEK_SET;
  const int access = mode == lock_mode::shared ? O_RDONLY : O_RDWR;
  for (;;) {
    int fd = open_retried(path, access);
    bool made = false;
    if (fd < 0 && errno == ENOENT && mode == lock_mode::exclusive) {
      fd = open_retried(path, O_RDWR | O_CREAT | O_EXCL);
      made = fd >= 0;
      if (fd < 0 && errno == EEXIST) continue;
    }
    if (fd < 0 || already_held(fd)) {
      if (fd >= 0) close(fd);
      return OUTCOME::unsupported;
    }
    if (lock_by([&](bool wait) { return fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &range); },
                deadline) != 0) {
      const bool busy_elsewhere = is_busy(errno);
      if (made) unlink(path.c_str());
      close(fd);
      return busy_elsewhere ? OUTCOME::busy : OUTCOME::unsupported;
    }
    // A run that held the lock may have replaced the file meanwhile: the lock
    // then guards a file the name no longer holds.
    struct stat locked {}, named {};
    if (fstat(fd, &locked) == 0 && stat(path.c_str(), &named) == 0 && same_file(locked, named)) {
      held.push_back({fd, made ? path : ""});
      return OUTCOME::held;
    }
    close(fd);
  }
}

bool DOCUMENT_LOCKS::already_held(int fd) const {
  struct stat file {}, other {};
  if (fstat(fd, &file) != 0) return true;
  return std::any_of(held.begin(), held.end(), [&](const HELD& lock) {
    return fstat(lock.fd, &other) == 0 && same_file(file, other);
  });
}

void DOCUMENT_LOCKS::release() {
  for (const HELD& lock : held) {
    struct stat locked {}, named {};
    if (!lock.made.empty() && fstat(lock.fd, &locked) == 0 && locked.st_size == 0 &&
        stat(lock.made.c_str(), &named) == 0 && same_file(locked, named))
      unlink(lock.made.c_str());
    close(lock.fd);
  }
  held.clear();
}
