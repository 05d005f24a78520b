#pragma once
// The build's settings as the advice rules and the benchmark runs read them,
// from the compiler-shell options of the command file.

// The optimisation level: 0 to 4, or -1 for no optimisation.
int opt_level();

// The code size against speed goal: 0 (smallest code) to 5 (fastest), or -1.
int size_speed_goal();
