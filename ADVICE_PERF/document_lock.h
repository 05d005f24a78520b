#pragma once
// Advisory locks that keep runs sharing a document from interleaving their
// reads and writes. The lock is taken on the directory that holds a document
// (the target's directory, for a symbolic link), not on the document: a
// document is replaced by rename, and a lock on the old file would no longer
// guard what the name holds, while the directory stays. No lock file is made.
// The kernel drops the locks when the process ends, however it ends.

#include <chrono>
#include <string>
#include <vector>

enum class lock_mode { shared, exclusive };

class DOCUMENT_LOCKS {
 public:
  // Locks the directories of documents, each once, in the order of their
  // device and inode numbers, so runs that name the same documents in any
  // order or role can't deadlock. Waits up to patience for each lock; if one
  // stays held elsewhere, releases the others and busy_directory names it. A
  // directory that can't be opened is skipped: writing there fails anyway.
  DOCUMENT_LOCKS(const std::vector<std::string>& documents, lock_mode mode,
                 std::chrono::milliseconds patience);
  ~DOCUMENT_LOCKS();
  DOCUMENT_LOCKS(const DOCUMENT_LOCKS&) = delete;
  DOCUMENT_LOCKS& operator=(const DOCUMENT_LOCKS&) = delete;

  // Empty while every lock is held; else the directory that stayed locked.
  const std::string& busy_directory() const { return busy; }

 private:
  void release();

  std::vector<int> held;  // open descriptors of the locked directories
  std::string busy;
};
