#pragma once
// The tokenizer of command files: words separated by white space, with double
// quotes, backslash escapes, "/* */" block comments and ";" or "#" line comments.
#include <cstdio>

#include <cstddef>

// The longest word a command file may hold, in bytes; it bounds what an endless
// input such as /dev/zero costs.
constexpr size_t cmdfile_max_word = size_t{1} << 20;

// The next word of stream as a new heap string (the caller frees it with free), or
// null at the end of the stream or for a null stream. An unterminated quote or
// block comment, or a word longer than cmdfile_max_word, is reported on stderr
// and ends the process with status -1.
char* fnextopt(FILE* stream);
