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

// One row per name: the parts fn_split gives, and what the in-place editors
// and predicates make of it.
struct name_case {
  const char* name;
  const char* dir;
  const char* base;
  const char* ext;
  const char* without_ext;  // fn_delext
  const char* with_o;       // fn_addext(name, "o", 0)
  const char* replaced;     // fn_addext(name, ".o", 1)
};

TEST(FileNames, SplittingAndExtensionsFollowTheLastSlashAndDot) {
  const name_case cases[] = {
      {"src/main.c", "src/", "main", "c", "src/main", "src/main.c", "src/main.o"},
      {"lib/x.tar.gz", "lib/", "x.tar", "gz", "lib/x.tar", "lib/x.tar.gz", "lib/x.tar.o"},
      {"a.b/c", "a.b/", "c", "", "a.b/c", "a.b/c.o", "a.b/c.o"},
      {"dir/.profile", "dir/", "", "profile", "dir/", "dir/.profile", "dir/.o"},
      {"/", "/", "", "", "/", "/.o", "/.o"},
      {"", "", "", "", "", ".o", ".o"},
  };
  for (const name_case& c : cases) {
    char *dir, *base, *ext;
    fn_split(c.name, &dir, &base, &ext);
    EXPECT_STREQ(dir, c.dir) << c.name;
    EXPECT_STREQ(base, c.base) << c.name;
    EXPECT_STREQ(ext, c.ext) << c.name;
    char buffer[64];
    fn_delext(strcpy(buffer, c.name));
    EXPECT_STREQ(buffer, c.without_ext) << c.name;
    fn_addext(strcpy(buffer, c.name), "o", 0);
    EXPECT_STREQ(buffer, c.with_o) << c.name;
    fn_addext(strcpy(buffer, c.name), ".o", 1);
    EXPECT_STREQ(buffer, c.replaced) << c.name;
  }
  char *dir, *base, *ext;
  fn_split(nullptr, &dir, &base, &ext);
  EXPECT_STREQ(base, "");
  fn_split("name.", &dir, &base, &ext);  // a trailing dot stays with the base
  EXPECT_STREQ(base, "name.");
  const std::string long_base(600, 'x');  // a part is cut to 499 characters
  fn_split((long_base + ".c").c_str(), nullptr, &base, nullptr);
  EXPECT_EQ(std::string(base), long_base.substr(0, 499));

  char buffer[8] = "a.c";
  fn_addext(buffer, "", 1);  // an empty extension removes it, a null one keeps it
  EXPECT_STREQ(buffer, "a");
  fn_addext(buffer, nullptr, 1);
  EXPECT_STREQ(buffer, "a");
  EXPECT_EQ(fn_matches_ext("src/main.c", "c"), 1);
  EXPECT_EQ(fn_matches_ext("src/main.c", ".c"), 0);
  EXPECT_EQ(fn_matches_ext("makefile", ""), 1);

  char* built = fn_build(nullptr, "src", "main", "c");
  EXPECT_STREQ(built, "src/main.c");
  free(built);
  char dest[32];
  EXPECT_STREQ(fn_build(dest, "src/", "main", ".c"), "src/main.c");
  EXPECT_STREQ(fn_build(dest, "", "main", "c"), "main.c");
  EXPECT_STREQ(fn_build(dest, nullptr, "main", ""), "main");
  EXPECT_STREQ(fn_build(dest, "out", nullptr, nullptr), "out/");

  EXPECT_STREQ(fn_basename("x/y/z.c"), "z.c");
  EXPECT_STREQ(fn_basename("z.c"), "z.c");
  EXPECT_EQ(fn_basename(""), nullptr);
  EXPECT_EQ(fn_basename(nullptr), nullptr);
  EXPECT_EQ(fn_has_full_path(""), 0);
  EXPECT_EQ(fn_has_relative_path(""), 1);
  EXPECT_EQ(fn_has_relative_path("/usr"), 0);
  for (const char* dotted : {"./x", "../x"})
    EXPECT_EQ(fn_starts_with_dot_dot(dotted), 1);
  for (const char* plain : {"..x", ".x"})
    EXPECT_EQ(fn_starts_with_dot_dot(plain), 0);
}

// Existence, size, deletion, identity, renaming (within and across file
// systems), directory listing and the working directory.
TEST(FileNames, FilesOnDisk) {
  TempDir tmp;
  std::string missing = tmp.file("missing");
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
  EXPECT_EQ(fn_get_dir_entry(missing.c_str(), &flag), nullptr);

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
  EXPECT_EQ(fn_samefile(missing.c_str(), missing.c_str()), 0);

  char* copy = fn_realname(link.c_str());
  EXPECT_EQ(std::string(copy), link);  // no resolution
  free(copy);

  EXPECT_EQ(fn_delete(file.c_str()), 0);
  EXPECT_EQ(fn_exists(file.c_str()), 0);
  EXPECT_NE(fn_delete(file.c_str()), 0);

  const std::string from = tmp.file("from");
  const std::string to = tmp.file("to");
  write_file(from, "content");
  EXPECT_EQ(fn_rename(from.c_str(), to.c_str()), 1);
  EXPECT_FALSE(fn_exists(from.c_str()));
  EXPECT_EQ(read_file(to), "content");
  EXPECT_EQ(fn_rename(from.c_str(), to.c_str()), 0);

  char* before = fn_get_working_dir(nullptr);
  std::string target = std::filesystem::canonical(tmp.path()).string();
  fn_change_dir(target.data());
  char here[501];
  EXPECT_EQ(fn_get_working_dir(here), here);
  EXPECT_EQ(std::string(here), target);

  fn_change_dir(nullptr);
  const std::string err = capture_output(stderr, [&] { fn_change_dir(missing.data()); });
  EXPECT_EQ(err.rfind("chdir in fn_change_dir: ", 0), 0u) << err;
  EXPECT_EQ(std::string(fn_get_working_dir(here)), target);

  fn_change_dir(before);
  free(before);

  struct stat a, b;
  TempDir shm("/dev/shm");
  if (shm.path().empty() || stat(tmp.path().c_str(), &a) != 0 ||
      stat(shm.path().c_str(), &b) != 0 || a.st_dev == b.st_dev)
    GTEST_SKIP() << "no second file system for a temporary directory";
  const std::string big(20000, 'q');  // more than one copy buffer
  write_file(from, big);
  const std::string across = shm.file("moved");
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

}  // namespace
