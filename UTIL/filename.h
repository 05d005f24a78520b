#pragma once
// Carried for the toolchain's other tools; no step of an advzorv run calls it.
// Taking file names apart, building them, and touching the files they name.
// Names are plain char texts with "/" as the separator.
#include <string>

// Splits name into directory (with its trailing "/"), base and extension (without
// its dot). The parts live in three static buffers of 500 bytes, overwritten by
// the next call; each out-argument may be null. A null name gives three empty parts.
void fn_split(const char* name, char** dir, char** base, char** ext);

// Puts dir, base and ext together in dest, or in a new buffer (free) if dest is
// null, adding "/" after dir and "." before ext where missing. Gives the buffer.
char* fn_build(char* dest, const char* dir, const char* base, const char* ext);

// Adds ext to name in place if it has no extension; with replace, an existing
// extension gives way to ext (an empty ext removes it, a null one changes nothing).
void fn_addext(char* name, const char* ext, int replace);

// Removes the extension of name in place.
void fn_delext(char* name);

// 1 if name has a "/".
int fn_hasdir(const char* name);

// The part of name behind its last "/"; null for a null or empty name.
const char* fn_basename(const char* name);

// As strcmp, exact as to case.
int fn_strcmp(const char* a, const char* b);

// 1 if both names exist and name the same file.
int fn_samefile(const char* a, const char* b);

// A copy of name (free); names are not resolved.
char* fn_realname(const char* name);

// A new temporary name, for no existing file, in the directory named by TMPDIR,
// else in dir, else in the system's default. Its base begins with a prefix made
// from the process id. Copied into dest if it is not null, else returned in a
// buffer the caller frees. Ends the process if no name can be had.
char* fn_tmpnam(char* dest, const char* unused, const char* dir);

// 1 if the file exists.
int fn_exists(const char* name);

// The result of remove.
int fn_delete(const char* name);

// The working directory in dest, or in a new buffer of 501 bytes (free).
char* fn_get_working_dir(char* dest);

// 1 if name begins with "/".
int fn_has_full_path(const char* name);
// 1 if name does not begin with "/"; an empty name counts as relative.
int fn_has_relative_path(const char* name);
// 1 if name begins with "./" or "../".
int fn_starts_with_dot_dot(const char* name);

// Renames from to to, copying across file systems (the source then stays).
// 1 on success, else 0.
int fn_rename(const char* from, const char* to);

// With a dir, opens that directory; with null, goes on with the open one. Gives
// the next entry's name, or null at the end (which forgets the directory) or when
// none is open. Sets *flag to 0.
const char* fn_get_dir_entry(const char* dir, int* flag);

// chdir; a null does nothing.
void fn_change_dir(char* dir);

// The file's size, or -1 if it can't be had.
long long file_size(const char* name);
long long file_size(const std::string& name);

// 1 if the extension of name equals ext (given without a dot). Overwrites the
// buffers of fn_split.
int fn_matches_ext(const char* name, const char* ext);

// Conversions between texts and file names; on this system both are the same.
std::string cstr_to_fn(const std::string& text);
std::string fn_to_cstr(const std::string& name);
