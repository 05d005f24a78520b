#include "UTIL/filename.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "UTIL/safemalloc.h"

namespace {

constexpr size_t part_size = 500;
constexpr size_t working_dir_size = 500;

// Copies at most part_size - 1 characters of [begin, end) into part.
void set_part(char* part, const char* begin, const char* end) {
  size_t length = static_cast<size_t>(end - begin);
  if (length > part_size - 1) length = part_size - 1;
  memcpy(part, begin, length);
  part[length] = '\0';
}

// The dot that starts name's extension: the last one with no "/" behind it.
char* extension_dot(char* name) {
  char* dot = strrchr(name, '.');
  if (dot == nullptr || strchr(dot, '/') != nullptr) return nullptr;
  return dot;
}

// Copies the content of from to to; false on any failure.
bool copy_file(const char* from, const char* to) {
  FILE* in = fopen(from, "rb");
  if (in == nullptr) return false;
  FILE* out = fopen(to, "wb");
  if (out == nullptr) {
    fclose(in);
    return false;
  }
  bool ok = true;
  char buffer[8192];
  for (size_t got; ok && (got = fread(buffer, 1, sizeof buffer, in)) > 0;)
    ok = fwrite(buffer, 1, got, out) == got;
  ok = fclose(in) == 0 && ok;
  ok = fclose(out) == 0 && ok;
  return ok;
}

const char base62[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

// The prefix of temporary names: two letters and three base-62 digits of the pid.
const char* tmp_prefix() {
  static char prefix[] = "zv???";
  const long pid = static_cast<long>(getpid());
  prefix[2] = base62[(pid / 3844) % 62];
  prefix[3] = base62[(pid / 62) % 62];
  prefix[4] = base62[pid % 62];
  return prefix;
}

bool is_directory(const char* name) {
  struct stat st;
  return name != nullptr && stat(name, &st) == 0 && S_ISDIR(st.st_mode);
}

// The directory of temporary names, chosen in the system's usual order: TMPDIR,
// then dir, then the system's default; null if none of them is a directory.
const char* temp_directory(const char* dir) {
  for (const char* candidate : {static_cast<const char*>(getenv("TMPDIR")), dir,
                                static_cast<const char*>(P_tmpdir), "/tmp"})
    if (is_directory(candidate)) return candidate;
  return nullptr;
}

// A name (free) in the temporary directory, of prefix and six random base-62
// characters, that names no existing file; null with errno set if there is none
// or memory runs out.
char* unused_temp_name(const char* dir, const char* prefix) {
  constexpr int random_chars = 6;
  constexpr int attempts = 1000;
  const char* directory = temp_directory(dir);
  if (directory == nullptr) {
    errno = ENOENT;
    return nullptr;
  }
  static uint64_t state =
      static_cast<uint64_t>(time(nullptr)) ^ (static_cast<uint64_t>(getpid()) << 32);
  const size_t size = strlen(directory) + strlen(prefix) + random_chars + 2;
  // Plain malloc, so that fn_tmpnam reports running out of memory in its own words.
  char* name = static_cast<char*>(malloc(size));
  if (name == nullptr) return nullptr;
  char* tail = name + snprintf(name, size, "%s/%s", directory, prefix);
  for (int attempt = 0; attempt < attempts; ++attempt) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    uint64_t bits = state >> 16;
    for (int i = 0; i < random_chars; ++i, bits /= 62)
      tail[i] = base62[bits % 62];
    tail[random_chars] = '\0';
    struct stat st;
    if (lstat(name, &st) == -1 && errno == ENOENT) return name;
  }
  free(name);
  errno = EEXIST;
  return nullptr;
}

}  // namespace

void fn_split(const char* name, char** dir, char** base, char** ext) {
  static char dir_part[part_size];
  static char base_part[part_size];
  static char ext_part[part_size];
  dir_part[0] = base_part[0] = ext_part[0] = '\0';
  if (dir) *dir = dir_part;
  if (base) *base = base_part;
  if (ext) *ext = ext_part;
  if (name == nullptr) return;

  const char* slash = strrchr(name, '/');
  const char* base_begin = slash ? slash + 1 : name;
  const char* end = name + strlen(name);
  const char* dot = strrchr(base_begin, '.');
  // A dot at the very end belongs to the base and leaves no extension.
  if (dot == nullptr || dot + 1 == end) dot = end;

  set_part(dir_part, name, base_begin);
  set_part(base_part, base_begin, dot);
  if (dot != end) set_part(ext_part, dot + 1, end);
}

