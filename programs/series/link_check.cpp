#include "programs/series/link_check.h"

#include "ADVICE_PERF/link_data.h"
#include "ADVICE_PERF/perf_results.h"

#include <exception>
#include <memory>

#include <sys/stat.h>

namespace {

bool same(const FILE_STAMP& a, const FILE_STAMP& b) {
  return a.device == b.device && a.inode == b.inode && a.size == b.size &&
         a.modified.tv_sec == b.modified.tv_sec && a.modified.tv_nsec == b.modified.tv_nsec;
}

}  // namespace

std::optional<FILE_STAMP> file_stamp(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FILE_STAMP{status.st_dev, status.st_ino, status.st_size, status.st_mtim};
}

std::optional<std::string> missing_bar_reason(const std::string& link_file,
                                              const std::optional<FILE_STAMP>& before,
                                              const std::string& results_file,
                                              const std::string& setting) {
  const std::optional<FILE_STAMP> now = file_stamp(link_file);
  if (!now) return link_file + " was not written by the build at " + setting + ": no bar";
  if (before && same(*before, *now))
    return link_file + " was not rewritten by the build at " + setting +
           " (it is unchanged since before the build): no bar";
  std::unique_ptr<LINK_DATA> link;
  try {
    link = std::make_unique<LINK_DATA>(link_file.c_str());
  } catch (const std::exception& e) {
    return link_file + " from the build at " + setting + " lacks a part of link information (" +
           e.what() + "): no bar";
  }
  // The reader takes a file without a link_info document for an empty one,
  // which has no version.
  if (link->get_file_version() < 0)
    return link_file + " from the build at " + setting +
           " is not well-formed link information: no bar";
  const uint64_t document_time = PERF_RESULTS(results_file.c_str()).get_timestamp();
  if (link->get_link_time() < document_time)
    return link_file + " was not rewritten by the build at " + setting + " (link time " +
           convert<std::string>(link->get_link_time()) + " is older than the results document's " +
           convert<std::string>(document_time) + "): no bar";
  if (link->get_code_size() == 0)
    return link_file + " from the build at " + setting + " gives a code size of 0: no bar";
  return std::nullopt;
}
