// Finding files by pattern, one after the other.
//
//   ZoFindFile find;
//   find.setKinds(ZoFindFile::kind(ZoFileName::kDwg) | ZoFindFile::kind(ZoFileName::kDxf));
//   if (find.open(L"C:\\parts\\*", true) == 0) {
//     while (find.next()) use(find.name());
//   }
//   if (find.result()) report();
//
// The pattern is the file name and extension of a name, with * and ?; an empty one stands for "*".
// It fits names ignoring case; "*.*" fits every name, a final ".*" also a name without extension,
// and a final "." only such a name. With subfolders, the pattern is for what is found in each of
// them; every folder is entered right after its own turn, but for links to folders, which could
// lead in circles. The order within a folder is the file system's.
//
// An FTP name (zo/system/file_system.h) finds on its server, with what that tells of a file: names
// and kinds of entries, and sizes and times as far as it does. A server can call its files
// anything: ask isContained() of the part below the folder before it decides where to write.
//
// Errors:  open answers 0, 1 when the folder cannot be read or the server does not answer, 3 for
//          any other URL. A folder below that cannot be read is left out, and result() is 1 in the
//          end; the reason of the last one is to be had from the file-system service's errorTxt().
//          Nothing throws but std::bad_alloc.
// Threads: one per object.
// Cost:    one open search per level of folders, no list of names; for a server one connection, and
//          a list per level. name() is made when it is asked for.
#pragma once

#include <zo/files/file.h>

#include <cstdint>
#include <string_view>

template <class T>
class ZoSequence;

class ZO_COM_API ZoFindFile {
 public:
  static constexpr unsigned int kDirectory = 0x10;  // the platform's attribute
  [[nodiscard]] static constexpr unsigned int kind(ZoFileName::FileKind kind) noexcept {
    return 1U << kind;
  }

  ZoFindFile();
  ZoFindFile(const ZoFindFile&) = delete;
  ZoFindFile& operator=(const ZoFindFile&) = delete;
  ~ZoFindFile();

  // ---- What is wanted; until it is set anew ----
  // Only entries with all of the one and none of the other attributes. At first: no directories.
  void setAttributes(unsigned int required, unsigned int excluded = 0) noexcept;
  // Only files of these kinds, a sum of kind(...); 0, as at first, for all.
  void setKinds(unsigned int kinds) noexcept;
  void setKinds(ZoFileName::FileKind) = delete;  // a sum: ZoFindFile::kind(...) | ...

  // ---- The search ----
  // Begins, in the folder of the pattern's name or else the current one.
  [[nodiscard]] int open(const ZoFileName& pattern, bool subfolders = false);
  template <zo::NotAFlag T>
  int open(const ZoFileName& pattern, const T& subfolders) = delete;  // one pattern: folder\\*.ext
  // Goes to the next entry; false when there is none.
  [[nodiscard]] bool next();
  // Ends the search before its end.
  void close() noexcept;
  [[nodiscard]] int result() const noexcept;
  // All at once, behind what `names` holds; what result() would be, or 2 without memory.
  [[nodiscard]] int findAll(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                            bool subfolders = false);
  template <zo::NotAFlag T>
  int findAll(const ZoFileName&, ZoSequence<ZoFileName>&, const T& subfolders) = delete;  // a bool

  // ---- The entry; only after next() gave true, and until it is called again ----
  [[nodiscard]] const ZoFileName& name();        // with the folder, as the pattern has it
  [[nodiscard]] std::wstring_view path() const;  // the same as a text
  [[nodiscard]] std::wstring_view fileNameExt() const noexcept;
  [[nodiscard]] unsigned int attributes() const noexcept;  // the platform's bits
  [[nodiscard]] bool isDirectory() const noexcept { return (attributes() & kDirectory) != 0; }
  [[nodiscard]] std::int64_t size() const noexcept;
  [[nodiscard]] FILETIME creationTime() const noexcept;
  [[nodiscard]] FILETIME lastAccessTime() const noexcept;
  [[nodiscard]] FILETIME lastWriteTime() const noexcept;

 private:
  struct Imp;
  Imp* imp_;
};
