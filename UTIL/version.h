#pragma once
// The tool's identity and the texts composed from it. Each composed text is
// built on first use and the same pointer is returned for the life of the process.
#include <cstdio>

// Constants.
const char* tool_name();
const char* isa_name_full();
const char* isa_name_prefix();
const char* isa_name_prefix_secondary();  // null: this tool has none
const char* copyright_date();
int version_major();
int version_minor();
int version_patch();
int version_has_fourth_digit();
int version_fourth();
const char* version_qual();
const char* version_qual_letter();
const char* version_datecode();

// Composed texts.
const char* version_number();  // "25.11.0"
const char* version_short();   // "v25.11.0"
const char* version_full();    // "v25.11.0.LTS"
const char* isa_and_tool_name();
const char* isa_tool_and_version_short();
const char* isa_tool_and_version_full();
const char* os_and_version_short();  // "Unix v25.11.0"
const char* os_and_version_full();   // "Unix v25.11.0.LTS"
const char* copyright_full();

// The ISA and tool name cut or padded to 40 columns, then the full version.
void print_tool_and_version(FILE* stream);
// print_tool_and_version, then the copyright line.
void print_banner(FILE* stream);
// print_tool_and_version, then the build identification line.
void print_toolversion(FILE* stream);

// One line identifying this build, behind label (if not null), on stream
// (stdout if null).
void buildid(FILE* stream, const char* label);
