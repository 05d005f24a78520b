#pragma once
// Named handlers that any option table may refer to. Each runs after its
// option has been stored; rest is what followed the spelling in the token.
class option_engine;

// The number stored must be above 0 and a power of two; otherwise an error
// names the option in its exported form.
void action_align_for_speed(option_engine& options, int id, const char* rest);

// The word "int" is not supported: a remark, and the value becomes "unpacked".
void action_enum_type_int(option_engine& options, int id, const char* rest);

// Every further "v" of the token repeats what the option sets as well; what
// follows the last one is ignored with a warning.
void action_verbose_template(option_engine& options, int id, const char* rest);
