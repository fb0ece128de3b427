// One member of a library as an open file: what ZoLibrary::getFile puts into a ZoFile.
//
//   ZoFile file;
//   if (const int code = library.getFile(file, L"bolts/m8.dwg")) return code;
//   file.read(buffer, sizeof buffer);
//
// Reading  a stored member happens in place: nothing is read before it is asked for, and no check
//          value is looked at. A compressed one is decompressed when it is opened, up to 64 MiB
//          into memory and else into a temporary file, and then reads and seeks alike. Nothing can
//          be read past the member's end.
// Times    are the member's. Setting one writes its entry anew, in a library that is open for
//          writing (1004 otherwise).
// Writing  goes into a temporary file, which close() adds to the library in the place of what has
//          the name: its result is that of addFile. Only close() adds: what is cancelled, or
//          destroyed without it (by an exception, an early return), is dropped.
// Library  When it is closed its members answer like closed files, and what was written to them and
//          not closed is dropped. So does one that is removed while it is open to be read: deleted
//          physically, or left out by reorganize, on this thread or another. From then on read
//          gives 0 as at the end, but a failure has a reason, which an end has not:
//
//            SetLastError(0);
//            const unsigned int got = file.read(buffer, sizeof buffer);
//            if (got == 0 && GetLastError() != 0) return failed();
//
//          isOpen() is false and size() -1. A member that stays is read on wherever it moves.
//
// Errors:  those of zo/files/file.h, and of zo/library/library.h where an entry or member is
//          written.
// Copies:  of a ZoFile share position and member; it is added when the last one is closed, and
//          dropped when the last one is destroyed instead, or any of them is cancelled. A copy for
//          another access can only read, on its own, and only a member that is read.
// Threads: any: reads and writes take the lock of all libraries.
#pragma once

#include <zo/files/file_imp.h>

#include <memory>

namespace zo {
class LibraryMember;
}

class ZO_COM_API ZoLibFile : public ZoFileImp {
 public:
  explicit ZoLibFile(std::shared_ptr<zo::LibraryMember> member);  // by ZoLibrary
  ZoLibFile(const ZoLibFile& other);
  ZoLibFile& operator=(const ZoLibFile&) = delete;
  ~ZoLibFile() override;

  [[nodiscard]] ZoFileImp* clone() const override;
  [[nodiscard]] ZoFileImp* cloneFor(unsigned int access) const override;

  [[nodiscard]] bool isOpen() const noexcept override;
  [[nodiscard]] int close() override;
  [[nodiscard]] unsigned int read(void* buffer, unsigned int count) override;
  [[nodiscard]] unsigned int write(const void* data, unsigned int count) override;
  [[nodiscard]] std::int64_t seek(std::int64_t offset, ZoFile::MoveMethod method) override;
  [[nodiscard]] std::int64_t size() override;
  [[nodiscard]] int setEndOfFile() override;
  [[nodiscard]] int flush() override;

  [[nodiscard]] unsigned int attributes() override;
  [[nodiscard]] FILETIME creationTime() override;
  [[nodiscard]] FILETIME lastAccessTime() override;
  [[nodiscard]] FILETIME lastWriteTime() override;
  [[nodiscard]] int setCreationTime(FILETIME time) override;
  [[nodiscard]] int setLastAccessTime(FILETIME time) override;
  [[nodiscard]] int setLastWriteTime(FILETIME time) override;

  // A copy of the member in a temporary file that goes with the stream; for reading only.
  [[nodiscard]] std::FILE* getCFileHandle(bool text, bool writable) override;
  [[nodiscard]] std::FILE* getCFileHandle(const wchar_t* mode) override;
  void cancel() override;
  [[nodiscard]] bool opensFiles() const noexcept override;  // false: it is for its member alone

 private:
  std::shared_ptr<zo::LibraryMember> member_;  // null when closed
};
