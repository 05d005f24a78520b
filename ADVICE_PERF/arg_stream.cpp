#include "ADVICE_PERF/arg_stream.h"

#include "UTIL/cmdfile.h"

#include <cstdlib>

FILE* cmd_file = nullptr;

namespace {
char* cmd_token = nullptr;
int arg_index = 1;
int stream_argc = 0;
char** stream_argv = nullptr;
}

void start_arg_stream(int argc, char** argv)
{
    stream_argc = argc;
    stream_argv = argv;
    arg_index = 1;
}

const char* next_arg()
{
    std::free(cmd_token);
    cmd_token = nullptr;
    if (cmd_file) {
        cmd_token = fnextopt(cmd_file);
        if (cmd_token)
            return cmd_token;
        std::fclose(cmd_file);
        cmd_file = nullptr;
    }
    if (arg_index < stream_argc)
        return stream_argv[arg_index++];
    return nullptr;
}

void open_cmd_file(const char* path)
{
    cmd_file = std::fopen(path, "r");
    if (!cmd_file) {
        std::fprintf(stderr, "Cannot open command file %s\n", path);
        std::exit(1);
    }
}
