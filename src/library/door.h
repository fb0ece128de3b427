// The door of a library: it opens and closes the file, and every operation on it, public or of a
// member that is open as a file, goes through run().
//
// Errors:  the codes of zo/library/library.h. Memory that runs out passes through as
//          std::bad_alloc, but for close(), which closes and answers 1.
// Threads: any.
#pragma once

#include <initializer_list>
#include <memory>

#include "library/files_lock.h"
#include "library/state.h"

namespace zo {

// What an operation does with a library, and so asks of it.
enum class Access {
  kKnow,   // only what is known: it may be closed
  kRead,   // it is open
  kWrite,  // it is open for writing
};

class LibraryDoor {
 public:
  // Waits for the write lock without keeping anybody else from libraries.
  int open(const ZoFileName& name, int access, ZoFile::CreationMode mode, unsigned int timeOut);
  // Commits a batch that is open.
  int close();
  // Closes, and drops a batch.
  void abandon();

 private:
  template <class Operation, class... Arguments>
  friend int run(const std::shared_ptr<LibraryDoor>& door, Access access,
                 std::initializer_list<const ZoFileName*> members, const Operation& operation,
                 const Arguments&... arguments);

  struct Opening;
  struct ReleaseUnless;

  [[nodiscard]] int mayRun(Access access, std::initializer_list<const ZoFileName*> members) const;
  int openOnce(Opening& opening);
  int openFile(Opening& opening);

  LibraryState library_;
};

// Runs operation(LibraryState&, arguments...), which answers a code, under the process-wide lock.
// Refused with 1 when the library is not open (or was moved from), with 3 when one of the members'
// names is a URL, with 1004 when it is not open for writing, as far as the access asks for it.
template <class Operation, class... Arguments>
int run(const std::shared_ptr<LibraryDoor>& door, Access access,
        std::initializer_list<const ZoFileName*> members, const Operation& operation,
        const Arguments&... arguments) {
  const FilesLock lock;
  const int refused = door ? door->mayRun(access, members) : ZoResult::refused;
  if (refused) return refused;
  return operation(door->library_, arguments...);
}

}  // namespace zo
