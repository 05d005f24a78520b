#include "UTIL/filename.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "tests/util/capture.h"
#include "tests/util/temp_dir.h"

namespace {

struct Parts {
  std::string dir, base, ext;
  bool operator==(const Parts&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Parts& p) {
  return out << "{" << p.dir << "|" << p.base << "|" << p.ext << "}";
}

Parts split(const char* name) {
  char *dir, *base, *ext;
  fn_split(name, &dir, &base, &ext);
  return {dir, base, ext};
}

std::string build(const char* dir, const char* base, const char* ext) {
  char* built = fn_build(nullptr, dir, base, ext);
  std::string text = built;
  free(built);
  return text;
}

std::string addext(const char* name, const char* ext, int replace) {
  char buffer[64];
  strcpy(buffer, name);
  fn_addext(buffer, ext, replace);
  return buffer;
}

std::string delext(const char* name) {
  char buffer[64];
  strcpy(buffer, name);
  fn_delext(buffer);
  return buffer;
}

TEST(FileNames, SplitTakesDirectoryBaseAndExtension) {
  EXPECT_EQ(split("src/main.c"), (Parts{"src/", "main", "c"}));
  EXPECT_EQ(split("lib/x.tar.gz"), (Parts{"lib/", "x.tar", "gz"}));
  EXPECT_EQ(split("name."), (Parts{"", "name.", ""}));
  EXPECT_EQ(split("a.b/c"), (Parts{"a.b/", "c", ""}));
  EXPECT_EQ(split("dir/.profile"), (Parts{"dir/", "", "profile"}));
  EXPECT_EQ(split("/"), (Parts{"/", "", ""}));
  EXPECT_EQ(split(""), (Parts{"", "", ""}));
  EXPECT_EQ(split(nullptr), (Parts{"", "", ""}));

  // Each out-argument is optional, and a part is cut to 499 characters.
  const std::string long_base(600, 'x');
  char* base;
  fn_split((long_base + ".c").c_str(), nullptr, &base, nullptr);
  EXPECT_EQ(std::string(base), long_base.substr(0, 499));
}

TEST(FileNames, BuildAddsSeparatorsOnlyWhereMissing) {
  EXPECT_EQ(build("src", "main", "c"), "src/main.c");
  EXPECT_EQ(build("src/", "main", ".c"), "src/main.c");
  EXPECT_EQ(build("", "main", "c"), "main.c");
  EXPECT_EQ(build(nullptr, "main", ""), "main");
  EXPECT_EQ(build("out", nullptr, nullptr), "out/");

  char dest[32] = "old content";
  EXPECT_EQ(fn_build(dest, "d", "f", "o"), dest);
  EXPECT_STREQ(dest, "d/f.o");
}

TEST(FileNames, ExtensionsAreAddedReplacedAndRemovedInPlace) {
  EXPECT_EQ(addext("a.b/c", "o", 0), "a.b/c.o");  // the dot is in the directory
  EXPECT_EQ(addext("a", ".o", 0), "a.o");
  EXPECT_EQ(addext("a", "", 1), "a");
  EXPECT_EQ(addext("a", nullptr, 1), "a");
  EXPECT_EQ(addext("a.c", "o", 0), "a.c");
  EXPECT_EQ(addext("a.c", ".o", 1), "a.o");
  EXPECT_EQ(addext("a.c", "o", 1), "a.o");
  EXPECT_EQ(addext("a.c", "", 1), "a");
  EXPECT_EQ(addext("a.c", nullptr, 1), "a.c");

  EXPECT_EQ(delext("x/y.tar.gz"), "x/y.tar");
  EXPECT_EQ(delext("a.b/c"), "a.b/c");

  EXPECT_EQ(fn_matches_ext("src/main.c", "c"), 1);
  EXPECT_EQ(fn_matches_ext("src/main.c", ".c"), 0);
  EXPECT_EQ(fn_matches_ext("src/main.cpp", "c"), 0);
  EXPECT_EQ(fn_matches_ext("makefile", ""), 1);
}

TEST(FileNames, PathPredicates) {
  EXPECT_STREQ(fn_basename("x/y/z.c"), "z.c");
  EXPECT_STREQ(fn_basename("z.c"), "z.c");
  EXPECT_EQ(fn_basename(""), nullptr);
  EXPECT_EQ(fn_basename(nullptr), nullptr);

  EXPECT_EQ(fn_has_full_path(""), 0);
  EXPECT_EQ(fn_has_relative_path(""), 1);
  EXPECT_EQ(fn_has_relative_path("/usr"), 0);

  EXPECT_EQ(fn_starts_with_dot_dot("./x"), 1);
  EXPECT_EQ(fn_starts_with_dot_dot("../x"), 1);
  EXPECT_EQ(fn_starts_with_dot_dot("..x"), 0);
  EXPECT_EQ(fn_starts_with_dot_dot(".x"), 0);
}

TEST(FileNames, ExistenceSizeDeletionAndIdentity) {
  TempDir tmp;
  const std::string file = tmp.file("data.bin");
  const std::string link = tmp.file("link");
  const std::string other = tmp.file("other");
  EXPECT_EQ(fn_exists(file.c_str()), 0);
  EXPECT_EQ(file_size(file), -1);
  write_file(file, "12345");
  write_file(other, "12345");
  EXPECT_EQ(fn_exists(file.c_str()), 1);
  EXPECT_EQ(file_size(file.c_str()), 5);

  ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
  EXPECT_EQ(fn_samefile(file.c_str(), link.c_str()), 1);
  EXPECT_EQ(fn_samefile(file.c_str(), other.c_str()), 0);
  const std::string missing = tmp.file("missing");
  EXPECT_EQ(fn_samefile(missing.c_str(), missing.c_str()), 0);

  char* copy = fn_realname(link.c_str());
  EXPECT_EQ(std::string(copy), link);  // no resolution
  free(copy);

  EXPECT_EQ(fn_delete(file.c_str()), 0);
  EXPECT_EQ(fn_exists(file.c_str()), 0);
  EXPECT_NE(fn_delete(file.c_str()), 0);
}

TEST(FileNames, RenameMovesAndCopiesAcrossFileSystems) {
  TempDir tmp;
  const std::string from = tmp.file("from");
  const std::string to = tmp.file("to");
  write_file(from, "content");
  EXPECT_EQ(fn_rename(from.c_str(), to.c_str()), 1);
  EXPECT_FALSE(fn_exists(from.c_str()));
  EXPECT_EQ(read_file(to), "content");
  EXPECT_EQ(fn_rename(from.c_str(), to.c_str()), 0);

  struct stat a, b;
  TempDir other("/dev/shm");
  if (other.path().empty() || stat(tmp.path().c_str(), &a) != 0 ||
      stat(other.path().c_str(), &b) != 0 || a.st_dev == b.st_dev)
    GTEST_SKIP() << "no second file system for a temporary directory";
  const std::string big(20000, 'q');  // more than one copy buffer
  write_file(from, big);
  const std::string across = other.file("moved");
  EXPECT_EQ(fn_rename(from.c_str(), across.c_str()), 1);
  EXPECT_EQ(read_file(across), big);
  EXPECT_TRUE(fn_exists(from.c_str()));
}

TEST(FileNames, TemporaryNamesCarryTheProcessPrefix) {
  TempDir tmp;
  ScopedEnv no_tmpdir("TMPDIR", nullptr);
  char* made = fn_tmpnam(nullptr, "ignored", tmp.path().c_str());
  const std::string name = made;
  free(made);
  const std::string base = fn_basename(name.c_str());
  EXPECT_EQ(name.rfind(tmp.path() + "/", 0), 0u) << name;
  EXPECT_FALSE(fn_exists(name.c_str()));

  // Three base-62 digits of the process id follow two letters.
  ASSERT_GE(base.size(), 5u);
  const std::string digits = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  long value = 0;
  for (char c : base.substr(2, 3)) {
    ASSERT_NE(digits.find(c), std::string::npos);
    value = value * 62 + static_cast<long>(digits.find(c));
  }
  EXPECT_EQ(value, getpid() % (62 * 62 * 62));

  char dest[512];
  EXPECT_EQ(fn_tmpnam(dest, nullptr, tmp.path().c_str()), dest);
  EXPECT_EQ(std::string(dest).substr(tmp.path().size() + 1, 5), base.substr(0, 5));
  EXPECT_NE(std::string(dest), name);

  // TMPDIR comes first, and a directory that doesn't exist is passed over.
  TempDir env_dir;
  ScopedEnv tmpdir("TMPDIR", env_dir.path().c_str());
  EXPECT_EQ(std::string(fn_tmpnam(dest, nullptr, tmp.path().c_str())).rfind(env_dir.path(), 0), 0u);
  ScopedEnv missing_tmpdir("TMPDIR", tmp.file("missing").c_str());
  EXPECT_EQ(std::string(fn_tmpnam(dest, nullptr, tmp.path().c_str())).rfind(tmp.path(), 0), 0u);
}

// Leaves the process no memory for even a small allocation.
void exhaust_memory() {
  long pages = 0;
  if (FILE* statm = fopen("/proc/self/statm", "r")) {
    if (fscanf(statm, "%ld", &pages) != 1) pages = 0;
    fclose(statm);
  }
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = static_cast<rlim_t>(pages * sysconf(_SC_PAGESIZE)) + (1 << 20);
  setrlimit(RLIMIT_AS, &limit);
  for (size_t size = 1 << 16; size > 0; size /= 2) {
    void* volatile block;  // keeps the allocations from being optimised away
    do
      block = malloc(size);
    while (block != nullptr);
  }
}

TEST(FileNamesDeathTest, TemporaryNameWithoutMemoryEndsTheProcess) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address sanitizer needs more address space than the test leaves";
#endif
  TempDir tmp;
  EXPECT_EXIT(
      {
        exhaust_memory();
        fn_tmpnam(nullptr, nullptr, tmp.path().c_str());
      },
      testing::ExitedWithCode(1), "^ERROR: cannot create temporary file name; out of memory\n$");
}

TEST(FileNames, DirectoryEntriesAreListedUntilTheEnd) {
  TempDir tmp;
  write_file(tmp.file("a"), "");
  write_file(tmp.file("b"), "");
  int flag = 7;
  std::set<std::string> seen;
  for (const char* entry = fn_get_dir_entry(tmp.path().c_str(), &flag); entry;
       entry = fn_get_dir_entry(nullptr, &flag))
    seen.insert(entry);
  EXPECT_EQ(seen, (std::set<std::string>{".", "..", "a", "b"}));
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(fn_get_dir_entry(nullptr, &flag), nullptr);  // the directory was forgotten
  EXPECT_EQ(fn_get_dir_entry(tmp.file("missing").c_str(), &flag), nullptr);
}

TEST(FileNames, WorkingDirectoryFollowsChangeDir) {
  TempDir tmp;
  char* before = fn_get_working_dir(nullptr);
  std::string target = std::filesystem::canonical(tmp.path()).string();
  fn_change_dir(target.data());
  char here[501];
  EXPECT_EQ(fn_get_working_dir(here), here);
  EXPECT_EQ(std::string(here), target);

  fn_change_dir(nullptr);
  std::string missing = tmp.file("missing");
  const std::string err = capture_output(stderr, [&] { fn_change_dir(missing.data()); });
  EXPECT_EQ(err.rfind("chdir in fn_change_dir: ", 0), 0u) << err;
  EXPECT_EQ(std::string(fn_get_working_dir(here)), target);

  fn_change_dir(before);
  free(before);
}

}  // namespace
