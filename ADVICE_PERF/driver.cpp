#include "ADVICE_PERF/driver.h"

#include <cstdio>
#include <cstdlib>

void print_usage(const char* program_name)
{
    std::printf("Usage: %s --advice_file=path_to/advice.xml\n"
                "           --benchmarks_file=path_to/perf_results.xml \n"
                "           --linker_options_file=options \n"
                "           --xml_link_info=path_to/xml_link_info.xml     \n"
                "           [ --benchmark:event=start/append/end   \n"
                "             --benchmark:option=option_being_varied  \n"
                "             --benchmark:option_value=value_option_being_varied ]\n\n",
                program_name);
    std::printf("This tool is designed to be invoked by Lumora IDE to help populate Lumora views.\n");
    std::exit(1);
}

int advzorv_main(int argc, char** argv)
{
    if (argc <= 1)
        print_usage(argv[0]);
    return 0;
}
