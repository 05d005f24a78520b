#pragma once
// What advzorv would pass over in silence when it records a build: link
// information that gives no bar.

#include <ctime>
#include <optional>
#include <string>

#include <sys/types.h>

// What tells one writing of a file from another.
struct FILE_STAMP {
  dev_t device;
  ino_t inode;
  off_t size;
  timespec modified;
};

// The stamp of the file at path now; nothing when there is no such file.
std::optional<FILE_STAMP> file_stamp(const std::string& path);

// Why advzorv would add no bar for the link file after the build at setting
// ("--opt_for_speed=3"): the file is missing, unchanged since before the
// build (stamp before), not well-formed link information, linked before the
// results document's time stamp, or gives a code size of 0. (A file that the
// build left alone can bear the document's second, which the tool takes for
// a new link: only its stamp shows it is old.) The reason is a whole sentence that names the file,
// the setting and the cause; nothing when a bar would be added. Both files are read with advzorv's
// own classes and never written.
std::optional<std::string> missing_bar_reason(const std::string& link_file,
                                              const std::optional<FILE_STAMP>& before,
                                              const std::string& results_file,
                                              const std::string& setting);
