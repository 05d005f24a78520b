.*\nUsage: advzorv \[-options\] filename\n.*  -O,--opt_level\[=off,0,1,2,3,4\].*