char* fn_build(char* dest, const char* dir, const char* base, const char* ext) {
  std::string name;
  if (dir != nullptr && *dir != '\0') {
    name = dir;
    if (name.back() != '/') name += '/';
  }
  if (base) name += base;
  if (ext != nullptr && *ext != '\0') {
    if (*ext != '.') name += '.';
    name += ext;
  }
  return dest ? strcpy(dest, name.c_str()) : safestrdup(name.c_str());
}

void fn_addext(char* name, const char* ext, int replace) {
  if (ext == nullptr) return;
  char* dot = extension_dot(name);
  if (dot != nullptr) {
    if (!replace) return;
    *dot = '\0';
  }
  if (*ext == '\0') return;
  if (*ext != '.') strcat(name, ".");
  strcat(name, ext);
}

void fn_delext(char* name) {
  char* dot = extension_dot(name);
  if (dot) *dot = '\0';
}

int fn_hasdir(const char* name) {
  return strchr(name, '/') != nullptr;
}

const char* fn_basename(const char* name) {
  if (name == nullptr || *name == '\0') return nullptr;
  const char* slash = strrchr(name, '/');
  return slash ? slash + 1 : name;
}

int fn_strcmp(const char* a, const char* b) {
  return strcmp(a, b);
}

int fn_samefile(const char* a, const char* b) {
  struct stat sa, sb;
  if (stat(a, &sa) != 0 || stat(b, &sb) != 0) return 0;
  if (sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino) return 1;
  return strcmp(a, b) == 0;
}

char* fn_realname(const char* name) {
  return safestrdup(name);
}

char* fn_tmpnam(char* dest, const char*, const char* dir) {
  char* name = unused_temp_name(dir, tmp_prefix());
  if (name == nullptr) {
    fprintf(stderr, "ERROR: cannot create temporary file name; %s\n",
            errno == ENOMEM ? "out of memory" : "check directory permissions");
    exit(1);
  }
  if (dest == nullptr) return name;
  strcpy(dest, name);
  free(name);
  return dest;
}

int fn_exists(const char* name) {
  struct stat st;
  return stat(name, &st) == 0;
}

int fn_delete(const char* name) {
  return remove(name);
}

char* fn_get_working_dir(char* dest) {
  if (dest == nullptr) dest = static_cast<char*>(safecalloc(working_dir_size + 1, 1));
  if (getcwd(dest, working_dir_size) == nullptr) perror("getcwd in fn_get_working_dir");
  return dest;
}

int fn_has_full_path(const char* name) {
  return name[0] == '/';
}

int fn_has_relative_path(const char* name) {
  return name[0] != '/';
}

int fn_starts_with_dot_dot(const char* name) {
  return strncmp(name, "./", 2) == 0 || strncmp(name, "../", 3) == 0;
}

int fn_rename(const char* from, const char* to) {
  if (rename(from, to) == 0) return 1;
  if (errno != EXDEV) return 0;
  return copy_file(from, to);
}

const char* fn_get_dir_entry(const char* dir, int* flag) {
  static DIR* open_dir = nullptr;
  *flag = 0;
  if (dir != nullptr) {
    if (open_dir) closedir(open_dir);
    open_dir = opendir(dir);
  }
  if (open_dir == nullptr) return nullptr;
  if (const dirent* entry = readdir(open_dir)) return entry->d_name;
  closedir(open_dir);
  open_dir = nullptr;
  return nullptr;
}

void fn_change_dir(char* dir) {
  if (dir != nullptr && chdir(dir) != 0) perror("chdir in fn_change_dir");
}

long long file_size(const char* name) {
  struct stat st;
  if (stat(name, &st) != 0) return -1;
  return static_cast<long long>(st.st_size);
}

long long file_size(const std::string& name) {
  return file_size(name.c_str());
}

int fn_matches_ext(const char* name, const char* ext) {
  char* own_ext;
  fn_split(name, nullptr, nullptr, &own_ext);
  return strcmp(own_ext, ext) == 0;
}

std::string cstr_to_fn(const std::string& text) {
  return text;
}

std::string fn_to_cstr(const std::string& name) {
  return name;
}
