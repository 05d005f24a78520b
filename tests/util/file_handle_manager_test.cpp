#include "UTIL/file_handle_manager.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/util/capture.h"
#include "tests/util/temp_dir.h"

namespace {

class FileHandles : public testing::Test {
 protected:
  TempDir tmp;
  FILE_HANDLE_MANAGER fhm;

  std::string name(int i) const { return tmp.file("f" + std::to_string(i)); }

  std::vector<FHM_FILE*> open_many(int count) {
    std::vector<FHM_FILE*> opened;
    for (int i = 0; i < count; ++i)
      opened.push_back(fhm.open(name(i).c_str(), "w"));
    return opened;
  }
};

// Twelve streams at most: the thirteenth open takes the least recently used
// one, and an evicted file gets a stream back at its position when next used.
TEST_F(FileHandles, EvictionTakesTheLeastRecentlyUsedAndReopeningResumes) {
  std::vector<FHM_FILE*> files = open_many(13);
  EXPECT_FALSE(files[0]->is_open());
  EXPECT_EQ(fhm.handles[0], files[12]);
  fputs("hello ", files[0]->fp());  // evicts the next oldest, file 1
  EXPECT_EQ(fhm.reopen(files[0]), files[0]);  // open already: kept as it is
  EXPECT_EQ(files[0]->reopen_count, 1u);
  EXPECT_FALSE(files[1]->is_open());

  EXPECT_EQ(files[0]->evict(), 0);
  EXPECT_EQ(files[0]->evict(), -1);  // nothing left to evict
  fputs("world", files[0]->fp());    // reopened with "r+" at its place: not truncated
  EXPECT_EQ(fhm.close(files[0]), 0);
  EXPECT_EQ(read_file(name(0)), "hello world");

  const std::vector<std::pair<const char*, const char*>> modes = {
      {"w", "r+"},  {"w+b", "r+b"}, {"r", "r"}, {"rb+", "r+b"},
      {"ab", "ab"}, {"a+b", "a+b"}, {"x", "r"}, {"", "r"}};
  for (const auto& [given, reopening] : modes)
    EXPECT_STREQ(FILE_HANDLE_MANAGER::detect_reopen_mode(given), reopening) << given;
}

TEST_F(FileHandles, FailedOpensLeaveNoTraceAndPersistentAndStandardFilesStayOpen) {
  EXPECT_EQ(fhm.open(tmp.file("missing").c_str(), "r"), nullptr);
  EXPECT_EQ(fhm.open(nullptr, "r"), nullptr);
  EXPECT_EQ(fhm.close(nullptr), EOF);
  EXPECT_TRUE(fhm.next_file == 0 && fhm.handles[0] == nullptr);
  std::vector<FHM_FILE*> files = open_many(12);
  for (FHM_FILE* file : files)
    file->set_persistent(true);
  EXPECT_EQ(files[3]->evict(), -1);
  EXPECT_EQ(fhm.open(name(12).c_str(), "w"), nullptr);
  fhm.set_persistent(files[5], false);
  FHM_FILE* next = fhm.open(name(12).c_str(), "w");
  ASSERT_NE(next, nullptr);
  EXPECT_FALSE(files[5]->is_open());
  EXPECT_EQ(fhm.handles[files[5]->handle_index], next);
  EXPECT_EQ(fhm.evict(fhm.std_err), -1);
  EXPECT_TRUE(fhm_close(fhm_stdout()) == 0 && fhm_stdout()->fp() == stdout &&
              fhm_stderr()->fp() == stderr);
  EXPECT_STREQ(fhm_stdin()->name(), "(stdin)");
  EXPECT_EQ(write_to_string(fhm_stats).rfind(" File Manager Statistics\n", 0), 0u);
}

// A closed file leaves a hole until the table is full: then it is
// defragmented, or doubled when there is no hole.
TEST_F(FileHandles, AFullFileTableDefragmentsOrGrows) {
  std::vector<FHM_FILE*> files = open_many(1024);
  ASSERT_NE(files.back(), nullptr);
  EXPECT_EQ(fhm.close(files[0]), 0);  // evicted: no stream, so no fclose
  EXPECT_EQ(fhm.close(files[100]), 0);
  ASSERT_NE(fhm.open(name(0).c_str(), "r"), nullptr);
  EXPECT_EQ(fhm.max_files, 1024);
  EXPECT_EQ(fhm.next_file, 1023);
  EXPECT_FALSE(fhm.fragmented);
  EXPECT_EQ(fhm.files[0], files[1]);
  EXPECT_EQ(files[101]->file_index, 99);
  ASSERT_NE(fhm.open(name(0).c_str(), "r"), nullptr);
  FHM_FILE* last = fhm.open(name(0).c_str(), "r");
  EXPECT_EQ(fhm.max_files, 2048);
  EXPECT_EQ(fhm.files[1024], last);
}

TEST_F(FileHandles, StatsReportOpenFilesAndReopens) {
  std::vector<FHM_FILE*> files = open_many(3);
  for (int i : {1, 2, 2})
    files[i]->evict(), files[i]->fp();
  files[0]->fp();
  fhm.close(fhm.open(name(3).c_str(), "w"));
  // Open files, the most recently used first; then the most reopened first.
  EXPECT_EQ(write_to_string([&](FILE* out) { fhm.stats(out); }),
            " File Manager Statistics\n -----------------------\n    # Managed Files    3\n"
            "    # Open Files:      3\n    Max # Open Files:  12\n\n"
            " Open Files (most recently accessed first)\n"
            " -----------------------------------------\n    " +
                name(0) + "\n    " + name(2) + "\n    " + name(1) +
                "\n\n File Access Statistics (most thrashed first)\n"
                " --------------------------------------------\n    " +
                name(2) + " was reopened 2 times\n    " + name(1) + " was reopened 1 times\n\n");
  EXPECT_EQ(compar_open(&files[0], &files[0]), 0);  // a tie keeps its order
}

}  // namespace
