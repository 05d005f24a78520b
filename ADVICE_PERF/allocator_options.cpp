// The tool builds and frees millions of small tree nodes when it reads a
// large link file; mimalloc, linked into the program, serves malloc and
// operator new for the whole process. Its options are fixed here, before
// main, so that neither its speed nor its output depends on the environment:
// the library's defaults, measured best here. Large OS pages were erratic
// (from twice as fast to half as fast as small ones) and took more memory.
#include <mimalloc.h>

namespace {

struct ALLOCATOR_OPTIONS {
  ALLOCATOR_OPTIONS() {
    const struct {
      mi_option_t option;
      long value;
    } options[] = {
        {mi_option_show_errors, 0},
        {mi_option_show_stats, 0},
        {mi_option_verbose, 0},
        {mi_option_eager_commit, 1},
        {mi_option_large_os_pages, 0},
        {mi_option_page_reset, 0},
        {mi_option_abandoned_page_decommit, 0},
        {mi_option_eager_commit_delay, 1},
        {mi_option_decommit_delay, 25},
        {mi_option_limit_os_alloc, 0},
        {mi_option_allow_decommit, 1},
        {mi_option_destroy_on_exit, 0},
    };
    for (const auto& [option, value] : options)
      mi_option_set(option, value);
  }
} allocator_options;

}  // namespace
