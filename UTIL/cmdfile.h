#pragma once
// The tokenizer of command files: words separated by white space, with double
// quotes, backslash escapes, "/* */" block comments and ";" or "#" line comments.
#include <cstdio>

#include <cstddef>

// The most a command file opened by open_command_file may hold, in bytes. A
// word has no length limit of its own; this bound is what ends an endless
// input such as /dev/zero, which no real command file comes near.
constexpr size_t cmdfile_max_bytes = size_t{64} << 20;

// Opens path for reading by fnextopt, as a stream whose reads fail once more
// than cmdfile_max_bytes have been read; an interrupted open or read is
// retried. Null, with errno set, when path can't be opened or is a directory,
// or while another such stream is open: command files never nest. The caller
// closes the stream with fclose.
FILE* open_command_file(const char* path);

// The next word of stream as a new heap string (the caller frees it with free),
// or null at the end of the stream or for a null stream. A word that holds a
// NUL byte is stored only up to it, since no reader of the string sees
// further; the rest of the word is still read. An unterminated quote or
// block comment, or a stream of open_command_file that goes past its bound,
// is reported on stderr and ends the process with status -1; a read error is
// reported and ends it with status 1.
char* fnextopt(FILE* stream);
