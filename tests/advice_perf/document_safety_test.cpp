// What keeps the documents whole: strict XML text, replacement of a file by a
// new one, and the locks that keep runs from interleaving.
#include "ADVICE_PERF/document_lock.h"
#include "ADVICE_PERF/file_replace.h"
#include "ADVICE_PERF/xml_text.h"
#include "tests/util/temp_dir.h"

#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <thread>

namespace {

namespace fs = std::filesystem;
using boost::property_tree::xml_parser::xml_parser_error;
using namespace std::chrono_literals;

TEST(StrictXmlText, ReplacesWhatXmlCannotCarryAndKeepsTheRest) {
  const std::string r(xml_replacement_char);
  const struct {
    std::string in, out;
  } cases[] = {
      {"plain -O3 \t\n\r", "plain -O3 \t\n\r"},
      {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xEF\xBF\xBD",
       "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 " + r},
      {std::string("a\x1Fz\0", 4), "a" + r + "z" + r},      // the last C0 control
      {"\xC0\x80\xE0\x9F\xBF", r + r + r + r + r},          // overlong NUL and U+07FF
      {"\xED\xA0\x80\xED\xBF\xBF", r + r + r + r + r + r},  // the first and last surrogate
      {"\xEF\xBF\xBE\xEF\xBF\xBF", r + r},                  // the two non-characters
      {"\xF4\x90\x80\x80", r + r + r + r},                  // past U+10FFFF
      {"\xE2\x82", r + r},                                  // cut short at the end
      // allowed: DEL, NEL, each length's first code point, the ends of the surrogate gap, the last
      {"\x7F\xC2\x85\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF",
       "\x7F\xC2\x85\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(strict_xml_text(c.in), c.out) << c.in;
    EXPECT_EQ(strict_xml_text(c.out), c.out) << "applied twice: " << c.in;
  }
}

class ReplaceFile : public ::testing::Test {
 protected:
  TempDir dir;
  const std::string doc = dir.file("perf.xml");

  void SetUp() override { write_file(doc, "old"); }

  std::set<std::string> names() const {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(dir.path()))
      found.insert(entry.path().filename().string());
    return found;
  }
};

TEST_F(ReplaceFile, KeepsPermissionBitsAndSymbolicLinks) {
  const int lowest = open("/dev/null", O_RDONLY);  // the number a leaked descriptor would take
  close(lowest);
  chmod(doc.c_str(), 0444);  // a read-only document stays, unless root, who ignores the mode, runs
  if (access(doc.c_str(), W_OK) != 0) {
    EXPECT_ANY_THROW(replace_file(doc, "new"));
  }
  EXPECT_EQ(read_file(doc), "old");
  EXPECT_EQ(names(), std::set<std::string>{"perf.xml"});

  chmod(doc.c_str(), 0640);
  fs::create_symlink("perf.xml", dir.file("link.xml"));
  replace_file(dir.file("link.xml"), "new");
  EXPECT_EQ(read_file(doc), "new");
  EXPECT_EQ(fs::status(doc).permissions(), static_cast<fs::perms>(0640));

  fs::create_symlink("made.xml", dir.file("dangling.xml"));
  replace_file(dir.file("dangling.xml"), "made");
  EXPECT_EQ(read_file(dir.file("made.xml")), "made");
  const mode_t mask = umask(0);  // a new document gets what the umask leaves of 0666
  umask(mask);
  EXPECT_EQ(fs::status(dir.file("made.xml")).permissions(), static_cast<fs::perms>(0666 & ~mask));
  const int next = open("/dev/null", O_RDONLY);
  EXPECT_EQ(next, lowest) << "a descriptor left open";
  close(next);
}

// A FIFO is written as a stream that waits for a reader taking its time; a
// stream that takes nothing is a write error.
TEST_F(ReplaceFile, AFifoGetsAllOfATextLongerThanThePipeHolds) {
  const std::string fifo = dir.file("fifo.xml"), text(1 << 20, 'x');
  ASSERT_EQ(mkfifo(fifo.c_str(), 0666), 0);
  const int in = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);  // open before the writer's
  std::atomic<bool> done = false;
  std::thread writer([&] {
    EXPECT_NO_THROW(replace_file(fifo, text));
    done = true;
  });
  usleep(50000);  // the pipe fills, and the writer waits for room
  std::string got(text.size() + 1, '\0');
  size_t size = 0;
  for (ssize_t n, ended; (ended = done, n = read(in, &got[size], got.size() - size)) > 0 || !ended;)
    size += static_cast<size_t>(std::max<ssize_t>(n, 0));  // done read before read: last write kept
  writer.join();
  close(in);
  EXPECT_EQ(size, text.size());
  EXPECT_THROW(replace_file("/dev/full", text), xml_parser_error);  // a stream without room
}

