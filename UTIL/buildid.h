#pragma once
// The encoding behind buildid(), open for callers that supply their own stamp.
#include <cstdio>

// The compiler's date ("Nov 17 2025") and time ("12:09:29") of this library's
// build, and the name of the branch it was built from.
const char* build_date();
const char* build_time();
const char* build_branch();

// Writes the build identification line for the given stamps and branch name.
void write_buildid(FILE* stream, const char* label, const char* date, const char* time,
                   const char* branch);
