#include "ADVICE_PERF/file_replace.h"

#include <boost/property_tree/xml_parser.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

namespace {

// The new file of the replacement under way, for discard_unfinished_replacement.
char pending_path[PATH_MAX];
volatile sig_atomic_t pending = 0;

[[noreturn]] void fail(const char* message, const std::string& path) {
  throw boost::property_tree::xml_parser::xml_parser_error(message, path, 0);
}

bool write_all(int fd, std::string_view text, off_t offset) {
  while (!text.empty()) {
    const ssize_t written = pwrite(fd, text.data(), text.size(), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<size_t>(written));
    offset += written;
  }
  return true;
}

bool read_all(int fd, std::string& text) {
  char buffer[65536];
  for (off_t offset = 0;;) {
    const ssize_t got = pread(fd, buffer, sizeof buffer, offset);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) return true;
    text.append(buffer, static_cast<size_t>(got));
    offset += got;
  }
}

// Makes a file-size limit fail a write with EFBIG instead of raising SIGXFSZ,
// for as long as it lives, so a document too large for the limit is a write
// error like a full disk.
class file_size_signal_ignored {
 public:
  file_size_signal_ignored() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignore, &saved);
  }
  ~file_size_signal_ignored() { sigaction(SIGXFSZ, &saved, nullptr); }
  file_size_signal_ignored(const file_size_signal_ignored&) = delete;
  file_size_signal_ignored& operator=(const file_size_signal_ignored&) = delete;

 private:
  struct sigaction saved {};
};

// Holds back SIGINT, SIGTERM and SIGHUP for as long as it lives.
class stop_signals_blocked {
 public:
  stop_signals_blocked() {
    sigset_t stops;
    sigemptyset(&stops);
    for (int sig : {SIGINT, SIGTERM, SIGHUP})
      sigaddset(&stops, sig);
    sigprocmask(SIG_BLOCK, &stops, &saved);
  }
  ~stop_signals_blocked() { sigprocmask(SIG_SETMASK, &saved, nullptr); }
  stop_signals_blocked(const stop_signals_blocked&) = delete;
  stop_signals_blocked& operator=(const stop_signals_blocked&) = delete;

 private:
  sigset_t saved;
};

// Flushes the directory entry of a rename to the disk. A file system that
// can't sync a directory has nothing more to flush: its failure is no error.
void sync_directory(const std::string& directory) {
  const int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

// Writes text into file in place: for a writable file in a directory that
// takes no new file. Stop signals wait until the file is whole again, and a
// failed write puts the old content back.
void rewrite_in_place(const std::string& file, std::string_view text, const std::string& path) {
  const int fd = open(file.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0) fail("cannot open file", path);
  std::string old_text;
  const stop_signals_blocked stops;
  bool written = read_all(fd, old_text);
  written = written && write_all(fd, text, 0) &&
            ftruncate(fd, static_cast<off_t>(text.size())) == 0 && fsync(fd) == 0;
  if (!written) {  // put the old content back, as far as the disk lets us
    const bool restored =
        write_all(fd, old_text, 0) && ftruncate(fd, static_cast<off_t>(old_text.size())) == 0;
    if (restored) fsync(fd);
  }
  close(fd);
  if (!written) fail("write error", path);
}

// Opens a new, empty file at temp, registered for discard_unfinished_replacement;
// -1 if none can be made.
int open_new_file(const std::string& temp) {
  if (temp.size() >= sizeof pending_path) {
    errno = ENAMETOOLONG;
    return -1;
  }
  std::memcpy(pending_path, temp.c_str(), temp.size() + 1);
  pending = 1;
  const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (fd < 0) pending = 0;
  return fd;
}

}  // namespace

std::string directory_of(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string link_target(std::string path) {
  for (int hops = 0; hops < 40; ++hops) {
    char target[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    if (length < 0 || length == static_cast<ssize_t>(sizeof target)) break;
    const std::string link(target, static_cast<size_t>(length));
    const bool relative = link[0] != '/' && path.find('/') != std::string::npos;
    path = relative ? directory_of(path) + "/" + link : link;
  }
  return path;
}

void discard_unfinished_replacement() {
  if (pending) unlink(pending_path);
}

void replace_file(const std::string& path, std::string_view text) {
  const std::string file = link_target(path);
  const std::string directory = directory_of(file);
  const std::string base = file.substr(file.rfind('/') + 1);
  // One fixed name per document: runs that share it hold the document's
  // lock, and a file left by a killed run is reused.
  const std::string temp = directory + "/." + base + ".advzorv-new";

  struct stat old {};
  const bool exists = stat(file.c_str(), &old) == 0;
  // A document its owner made read-only stays as it is.
  if (exists && access(file.c_str(), W_OK) != 0) fail("cannot open file", path);
  const file_size_signal_ignored size_limit_is_an_error;
  const int fd = open_new_file(temp);
  if (fd < 0) {
    if ((errno == EACCES || errno == EPERM) && exists) return rewrite_in_place(file, text, path);
    fail("cannot open file", path);
  }
  bool written =
      (!exists || fchmod(fd, old.st_mode & 07777) == 0) && write_all(fd, text, 0) && fsync(fd) == 0;
  written = close(fd) == 0 && written;
  written = written && rename(temp.c_str(), file.c_str()) == 0;
  if (!written) {
    unlink(temp.c_str());
    pending = 0;
    fail("write error", path);
  }
  pending = 0;
  sync_directory(directory);
}
