#pragma once
// Replacing a document on disk so that a crash, a signal, a full disk or a
// file-size limit never leaves it cut short: the new text goes to a new file
// beside the old one, is flushed to the disk and then renamed over the old one.

#include <string>
#include <string_view>

// What becomes of the old file when a document is replaced.
enum class old_document {
  dropped,  // it was read whole, or there was none
  kept,     // it could not be used: it stays beside the new one
};

// Replaces the file at path with text.
// - A path naming a device, FIFO or socket is written to as a stream and
//   never replaced; a FIFO is written only while it has a reader.
// - A symbolic link at path stays and its target is replaced; a loop of
//   links can't be opened.
// - The new file, ".NAME.advzorv-new.PID" beside the old one (NAME shortened
//   where the name would be too long), keeps the old one's permission bits.
//   Every blockable signal waits from its creation to the rename. New files
//   that runs now gone left behind are removed first.
// - With old kept, the old file stays as ".NAME.advzorv-unreadable", by a
//   hard link (or, where none can be made, by a rename) taken before the new
//   file takes its name; an earlier one of that name goes.
// - A file that isn't writable is not replaced. When the directory takes no
//   new file but the file itself is writable, the file is rewritten in place,
//   every blockable signal held back, only once its old content was read
//   whole, and never when old is kept, which would have nowhere to go.
// On any failure the old file stays as it was, no new file remains, and
// xml_parser_error names path: "cannot open file" when nothing could be
// opened for writing, "write error" otherwise (no room for the new file too).
void replace_file(const std::string& path, std::string_view text,
                  old_document old = old_document::dropped);

// The directory part of path: "." for a bare name, "/" for a name in the root.
std::string directory_of(const std::string& path);

// The file a chain of symbolic links at path ends at (path itself when it is
// no link); for a dangling link, the name its target would have; for a loop,
// a link of the loop.
std::string link_target(std::string path);
