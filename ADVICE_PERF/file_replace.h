#pragma once
// Replacing a document on disk so that a crash, a signal, a full disk or a
// file-size limit never leaves it cut short: the new text goes to a new file
// beside the old one, is flushed to the disk and then renamed over the old one.

#include <string>
#include <string_view>

// Replaces the file at path with text. A symbolic link at path stays and its
// target is replaced; the new file keeps the old one's permission bits, and a file that isn't
// writable is not replaced. When
// the directory takes no new file but the file itself is writable, the file
// is rewritten in place, its old content restored if that write fails. On any
// failure the old file stays as it was, no new file remains, and
// xml_parser_error names path: "cannot open file" when nothing could be
// opened for writing, "write error" otherwise.
void replace_file(const std::string& path, std::string_view text);

// Removes the new file of a replacement under way, if any. Async-signal-safe:
// for the handlers of terminating signals.
void discard_unfinished_replacement();

// The directory part of path: "." for a bare name, "/" for a name in the root.
std::string directory_of(const std::string& path);

// The file a chain of symbolic links at path ends at (path itself when it is
// no link); for a dangling link, the name its target would have.
std::string link_target(std::string path);
