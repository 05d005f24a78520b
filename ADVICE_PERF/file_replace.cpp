#include "ADVICE_PERF/file_replace.h"

#include "UTIL/retried.h"

#include <boost/property_tree/xml_parser.hpp>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>

namespace {

constexpr std::string_view new_suffix = ".advzorv-new";
constexpr std::string_view kept_suffix = ".advzorv-unreadable";
// Room for what follows the new file's suffix: "." with a process id, and "-"
// with the number of a retry.
constexpr std::size_t run_part = 16;

[[noreturn]] void fail(const char* message, const std::string& path) {
  throw boost::property_tree::xml_parser::xml_parser_error(message, path, 0);
}

// A descriptor is released by close even when close reports an interruption.
bool closed(int fd) {
  return close(fd) == 0 || errno == EINTR;
}

bool write_all(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = retried([&] { return write(fd, text.data(), text.size()); });
    if (written <= 0) return false;
    text.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

bool read_all(int fd, std::string& text) {
  char buffer[65536];
  for (off_t offset = 0;;) {
    const ssize_t got = retried([&] { return pread(fd, buffer, sizeof buffer, offset); });
    if (got < 0) return false;
    if (got == 0) return true;
    text.append(buffer, static_cast<size_t>(got));
    offset += got;
  }
}

bool synced(int fd) {
  return retried([&] { return fsync(fd); }) == 0;
}

// Makes a file-size limit or a reader gone from a FIFO fail a write (EFBIG,
// EPIPE) instead of raising a signal, for as long as it lives, so that they
// are write errors like a full disk.
class write_faults_reported {
 public:
  write_faults_reported() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignore, &saved_xfsz);
    sigaction(SIGPIPE, &ignore, &saved_pipe);
  }
  ~write_faults_reported() {
    sigaction(SIGXFSZ, &saved_xfsz, nullptr);
    sigaction(SIGPIPE, &saved_pipe, nullptr);
  }
  write_faults_reported(const write_faults_reported&) = delete;
  write_faults_reported& operator=(const write_faults_reported&) = delete;

 private:
  struct sigaction saved_xfsz {}, saved_pipe {};
};

// Holds back every signal that can be blocked, for as long as it lives, but
// the two that write_faults_reported ignores: a signal sent meanwhile takes
// effect once the file is whole.
class signals_held {
 public:
  signals_held() {
    sigset_t all;
    sigfillset(&all);
    sigdelset(&all, SIGXFSZ);
    sigdelset(&all, SIGPIPE);
    sigprocmask(SIG_BLOCK, &all, &saved);
  }
  ~signals_held() { sigprocmask(SIG_SETMASK, &saved, nullptr); }
  signals_held(const signals_held&) = delete;
  signals_held& operator=(const signals_held&) = delete;

 private:
  sigset_t saved;
};

// Flushes the directory entry of a rename to the disk. A file system that
// can't sync a directory has nothing more to flush: its failure is no error.
void sync_directory(const std::string& directory) {
  const int fd = retried([&] { return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
  if (fd < 0) return;
  synced(fd);
  close(fd);
}

// ".NAME" and suffix, NAME shortened so that the name and room more bytes
// fit in a directory entry.
std::string companion_name(const std::string& base, std::string_view suffix, std::size_t room) {
  return "." + base.substr(0, NAME_MAX - 1 - suffix.size() - room) + std::string(suffix);
}

// Whether a new file named prefix, then "." and a process id and perhaps
// "-" and a number, was left by a run that has ended. The bare prefix is the
// one name all runs once shared.
bool left_by_ended_run(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) return false;
  name.remove_prefix(prefix.size());
  if (name.empty()) return true;
  pid_t run = 0;
  const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), run);
  const bool well_named = name[0] == '.' && error == std::errc() && run > 0 &&
                          (end == name.data() + name.size() || *end == '-');
  return well_named && run != getpid() && kill(run, 0) != 0 && errno == ESRCH;
}

// Removes the new files of a document that ended runs left behind. One that
// can't be removed (another user's in a sticky directory) is no obstacle, nor
// is a directory that can't be listed.
void remove_stale_new_files(const std::string& directory, const std::string& prefix) {
  DIR* listing = opendir(directory.c_str());
  if (!listing) return;
  while (const dirent* entry = readdir(listing))
    if (left_by_ended_run(entry->d_name, prefix)) unlinkat(dirfd(listing), entry->d_name, 0);
  closedir(listing);
}

