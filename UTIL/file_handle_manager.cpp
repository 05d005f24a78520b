#include "UTIL/file_handle_manager.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "UTIL/safemalloc.h"

namespace {

FHM_FILE** new_table(int32_t count) {
  return static_cast<FHM_FILE**>(safecalloc(static_cast<size_t>(count), sizeof(FHM_FILE*)));
}

// A copy of table's first count entries, sorted with compare.
FHM_FILE** sorted_copy(FHM_FILE* const* table, int32_t count,
                       int (*compare)(const void*, const void*)) {
  FHM_FILE** copy = new_table(count);
  memcpy(copy, table, static_cast<size_t>(count) * sizeof(FHM_FILE*));
  qsort(copy, static_cast<size_t>(count), sizeof(FHM_FILE*), compare);
  return copy;
}

// Orders nulls last and otherwise the higher key first.
template <typename Key>
int compare_descending(const void* a, const void* b, Key key) {
  const FHM_FILE* fa = *static_cast<FHM_FILE* const*>(a);
  const FHM_FILE* fb = *static_cast<FHM_FILE* const*>(b);
  if (fa == nullptr || fb == nullptr) return (fa == nullptr) - (fb == nullptr);
  const uint64_t ka = key(fa), kb = key(fb);
  return (ka < kb) - (ka > kb);
}

// A standard file: it holds its stream from the start, takes no slot and has no
// place in files.
FHM_FILE* standard_file(FILE_HANDLE_MANAGER* manager, const char* name, const char* mode,
                        FILE* stream) {
  FHM_FILE* file = new FHM_FILE(manager, name, mode, -1);
  file->stream = stream;
  return file;
}

}  // namespace

int compar_access(const void* a, const void* b) {
  return compare_descending(a, b, [](const FHM_FILE* f) { return f->last_access; });
}

int compar_open(const void* a, const void* b) {
  return compare_descending(a, b, [](const FHM_FILE* f) { return f->reopen_count; });
}

FHM_FILE::FHM_FILE(FILE_HANDLE_MANAGER* manager, const char* name, const char* mode,
                   int32_t file_index)
    : manager(manager), file_name(safestrdup(name)), mode(mode), file_index(file_index) {}

FHM_FILE::~FHM_FILE() {
  free(file_name);
}

FILE* FHM_FILE::fp() {
  return manager->fp(this);
}

int FHM_FILE::evict() {
  return manager->evict(this);
}

FILE_HANDLE_MANAGER& FILE_HANDLE_MANAGER::FHM() {
  // Never destroyed: files may be used until the process ends.
  static FILE_HANDLE_MANAGER* instance = new FILE_HANDLE_MANAGER;
  return *instance;
}

FILE_HANDLE_MANAGER::FILE_HANDLE_MANAGER()
    : files(new_table(max_files)),
      handles(new_table(max_handles)),
      std_in(standard_file(this, "(stdin)", "r", stdin)),
      std_out(standard_file(this, "(stdout)", "w", stdout)),
      std_err(standard_file(this, "(stderr)", "w", stderr)) {}

FILE_HANDLE_MANAGER::~FILE_HANDLE_MANAGER() {
  for (int32_t index = 0; index < next_file; ++index)
    if (files[index]) close(files[index]);
  delete std_in;
  delete std_out;
  delete std_err;
  free(files);
  free(handles);
}

bool FILE_HANDLE_MANAGER::is_standard(const FHM_FILE* file) const {
  return file == std_in || file == std_out || file == std_err;
}

FHM_FILE* FILE_HANDLE_MANAGER::open(const char* name, const char* mode) {
  if (name == nullptr || mode == nullptr) return nullptr;
  if (next_file == max_files) {
    defragment_file_handles();
    if (next_file == max_files) grow_file_handles();
  }
  FHM_FILE* file = new FHM_FILE(this, name, mode, next_file);
  if (!open_FILE(file)) {
    delete file;
    return nullptr;
  }
  files[next_file++] = file;
  return file;
}

int FILE_HANDLE_MANAGER::close(FHM_FILE* file) {
  if (file == nullptr) return EOF;
  if (is_standard(file)) return 0;
  int result = 0;
  if (file->stream) {
    result = fclose(file->stream);
    handles[file->handle_index] = nullptr;
  }
  files[file->file_index] = nullptr;
  delete file;
  fragmented = true;
  return result;
}

FILE* FILE_HANDLE_MANAGER::fp(FHM_FILE* file) {
  if (file->stream == nullptr) reopen(file);
  file->last_access = access_clock++;
  return file->stream;
}

FHM_FILE* FILE_HANDLE_MANAGER::reopen(FHM_FILE* file) {
  if (file->stream) return file;
  if (!open_FILE(file)) return nullptr;
  fsetpos(file->stream, &file->saved_position);
  fseek(file->stream, file->saved_offset, SEEK_SET);
  ++file->reopen_count;
  return file;
}

int FILE_HANDLE_MANAGER::evict(FHM_FILE* file) {
  if (file->stream == nullptr || file->persistent || is_standard(file)) return -1;
  file->saved_offset = ftell(file->stream);
  fgetpos(file->stream, &file->saved_position);
  const int result = fclose(file->stream);
  file->stream = nullptr;
  handles[file->handle_index] = nullptr;
  return result;
}

