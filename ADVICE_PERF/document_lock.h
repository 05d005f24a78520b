#pragma once
// Advisory locks that keep runs sharing a document from interleaving their
// reads and writes. The lock is taken on the directory that holds a document
// (the target's directory, for a symbolic link), not on the document: a
// document is replaced by rename, and a lock on the old file would no longer
// guard what the name holds, while the directory stays. No lock file is made.
// Where a directory can't be locked (it can't be opened for reading, or its
// file system has no flock), its documents are locked themselves, by open
// file description locks (fcntl), each taken again on the new file when a run
// replaced it meanwhile; a document not there yet is made, empty, to be
// locked, and removed again if it is still empty at the release.
// A run waiting for a lock sleeps until it is released. The kernel drops the
// locks when the process ends, however it ends.

#include <chrono>
#include <string>
#include <vector>

enum class lock_mode { shared, exclusive };

class DOCUMENT_LOCKS {
 public:
  // Locks the directories of documents, each once, in the order of their
  // device and inode numbers (a directory's documents, where they are locked
  // instead, in the order of their names), so runs that name the same
  // documents in any order or role can't deadlock. Waits up to patience for
  // each lock; if one stays held elsewhere, releases the others and
  // busy_directory names its directory. A directory that can't be found, or
  // a document that can't be opened where the directory can't be locked, is
  // skipped: writing there fails anyway.
  DOCUMENT_LOCKS(const std::vector<std::string>& documents, lock_mode mode,
                 std::chrono::milliseconds patience);
  ~DOCUMENT_LOCKS();
  DOCUMENT_LOCKS(const DOCUMENT_LOCKS&) = delete;
  DOCUMENT_LOCKS& operator=(const DOCUMENT_LOCKS&) = delete;

  // Empty while every lock is held; else the directory that stayed locked.
  const std::string& busy_directory() const { return busy; }

 private:
  struct HELD {
    int fd;                // an open descriptor of what is locked
    std::string made;      // the path of a document made to be locked, else empty
  };
  enum class OUTCOME { held, busy, unsupported };

  OUTCOME lock_directory(const std::string& name, int operation,
                         std::chrono::steady_clock::time_point deadline);
  OUTCOME lock_document(const std::string& path, lock_mode mode,
                        std::chrono::steady_clock::time_point deadline);
  bool already_held(int fd) const;
  void release();

  std::vector<HELD> held;
  std::string busy;
};
