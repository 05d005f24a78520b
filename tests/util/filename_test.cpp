#include "UTIL/filename.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "tests/util/capture.h"
#include "tests/util/temp_dir.h"

// Present only when a leak checker (alone or within the address sanitizer) is linked in.
extern "C" __attribute__((weak)) void __lsan_do_leak_check();

namespace {

// One row per name: the parts fn_split gives (which fn_build puts back
// together), and what the in-place editors make of it.
struct name_case {
  const char* name;
  const char* dir;
  const char* base;
  const char* ext;
  const char* without_ext;  // fn_delext, and fn_addext(name, "", 1)
  const char* with_o;       // fn_addext(name, "o", 0)
  const char* replaced;     // fn_addext(name, ".o", 1)
};

TEST(FileNames, SplittingAndExtensionsFollowTheLastSlashAndDot) {
  const name_case cases[] = {
      {"lib/x.tar.gz", "lib/", "x.tar", "gz", "lib/x.tar", "lib/x.tar.gz", "lib/x.tar.o"},
      {"a.b/c", "a.b/", "c", "", "a.b/c", "a.b/c.o", "a.b/c.o"},
      {"dir/.profile", "dir/", "", "profile", "dir/", "dir/.profile", "dir/.o"},
      {"name.", "", "name.", "", "name", "name.", "name.o"},  // a trailing dot stays with the base
      {"/", "/", "", "", "/", "/.o", "/.o"},
      {"", "", "", "", "", ".o", ".o"},
  };
  char buffer[64];
  for (const name_case& c : cases) {
    char *dir, *base, *ext;
    fn_split(c.name, &dir, &base, &ext);
    EXPECT_STREQ(dir, c.dir) << c.name;
    EXPECT_STREQ(base, c.base) << c.name;
    EXPECT_STREQ(ext, c.ext) << c.name;
    EXPECT_STREQ(fn_build(buffer, dir, base, ext), c.name) << c.name;
    EXPECT_EQ(fn_matches_ext(c.name, c.ext), 1) << c.name;
    fn_delext(strcpy(buffer, c.name));
    EXPECT_STREQ(buffer, c.without_ext) << c.name;
    fn_addext(strcpy(buffer, c.name), "", 1);
    EXPECT_STREQ(buffer, c.without_ext) << c.name;
    fn_addext(strcpy(buffer, c.name), "o", 0);
    EXPECT_STREQ(buffer, c.with_o) << c.name;
    fn_addext(strcpy(buffer, c.name), ".o", 1);
    EXPECT_STREQ(buffer, c.replaced) << c.name;
  }
  char* base;
  const std::string long_base(500, 'x');  // a part is cut to 499 characters
  fn_split((long_base + ".c").c_str(), nullptr, &base, nullptr);
  EXPECT_EQ(std::string(base), long_base.substr(0, 499));
  fn_split(nullptr, nullptr, &base, nullptr);
  EXPECT_STREQ(base, "");
  fn_addext(strcpy(buffer, "a.c"), nullptr, 1);
  EXPECT_STREQ(buffer, "a.c");
  EXPECT_EQ(fn_matches_ext("src/main.c", ".c"), 0);

  char* built = fn_build(nullptr, "out", "x", ".o");  // "/" added, "." not doubled
  EXPECT_STREQ(built, "out/x.o");
  free(built);
  EXPECT_STREQ(fn_build(buffer, nullptr, nullptr, "o"), ".o");

  for (auto [name, base] : {std::pair<const char*, const char*>{"x/y/z.c", "z.c"},
                            {"z.c", "z.c"}, {"", nullptr}, {nullptr, nullptr}})
    EXPECT_STREQ(fn_basename(name), base);
  EXPECT_TRUE(!fn_has_full_path("") && fn_has_relative_path("") && !fn_has_relative_path("/usr"));
  for (auto [name, dotted] : {std::pair{"./x", 1}, {"../x", 1}, {"..x", 0}, {".x", 0}})
    EXPECT_EQ(fn_starts_with_dot_dot(name), dotted) << name;
}

TEST(FileNames, FilesOnDisk) {
  TempDir tmp;
  const std::string a = tmp.file("a"), b = tmp.file("b"), link = tmp.file("link"),
                    to = tmp.file("to"), missing = tmp.file("missing");
  write_file(a, "12345");
  write_file(b, "12345");
  int flag = 7;
  std::set<std::string> seen;
  for (const char* entry = fn_get_dir_entry(tmp.path().c_str(), &flag); entry;
       entry = fn_get_dir_entry(nullptr, &flag))
    seen.insert(entry);
  EXPECT_EQ(seen, (std::set<std::string>{".", "..", "a", "b"}));
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(fn_get_dir_entry(nullptr, &flag), nullptr);  // the directory was forgotten
  fn_get_dir_entry(tmp.path().c_str(), &flag);  // left open, then closed by the next opening
  EXPECT_EQ(fn_get_dir_entry(missing.c_str(), &flag), nullptr);

  EXPECT_EQ(fn_exists(a.c_str()), 1);
  EXPECT_EQ(file_size(a.c_str()), 5);
  EXPECT_EQ(file_size(missing), -1);
  ASSERT_EQ(symlink(a.c_str(), link.c_str()), 0);
  EXPECT_EQ(fn_samefile(a.c_str(), link.c_str()), 1);
  EXPECT_EQ(fn_samefile(a.c_str(), b.c_str()), 0);
  EXPECT_EQ(fn_samefile(missing.c_str(), missing.c_str()), 0);
  char* copy = fn_realname(link.c_str());
  EXPECT_EQ(std::string(copy), link);  // no resolution
  free(copy);

  EXPECT_EQ(fn_rename(b.c_str(), to.c_str()), 1);
  EXPECT_EQ(read_file(to), "12345");
  EXPECT_EQ(fn_rename(b.c_str(), to.c_str()), 0);  // b is gone
  EXPECT_EQ(fn_delete(to.c_str()), 0);
  EXPECT_NE(fn_delete(to.c_str()), 0);

  char* before = fn_get_working_dir(nullptr);
  std::string target = std::filesystem::canonical(tmp.path()).string();
  fn_change_dir(target.data());
  fn_change_dir(nullptr);
  const std::string err =
      capture_output(stderr, [&] { fn_change_dir(std::string(missing).data()); });
  EXPECT_EQ(err.rfind("chdir in fn_change_dir: ", 0), 0u) << err;
  char here[501];
  EXPECT_EQ(capture_output(stderr, [&] { EXPECT_EQ(fn_get_working_dir(here), here); }), "");
  EXPECT_EQ(std::string(here), target);
  fn_change_dir(before);
  free(before);

  ScopedEnv no_tmpdir("TMPDIR", nullptr);
  char* made = fn_tmpnam(nullptr, "ignored", tmp.path().c_str());
  const std::string name = made;
  free(made);
  // Two letters, then three base-62 digits of the process id, then six random characters.
  const char* digits = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const long pid = getpid();
  const std::string prefix = {'z', 'v', digits[pid / 3844 % 62], digits[pid / 62 % 62],
                              digits[pid % 62]};
  EXPECT_EQ(name.rfind(tmp.path() + "/" + prefix, 0), 0u) << name;
  EXPECT_EQ(name.size(), tmp.path().size() + 1 + prefix.size() + 6) << name;
  EXPECT_FALSE(fn_exists(name.c_str()));

  char dest[512];
  EXPECT_EQ(fn_tmpnam(dest, nullptr, tmp.path().c_str()), dest);
  EXPECT_NE(std::string(dest), name);

  // TMPDIR comes first, and a directory that doesn't exist is passed over.
  TempDir env_dir;
  ScopedEnv tmpdir("TMPDIR", env_dir.path().c_str());
  EXPECT_EQ(std::string(fn_tmpnam(dest, nullptr, tmp.path().c_str())).rfind(env_dir.path(), 0), 0u);
  ScopedEnv missing_tmpdir("TMPDIR", missing.c_str());
  EXPECT_EQ(std::string(fn_tmpnam(dest, nullptr, tmp.path().c_str())).rfind(tmp.path(), 0), 0u);

  struct stat here_stat, shm_stat;
  TempDir shm("/dev/shm");
  if (shm.path().empty() || stat(tmp.path().c_str(), &here_stat) != 0 ||
      stat(shm.path().c_str(), &shm_stat) != 0 || here_stat.st_dev == shm_stat.st_dev)
    GTEST_SKIP() << "no second file system for a temporary directory";
  const std::string big(20000, 'q');  // more than one copy buffer
  write_file(a, big);
  const std::string across = shm.file("moved");
  EXPECT_EQ(fn_rename(a.c_str(), across.c_str()), 1);
  EXPECT_TRUE(read_file(across) == big && fn_exists(a.c_str()));  // copied, and still there
  const std::string full = shm.file("full");  // /dev/full behind a link takes no copy
  ASSERT_EQ(symlink("none", b.c_str()) + symlink("/dev/full", full.c_str()), 0);  // b: to nothing
  EXPECT_EQ(fn_rename(b.c_str(), across.c_str()) + fn_rename(a.c_str(), full.c_str()), 0);
}

// Leaves the process no memory for even a small allocation.
void exhaust_memory() {
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
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

// No temporary name: every try fails where names are too long, or there is no memory.
TEST(FileNamesDeathTest, TemporaryNameThatCantBeHadEndsTheProcess) {
  TempDir tmp;
  std::string deep = tmp.path();
  while (deep.size() < 4085)
    deep += "/" + std::string(std::min<size_t>(200, 4084 - deep.size()), 'd');
  ASSERT_TRUE(std::filesystem::create_directories(deep));
  ScopedEnv tmpdir("TMPDIR", deep.c_str());
  EXPECT_EXIT(fn_tmpnam(nullptr, nullptr, nullptr), testing::ExitedWithCode(1),
              "^ERROR: cannot create temporary file name; check directory permissions\n$");
  if (__lsan_do_leak_check != nullptr)
    GTEST_SKIP() << "a sanitizer's allocator ignores the address-space limit the test sets";
  EXPECT_EXIT((exhaust_memory(), fn_tmpnam(nullptr, nullptr, nullptr)), testing::ExitedWithCode(1),
              "^ERROR: cannot create temporary file name; out of memory\n$");
}

}  // namespace
