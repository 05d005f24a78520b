#pragma once
// Carried for the toolchain's other tools; no step of an advzorv run calls it.
// Lets a program hold more files open than the system allows: files are handed
// out as FHM_FILE objects, at most max_handles real streams are open at a time,
// and a file whose stream was taken (evicted) gets a new one at the same
// position when it is next used.
#include <cstdint>
#include <cstdio>

class FILE_HANDLE_MANAGER;

// One managed file: open (it holds a stream and a slot), or evicted (no stream,
// its position saved). The manager owns it; give it back with close.
class FHM_FILE {
 public:
  FILE_HANDLE_MANAGER* manager;
  FILE* stream = nullptr;
  char* file_name;   // owned copy
  const char* mode;  // borrowed; after the first open, the mode for reopening
  long saved_offset = 0;
  fpos_t saved_position{};
  bool persistent = false;  // the stream is never evicted
  uint64_t reopen_count = 0;
  uint64_t last_access = 0;
  int32_t file_index;
  int32_t handle_index = -1;  // meaningful while stream is not null

  FHM_FILE(FILE_HANDLE_MANAGER* manager, const char* name, const char* mode, int32_t file_index);
  ~FHM_FILE();
  FHM_FILE(const FHM_FILE&) = delete;
  FHM_FILE& operator=(const FHM_FILE&) = delete;

  // The stream, reopened if need be; null if no stream can be had.
  FILE* fp();
  int evict();
  void set_persistent(bool on) { persistent = on; }
  bool is_open() const { return stream != nullptr; }
  // The name, or an empty text.
  const char* name() const { return file_name ? file_name : ""; }
};

class FILE_HANDLE_MANAGER {
 public:
  int32_t max_files = 1024;  // capacity of files; doubled when full
  int32_t max_handles = 12;
  FHM_FILE** files;           // all managed files; a closed one leaves a null until defragmented
                              // (the entries from next_file on are unused)
  FHM_FILE** handles;         // the file holding each stream slot, or null
  int32_t next_file = 0;      // first index of files unused since the last defragmentation
  uint64_t access_clock = 0;  // counts opens and accesses
  int32_t next_handle = 0;    // where the search for a free slot starts
  bool fragmented = false;
  FHM_FILE* std_in;
  FHM_FILE* std_out;
  FHM_FILE* std_err;

  // The process's one manager, built at the first call.
  static FILE_HANDLE_MANAGER& FHM();

  FILE_HANDLE_MANAGER();
  // Closes every managed file, open or evicted, and frees it.
  ~FILE_HANDLE_MANAGER();
  FILE_HANDLE_MANAGER(const FILE_HANDLE_MANAGER&) = delete;
  FILE_HANDLE_MANAGER& operator=(const FILE_HANDLE_MANAGER&) = delete;

  // A new managed file, or null if no stream could be had.
  FHM_FILE* open(const char* name, const char* mode);
  // The result of fclose; 0 for a file without a stream and for a standard file,
  // which stays open; EOF for null.
  int close(FHM_FILE* file);
  // The file's stream, reopened if need be; null if no stream can be had.
  FILE* fp(FHM_FILE* file);
  // The file, its stream back at the saved position; null on failure.
  FHM_FILE* reopen(FHM_FILE* file);
  // The result of fclose, or -1 for a file without a stream, a persistent file or
  // a standard file.
  int evict(FHM_FILE* file);
  void set_persistent(FHM_FILE* file, bool on) { file->persistent = on; }
  // Writes a report of the managed and open files and of reopen counts to out.
  void stats(FILE* out);

  // Internal steps.
  void defragment_file_handles();
  void grow_file_handles();
  // Gives file a stream in a free slot, evicting the least recently used file if
  // need be; false if no stream could be had.
  bool open_FILE(FHM_FILE* file);
  // A free slot, or -1.
  int32_t unused_file_handle();
  // Evicts the least recently used file that isn't persistent; -1 if none.
  int evict_file_handle();
  // The mode that reopens a file opened with mode without losing data.
  static const char* detect_reopen_mode(const char* mode);

 private:
  bool is_standard(const FHM_FILE* file) const;
};

// qsort comparisons on arrays of FHM_FILE*: nulls last, then the higher
// last_access (compar_access) or reopen_count (compar_open) first.
int compar_access(const void* a, const void* b);
int compar_open(const void* a, const void* b);

FHM_FILE* fhm_open(const char* name, const char* mode);
int fhm_close(FHM_FILE* file);
void fhm_stats(FILE* stream);
FHM_FILE* fhm_stdin();
FHM_FILE* fhm_stdout();
FHM_FILE* fhm_stderr();
