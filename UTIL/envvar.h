#pragma once
// Carried for the toolchain's other tools; no step of an advzorv run calls it.
// Environment variables that may carry the ISA prefix: for a name N the variables
// "<prefix>_N" (primary, then secondary prefix) and N are tried in that order.
#include <functional>

// A copy of the first existing variable's value (even if empty), or null; the
// caller frees it with delete[]. If found and used_name is not null, *used_name
// receives a copy (delete[]) of the variable's name; otherwise it is left alone.
char* tool_getenv(const char* name, char** used_name);

// Calls action on each entry of the ";"-separated list in the variable, with
// surrounding white space cut and empty entries left out. The text lives until
// action returns.
void extract_paths(const char* name, std::function<void(const char*)> action);

// 1 if the variable holds a single trimmed value with white space inside, no ";",
// and no file of that whole name exists: likely paths separated by blanks instead
// of ";". Then *used_name and *value receive copies (delete[]) of the variable's
// name and trimmed value. Otherwise 0, with both set to null.
int gen_envvar_warning(const char* name, char** used_name, char** value);