// Makes this run's new, empty file at prefix and "." with the process id (a
// number behind if that name is taken) and sets name; -1 if none can be made.
int create_new_file(const std::string& prefix, std::string& name) {
  const std::string own = prefix + "." + std::to_string(getpid());
  for (int retry = 0; retry < 100; ++retry) {
    name = retry == 0 ? own : own + "-" + std::to_string(retry);
    const int fd = retried([&] {
      return open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    });
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

// Writes text to a device, FIFO or socket named as a document. Signals are
// not held back: a reader may take its time, and nothing is replaced.
void write_stream(const std::string& path, std::string_view text) {
  const int fd =
      retried([&] { return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC); });
  if (fd < 0) fail("cannot open file", path);
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  const write_faults_reported faults;
  const bool written = write_all(fd, text);
  if (!closed(fd) || !written) fail("write error", path);
}

// Writes text into file in place, with signals held back by the caller: for a
// writable file in a directory that takes no new file. A shorter text is padded with line ends to the old
// length and then cut, so that the file is well-formed at every moment but
// during the one write; a failed write puts the old content back.
void rewrite_in_place(const std::string& file, std::string_view text, old_document old,
                      const std::string& path) {
  if (old == old_document::kept) fail("write error", path);
  const int fd = retried([&] { return open(file.c_str(), O_RDWR | O_CLOEXEC); });
  if (fd < 0) fail("cannot open file", path);
  std::string old_text;
  bool written = false;
  if (read_all(fd, old_text)) {
    std::string padded(text);
    if (padded.size() < old_text.size()) padded.resize(old_text.size(), '\n');
    const auto cut_to = [fd](std::size_t size) {
      return retried([&] { return ftruncate(fd, static_cast<off_t>(size)); }) == 0 && synced(fd);
    };
    written = lseek(fd, 0, SEEK_SET) == 0 && write_all(fd, padded) && cut_to(text.size());
    if (!written && lseek(fd, 0, SEEK_SET) == 0 && write_all(fd, old_text)) cut_to(old_text.size());
  }
  closed(fd);
  if (!written) fail("write error", path);
}

enum class kept_by { link, rename, nothing };

// Keeps file as kept, replacing an earlier one: by a hard link, or where the
// file system makes none, by a rename.
kept_by keep_old_file(const std::string& file, const std::string& kept) {
  retried([&] { return unlink(kept.c_str()); });
  if (retried([&] { return link(file.c_str(), kept.c_str()); }) == 0) return kept_by::link;
  if (retried([&] { return rename(file.c_str(), kept.c_str()); }) == 0) return kept_by::rename;
  return kept_by::nothing;
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

void replace_file(const std::string& path, std::string_view text, old_document old) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
    return write_stream(path, text);
  const std::string file = link_target(path);
  if (lstat(file.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) fail("cannot open file", path);
  const std::string directory = directory_of(file);
  const std::string base = file.substr(file.rfind('/') + 1);
  const bool exists = stat(file.c_str(), &status) == 0;
  // A document its owner made read-only stays as it is.
  if (exists && access(file.c_str(), W_OK) != 0) fail("cannot open file", path);

  const write_faults_reported faults;
  const signals_held held;
  const std::string prefix = companion_name(base, new_suffix, run_part);
  remove_stale_new_files(directory, prefix);
  std::string temp;
  const int fd = create_new_file(directory + "/" + prefix, temp);
  if (fd < 0) {
    if ((errno == EACCES || errno == EPERM) && exists) return rewrite_in_place(file, text, old, path);
    fail(errno == ENOSPC || errno == EDQUOT ? "write error" : "cannot open file", path);
  }
  bool written = (!exists || fchmod(fd, status.st_mode & 07777) == 0) && write_all(fd, text) &&
                 synced(fd);
  written = closed(fd) && written;
  const std::string kept = directory + "/" + companion_name(base, kept_suffix, 0);
  kept_by how = kept_by::link;
  if (written && exists && old == old_document::kept) {
    how = keep_old_file(file, kept);
    written = how != kept_by::nothing;
  }
  written = written && retried([&] { return rename(temp.c_str(), file.c_str()); }) == 0;
  if (!written) {
    retried([&] { return unlink(temp.c_str()); });
    if (how == kept_by::rename) rename(kept.c_str(), file.c_str());
    fail("write error", path);
  }
  sync_directory(directory);
}
