// Members that are packed before a library is asked for: on any thread, on as many as there are
// processors. The library they are added to has the same bytes as with ZoLibrary::addFile.
//
//   ZoPacker packer;  // one for each thread
//   ZoPackedMember packed;
//   if (const int code = packer.pack(L"C:\\parts\\bolt.dwg", packed)) return code;
//   ...
//   return library.addFile(packed, L"bolts/m8.dwg");  // where the library is written
//
// Errors:  0, or 1: what was to be read or kept could not be, or the call was cancelled; the
//          packed member is then empty. Nothing throws but std::bad_alloc, whatever a stream was
//          asked to throw.
// Memory   that is to be packed is taken for as large as it is said to be. Refused is only what
//          cannot be true: null with a size, and a size that ends behind all memory of programs, as
//          that of a negative number does.
// Threads: an object is for one thread at a time; none takes the lock of the libraries. No thread
//          is started.
// Cost:    a packed member has up to 8 MiB of memory; what it holds beyond that is in a temporary
//          file, which goes with it. While a packer packs, it has the memory that memoryFor tells;
//          between, at most 64 MiB of it.
#pragma once

#include <zo/files/file.h>
#include <zo/files/file_time.h>
#include <zo/library/library.h>
#include <zo/text/not_negative.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <type_traits>

namespace zo {
class MemberSource;
class PackedContent;
class PackerCore;
}  // namespace zo

class ZO_COM_API ZoPackedMember {
 public:
  ZoPackedMember() noexcept;
  ZoPackedMember(ZoPackedMember&& other) noexcept;  // the other one is empty then
  ZoPackedMember& operator=(ZoPackedMember&& other) noexcept;
  ~ZoPackedMember();

  [[nodiscard]] bool isEmpty() const noexcept { return !content_; }
  [[nodiscard]] std::uint64_t size() const noexcept;  // of the member itself
  [[nodiscard]] std::uint64_t storedSize() const noexcept;
  [[nodiscard]] bool isCompressed() const noexcept;

  // The times that it is added with: those of the file that was packed; for anything else when that
  // was done.
  [[nodiscard]] ZoFileTime created() const noexcept;
  [[nodiscard]] ZoFileTime accessed() const noexcept;
  [[nodiscard]] ZoFileTime written() const noexcept;
  // Nothing when it is empty.
  void setTimes(ZoFileTime created, ZoFileTime accessed, ZoFileTime written) noexcept;

 private:
  friend class ZoPacker;
  friend class ZoLibrary;

  std::unique_ptr<zo::PackedContent> content_;
};

class ZO_COM_API ZoPacker {
 public:
  ZoPacker();
  ZoPacker(const ZoPacker&) = delete;
  ZoPacker& operator=(const ZoPacker&) = delete;
  ~ZoPacker();

  // Packs a file; what is left of a file object or of a stream in binary mode, from its position
  // on; bytes in memory. A stream keeps its exceptions() and has the state of one that was read to
  // its end, or failed. `mode` and `level` as in ZoLibrary::addFile. What `packed` held is dropped.
  [[nodiscard]] int pack(const ZoFileName& source, ZoPackedMember& packed,
                         ZoLibrary::compMode mode = ZoLibrary::kCompress,
                         int level = ZoLibrary::kNormal);
  [[nodiscard]] int pack(ZoFile& source, ZoPackedMember& packed,
                         ZoLibrary::compMode mode = ZoLibrary::kCompress,
                         int level = ZoLibrary::kNormal);
  [[nodiscard]] int pack(std::istream& source, ZoPackedMember& packed,
                         ZoLibrary::compMode mode = ZoLibrary::kCompress,
                         int level = ZoLibrary::kNormal);
  [[nodiscard]] int pack(const void* bytes, std::size_t size, ZoPackedMember& packed,
                         ZoLibrary::compMode mode = ZoLibrary::kCompress,
                         int level = ZoLibrary::kNormal);
  int pack(std::nullptr_t, ZoPackedMember&, ZoLibrary::compMode = ZoLibrary::kCompress,
           int = ZoLibrary::kNormal) = delete;  // a source
  template <class Size, class Level = int>
    requires(!zo::PlainInteger<Size> || !std::same_as<Level, int>)
  int pack(const void*, Size, ZoPackedMember&, ZoLibrary::compMode = ZoLibrary::kCompress,
           Level = 0) = delete;  // the number of bytes; at the end the int level
  template <class Source, class Mode, class Level = int>
    requires(!std::same_as<Mode, ZoLibrary::compMode> || !std::same_as<Level, int>)
  int pack(Source&&, ZoPackedMember&, Mode,
           Level = 0) = delete;  // the compMode, then the int level

  // As ZoLibrary::onProgress, called on the thread that packs.
  void onProgress(ZoLibrary::Watcher watcher);
  [[nodiscard]] bool wasCancelled() const noexcept;  // the last call

  // No more memory than this is used to pack a member of a size: 12 bytes for each byte of it up to
  // 64 KiB (kFast), 32 MiB (kNormal) or 256 MiB (kBest), and 12 MiB.
  [[nodiscard]] static std::uint64_t memoryFor(std::uint64_t size,
                                               int level = ZoLibrary::kNormal) noexcept;
  template <class Size, class Level = int>
    requires(!zo::PlainInteger<Size> || !std::same_as<Level, int>)
  static std::uint64_t memoryFor(Size,
                                 Level = 0) = delete;  // the number of bytes, then the int level

 private:
  int packFrom(zo::MemberSource& source, ZoPackedMember& packed, ZoLibrary::compMode mode,
               int level);

  std::unique_ptr<zo::PackerCore> core_;
};
