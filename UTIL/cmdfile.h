#pragma once
// The tokenizer of command files: words separated by white space, with double
// quotes, backslash escapes, "/* */" block comments and ";" or "#" line comments.
#include <cstdio>

// The next word of stream as a new heap string (the caller frees it with free), or
// null at the end of the stream or for a null stream. An unterminated quote or
// block comment is reported on stderr and ends the process with status -1.
char* fnextopt(FILE* stream);
