; Compiler-shell options of the demo build, as the IDE hands them over.
--opt_level=2 --opt_for_speed=3
-g
--run_linker --output_file=demo.out --map_file=demo.map