// Beside the document stay its old file when that could not be read (the
// latest one), and a running run's new file; new files of ended runs go, retried ones too. Names
// of any length are written, and a loop of links is no file to write.
TEST_F(ReplaceFile, KeepsAnUnreadableOldFileClearsWhatEndedRunsLeftAndFitsNames) {
  const pid_t ended = fork();
  if (ended == 0) _exit(0);
  waitpid(ended, nullptr, 0);
  const std::string left = ".perf.xml.advzorv-new", gone = left + "." + std::to_string(ended);
  const std::string running = left + "." + std::to_string(getppid());
  for (const std::string& name : {running, gone, gone + "-1", left})
    write_file(dir.file(name), "left");
  replace_file(doc, "first", old_document::kept);
  replace_file(doc, "second", old_document::kept);
  EXPECT_EQ(read_file(doc), "second");
  EXPECT_EQ(read_file(dir.file(".perf.xml.advzorv-unreadable")), "first");
  EXPECT_EQ(names(), (std::set<std::string>{running, ".perf.xml.advzorv-unreadable", "perf.xml"}));

  const std::string longest = dir.file(std::string(255, 'n'));
  replace_file(longest, "one");
  replace_file(longest, "two", old_document::kept);
  EXPECT_EQ(read_file(longest), "two");
  EXPECT_EQ(names().size(), 5u);  // with the document and its kept old file
  fs::remove(dir.file(".perf.xml.advzorv-unreadable"));  // nowhere to keep it: no write
  fs::create_directory(dir.file(".perf.xml.advzorv-unreadable"));
  EXPECT_THROW(replace_file(doc, "third", old_document::kept), xml_parser_error);

  fs::create_symlink("loop.xml", dir.file("loop.xml"));
  EXPECT_THROW(replace_file(dir.file("loop.xml"), "x"), xml_parser_error);
  EXPECT_TRUE(fs::is_symlink(dir.file("loop.xml")));
}

// A directory that takes no new file gets its writable document rewritten in
// place. Root can write anywhere, so root tries it as another user.
TEST_F(ReplaceFile, AClosedDirectoryGetsTheDocumentRewrittenInPlace) {
  chmod(doc.c_str(), 0666);
  chmod(dir.path().c_str(), 0555);
  const pid_t child = fork();
  if (child == 0) {
    if (geteuid() == 0 && setuid(65534) != 0) _exit(3);
    try {
      replace_file(doc, "new and longer");
      replace_file(doc, "short");
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  chmod(dir.path().c_str(), 0755);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(read_file(doc), "short");
}

TEST(DocumentLocks, RunsSharingADirectoryExcludeEachOtherUnlessBothRead) {
  TempDir dir, other;
  const std::string a = dir.file("advice.xml"), b = dir.file("perf.xml");
  fs::create_symlink(b, other.file("perf.xml"));
  {
    // Both documents in one directory, one named through a link: locked once.
    const DOCUMENT_LOCKS held({a, other.file("perf.xml"), a}, lock_mode::exclusive, 0ms);
    ASSERT_EQ(held.busy_directory(), "");
    EXPECT_EQ(DOCUMENT_LOCKS({other.file("x.xml"), b}, lock_mode::exclusive, 20ms).busy_directory(),
              dir.path());
    struct sigaction after {};  // the wait's alarm, timer and handler, is gone with the wait
    EXPECT_EQ((sigaction(SIGALRM, nullptr, &after), after.sa_handler), SIG_DFL);
    itimerval timer {};
    EXPECT_EQ((getitimer(ITIMER_REAL, &timer), timer.it_value.tv_sec + timer.it_value.tv_usec), 0);
    EXPECT_NE(DOCUMENT_LOCKS({a}, lock_mode::shared, 0ms).busy_directory(), "");
  }
  {
    // A run that finds its second directory busy holds no lock and closes both, each once.
    struct stat in_dir = {}, in_other = {};  // locked in the order of their inodes
    stat(dir.path().c_str(), &in_dir), stat(other.path().c_str(), &in_other);
    const bool dir_first = in_dir.st_ino < in_other.st_ino;
    const TempDir &first = dir_first ? dir : other, &second = dir_first ? other : dir;
    const DOCUMENT_LOCKS holder({second.file("x")}, lock_mode::exclusive, 0ms);
    int reused = -1;
    {
      const DOCUMENT_LOCKS busy({first.file("x"), second.file("x")}, lock_mode::exclusive, 0ms);
      ASSERT_EQ(busy.busy_directory(), second.path());
      EXPECT_EQ(DOCUMENT_LOCKS({first.file("x")}, lock_mode::exclusive, 0ms).busy_directory(), "");
      reused = open(first.path().c_str(), O_RDONLY);  // the number the release freed
    }
    EXPECT_EQ(fcntl(reused + 1, F_GETFD), -1);  // the busy directory's number is free too
    EXPECT_EQ(close(reused), 0);
  }
  const DOCUMENT_LOCKS reader({a}, lock_mode::shared, 0ms);
  EXPECT_EQ(DOCUMENT_LOCKS({b}, lock_mode::shared, 0ms).busy_directory(), "");
  EXPECT_EQ(DOCUMENT_LOCKS({b}, lock_mode::exclusive, 0ms).busy_directory(), dir.path());
  EXPECT_EQ(DOCUMENT_LOCKS({dir.file("none/x.xml")}, lock_mode::exclusive, 0ms).busy_directory(),
            "");
}

}  // namespace