void FILE_HANDLE_MANAGER::stats(FILE* out) {
  defragment_file_handles();
  int32_t open_files = 0;
  for (int32_t slot = 0; slot < max_handles; ++slot)
    open_files += handles[slot] != nullptr;
  fprintf(out, " File Manager Statistics\n");
  fprintf(out, " -----------------------\n");
  fprintf(out, "    # Managed Files    %d\n", next_file);
  fprintf(out, "    # Open Files:      %d\n", open_files);
  fprintf(out, "    Max # Open Files:  %d\n", max_handles);
  fprintf(out, "\n");

  fprintf(out, " Open Files (most recently accessed first)\n");
  fprintf(out, " -----------------------------------------\n");
  FHM_FILE** by_access = sorted_copy(handles, max_handles, compar_access);
  for (int32_t i = 0; i < max_handles && by_access[i]; ++i)
    fprintf(out, "    %s\n", by_access[i]->name());
  free(by_access);
  fprintf(out, "\n");

  fprintf(out, " File Access Statistics (most thrashed first)\n");
  fprintf(out, " --------------------------------------------\n");
  FHM_FILE** by_reopens = sorted_copy(files, next_file, compar_open);
  for (int32_t i = 0; i < next_file; ++i)
    if (by_reopens[i] && by_reopens[i]->reopen_count != 0)
      fprintf(out, "    %s was reopened %ld times\n", by_reopens[i]->name(),
              static_cast<long>(by_reopens[i]->reopen_count));
  free(by_reopens);
  fprintf(out, "\n");
}

void FILE_HANDLE_MANAGER::defragment_file_handles() {
  if (!fragmented) return;
  int32_t count = 0;
  for (int32_t i = 0; i < next_file; ++i) {
    if (files[i] == nullptr) continue;
    files[count] = files[i];
    files[count]->file_index = count;
    ++count;
  }
  next_file = count;
  fragmented = false;
}

void FILE_HANDLE_MANAGER::grow_file_handles() {
  FHM_FILE** grown = new_table(2 * max_files);
  memcpy(grown, files, static_cast<size_t>(max_files) * sizeof(FHM_FILE*));
  free(files);
  files = grown;
  max_files *= 2;
}

int32_t FILE_HANDLE_MANAGER::unused_file_handle() {
  const int32_t start = next_handle;
  int32_t slot = start;
  do {
    if (handles[slot] == nullptr) {
      next_handle = (slot + 1) % max_handles;
      return slot;
    }
    slot = (slot + 1) % max_handles;
  } while (slot != start);
  return -1;
}

int FILE_HANDLE_MANAGER::evict_file_handle() {
  FHM_FILE* oldest = nullptr;
  for (int32_t slot = 0; slot < max_handles; ++slot) {
    FHM_FILE* file = handles[slot];
    if (file && !file->persistent && (oldest == nullptr || file->last_access < oldest->last_access))
      oldest = file;
  }
  return oldest ? evict(oldest) : -1;
}

bool FILE_HANDLE_MANAGER::open_FILE(FHM_FILE* file) {
  int32_t slot;
  while ((slot = unused_file_handle()) < 0)
    if (evict_file_handle() == -1) return false;

  FILE* stream = fopen(file->file_name, file->mode);
  if (stream == nullptr && errno != ENFILE) return false;
  // The system's table is full: give up streams of our own until one opens.
  while (stream == nullptr) {
    if (evict_file_handle() == -1) return false;
    stream = fopen(file->file_name, file->mode);
  }
  file->handle_index = slot;
  file->stream = stream;
  file->last_access = access_clock++;
  file->mode = detect_reopen_mode(file->mode);
  handles[slot] = file;
  return true;
}

const char* FILE_HANDLE_MANAGER::detect_reopen_mode(const char* mode) {
  if (mode == nullptr || mode[0] == '\0') return "r";
  // "b" and "+" count in the second or third place.
  auto has = [mode](char c) { return mode[1] == c || (mode[1] != '\0' && mode[2] == c); };
  const bool binary = has('b');
  const bool update = has('+');
  switch (mode[0]) {
    case 'w':
      return binary ? "r+b" : "r+";
    case 'r':
      return update ? (binary ? "r+b" : "r+") : (binary ? "rb" : "r");
    case 'a':
      return update ? (binary ? "a+b" : "a+") : (binary ? "ab" : "a");
    default:
      return "r";
  }
}

FHM_FILE* fhm_open(const char* name, const char* mode) {
  return FILE_HANDLE_MANAGER::FHM().open(name, mode);
}

int fhm_close(FHM_FILE* file) {
  return FILE_HANDLE_MANAGER::FHM().close(file);
}

void fhm_stats(FILE* stream) {
  FILE_HANDLE_MANAGER::FHM().stats(stream);
}

FHM_FILE* fhm_stdin() {
  return FILE_HANDLE_MANAGER::FHM().std_in;
}

FHM_FILE* fhm_stdout() {
  return FILE_HANDLE_MANAGER::FHM().std_out;
}

FHM_FILE* fhm_stderr() {
  return FILE_HANDLE_MANAGER::FHM().std_err;
}
