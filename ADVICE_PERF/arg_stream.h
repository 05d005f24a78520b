#pragma once
// The single stream of tokens: argv first, interrupted by the command file
// while one is open.

#include <cstdio>

// The open command file, null when none is open. While it is open, tokens
// come from it and belong to the build's shell options.
extern FILE* cmd_file;

// The next token of the stream, or null at its end. A token read from the
// command file stays valid only until the next call.
const char* next_arg();

// Opens the command file; on failure reports it and exits with status 1.
void open_cmd_file(const char* path);
