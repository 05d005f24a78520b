#pragma once
// Allocation that never returns null: on failure the process reports
// "ERROR: out of memory" and exits with status 1. Memory is released with free.
#include <cstddef>

void* safemalloc(size_t size);
// A null pointer makes it safemalloc.
void* saferealloc(void* ptr, size_t size);
void* safecalloc(size_t count, size_t size);

// A copy of a terminated text in memory from safemalloc.
char* safestrdup(const char* text);
