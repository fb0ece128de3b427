// The file object: one open file, whatever it is made of.
//
//   ZoFile file;
//   if (file.open(name, ZoFile::kRead)) return report(ZoSystem::fileSystem().errorTxt());
//   const unsigned int got = file.read(buffer, sizeof buffer);
//
// A ZoFile owns an implementation object (zo/files/file_imp.h) and passes everything on to it. As
// it comes, that is a file of the operating system; setImpObj puts any other in its place. Sizes
// and positions have 64 bits everywhere.
//
// Errors:  int results are 0, or 1 after a failure, whose reason is then to be had from the
//          file-system service's errorTxt(); using an object without an open file is one, too.
//          read and write return the bytes that were moved, which may be fewer than asked for: at
//          the end of the file, or when the platform moved fewer. A failure moves 0, and what a
//          read was to fill is undefined then; the end of the file moves 0, too, and has no reason.
//          Nothing throws but std::bad_alloc.
// Copies:  a copy of an open file is a second handle on the same opening: both share position,
//          locks and modes, and the file is closed when both are. A copy with another access mode
//          is an opening of its own, with a position of its own at the start. A copy that fails has
//          no file. A moved-from object has none either; it can be opened again.
// Threads: read, write, seek, setEndOfFile and the setters of times exclude each other within one
//          object; all else is for one thread at a time. No service needs to be there.
// Cost:    one call of the platform each: small pieces are better read and written through a
//          buffer.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/platform_types.h>

#include <cstdint>
#include <cstdio>
#include <type_traits>
#include <utility>

class ZoFileImp;

class ZO_COM_API ZoFile {
 public:
  // What becomes of a file that exists or does not. The platform's numbers.
  enum CreationMode : unsigned int {
    kCreateNew = 1,         // refused if it exists
    kCreateAlways = 2,      // emptied if it exists
    kOpenExisting = 3,      // refused if it does not exist
    kOpenAlways = 4,        // made if it does not exist
    kTruncateExisting = 5,  // emptied; refused if it does not exist
  };
  // What an offset counts from. The platform's numbers.
  enum MoveMethod : unsigned int { kBegin = 0, kCurrent = 1, kEnd = 2 };

  // What open takes besides: the platform's bits, any others of which may be given as an int. Each
  // kind joins with its own by |, and with no other.
  enum Access : int {
    kRead = static_cast<int>(0x80000000U),
    kWrite = 0x40000000,
    kReadWrite = kRead | kWrite,
  };
  enum Share : int { kShareNone = 0, kShareRead = 1, kShareWrite = 2, kShareDelete = 4 };
  enum Flag : int {
    kTemporary = 0x100,          // kept in memory as far as possible
    kDeleteOnClose = 0x4000000,  // goes with its last handle
    kSequential = 0x8000000,     // will be read from begin to end
    kRandomAccess = 0x10000000,
    kWriteThrough = static_cast<int>(0x80000000U),
  };
  friend constexpr Access operator|(Access a, Access b) noexcept {
    return static_cast<Access>(static_cast<int>(a) | static_cast<int>(b));
  }
  friend constexpr Access& operator|=(Access& a, Access b) noexcept { return a = a | b; }
  friend constexpr Share operator|(Share a, Share b) noexcept {
    return static_cast<Share>(static_cast<int>(a) | static_cast<int>(b));
  }
  friend constexpr Flag operator|(Flag a, Flag b) noexcept {
    return static_cast<Flag>(static_cast<int>(a) | static_cast<int>(b));
  }

  // Whether an argument may stand for one of a kind: a number, or of that kind itself.
  template <class T, class Kind>
  static constexpr bool kMayBe =
      std::is_same_v<T, Kind> || (std::is_integral_v<T> && !std::is_same_v<T, bool>);

 private:
  template <class A, class M, class S, class F>
  static constexpr bool kMixedUp = !(kMayBe<A, Access> && std::is_same_v<M, CreationMode> &&
                                     kMayBe<S, Share> && kMayBe<F, Flag>);

 public:
  ZoFile();
  explicit ZoFile(void* handle);    // takes an open handle of the platform over
  explicit ZoFile(ZoFileImp* imp);  // takes an implementation over
  template <class T>
    requires(!std::is_convertible_v<T*, ZoFileImp*>)
  explicit ZoFile(T* other) = delete;  // neither a handle nor an implementation: open(name) opens
  ZoFile(const ZoFile& other);
  ZoFile(const ZoFile& other, unsigned int access);
  template <class T>
    requires(!kMayBe<T, Access>)
  ZoFile(const ZoFile& other, T access) = delete;  // an access, such as ZoFile::kRead
  ZoFile(ZoFile&& other) noexcept : imp_(std::exchange(other.imp_, nullptr)) {}
  ~ZoFile();  // closes a plain file, and cancels what close() would make effective
  ZoFile& operator=(const ZoFile& other);
  ZoFile& operator=(ZoFile&& other) noexcept {
    ZoFile(std::move(other)).swap(*this);
    return *this;
  }
  void swap(ZoFile& other) noexcept { std::swap(imp_, other.imp_); }

  // The implementation, made if there is none; it stays this object's.
  [[nodiscard]] ZoFileImp* getImpObj();
  // Takes an implementation over and destroys the one before; null leaves an object without file.
  // Returns 0.
  int setImpObj(ZoFileImp* imp);

  // ---- Opening and closing ----
  // Opens a file, after closing the one that is open (a member of a library: after giving it up). A
  // URL with a local alias opens the alias. A file opened for reading and writing gets the flag
  // kRandomAccess, unless kSequential is given.
  // LIBRARY|MEMBER (zo/names/member_name.h) opens a member (zo/library/lib_file.h), together with
  // its library, which close() closes, too: to read it (kOpenExisting), or to write it anew
  // (kCreateNew, kCreateAlways, kTruncateExisting). Share and flags mean nothing then, and the
  // codes are those of zo/library/library.h.
  [[nodiscard]] int open(const ZoFileName& name, int access = kRead,
                         CreationMode mode = kOpenExisting, int share = kShareRead, int flags = 0);
  template <class A, class M = CreationMode, class S = Share, class F = Flag>
    requires kMixedUp<A, M, S, F>
  int open(const ZoFileName& name, A, M = {}, S = {},
           F = {}) = delete;  // access, mode, share, flags
  // Makes and opens a file that was not there: in the folder of `name`, or that for temporary files
  // when it has none; called `name`'s file name ("zo" when empty), eight hexadecimal digits, and
  // `name`'s extension (".tmp" when empty). `name` then holds its full name; after a failure it is
  // as it was. The modes that make nothing are refused. Pass kDeleteOnClose for a file that goes by
  // itself.
  [[nodiscard]] int createTemp(ZoFileName& name, int access = kReadWrite,
                               CreationMode mode = kCreateNew, int share = kShareNone,
                               int flags = kTemporary);
  template <class A, class M = CreationMode, class S = Share, class F = Flag>
    requires kMixedUp<A, M, S, F>
  int createTemp(ZoFileName& name, A, M = {}, S = {},
                 F = {}) = delete;  // access, mode, share, flags
  [[nodiscard]] bool isOpen() const noexcept;
  // 0 also without an open file. When the platform refuses, or an archive over the file could not
  // write what it held (zo/persist/file_archive.h), the file counts as closed all the same.
  [[nodiscard]] int close();
  // Closes it too, and gives up what close() alone would make effective: what was written to a
  // member of a library, or to what is being saved. What a plain file was written stays written.
  void cancel();

  // ---- Content ----
  // Without an open file, or with a null pointer, the platform is not called.
  [[nodiscard]] unsigned int read(void* buffer, unsigned int count);
  [[nodiscard]] unsigned int write(const void* data, unsigned int count);
  // The new position, counted from the begin; -1 for a failure, and then it has not moved. A
  // position past the end is fine.
  [[nodiscard]] std::int64_t seek(std::int64_t offset, MoveMethod method = kBegin);
  std::int64_t seek(MoveMethod) = delete;  // the offset comes first: seek(0, ZoFile::kEnd)
  [[nodiscard]] std::int64_t seekToBegin() { return seek(0, kBegin); }
  [[nodiscard]] std::int64_t seekToEnd() { return seek(0, kEnd); }
  [[nodiscard]] std::int64_t currentPos() const;
  // -1 for a failure.
  [[nodiscard]] std::int64_t size() const;
  // Cuts the file at its position, or fills it up to there.
  [[nodiscard]] int setEndOfFile();
  // To the disk.
  [[nodiscard]] int flush();

  // ---- Ranges of bytes that no other process may lock, nor on Windows read or write ----
  // A range may lie past the end of the file. 1 for a negative start, without asking the platform.
  [[nodiscard]] int lockRange(std::int64_t start, std::int64_t length);
  [[nodiscard]] int unlockRange(std::int64_t start,
                                std::int64_t length);  // exactly as it was locked

  // ---- About the file ----
  [[nodiscard]] const ZoFileName& name() const;  // as it was opened; empty for a taken-over handle
  [[nodiscard]] unsigned int accessMode() const noexcept;  // 0 for a taken-over handle
  [[nodiscard]] unsigned int shareMode() const noexcept;
  [[nodiscard]] unsigned int attributes() const;  // the platform's bits; 0 for a failure
  // In steps of 100 ns since 1601, UTC; zero for a failure.
  [[nodiscard]] FILETIME creationTime() const;
  [[nodiscard]] FILETIME lastAccessTime() const;
  [[nodiscard]] FILETIME lastWriteTime() const;
  [[nodiscard]] int setCreationTime(FILETIME time);
  [[nodiscard]] int setLastAccessTime(FILETIME time);
  [[nodiscard]] int setLastWriteTime(FILETIME time);

  // ---- Handing the handle over ----
  // A stdio stream that owns the file from then on, at the same position; this object has no file
  // then. Null for a failure, and then it keeps its file. Text or binary; `writable` streams can
  // read and write ("r+"), and are refused on a file that was not opened for writing.
  [[nodiscard]] std::FILE* getCFileHandle(bool text, bool writable);
  // The same with a mode of stdio as it stands; null for what is no mode. "w" empties nothing.
  [[nodiscard]] std::FILE* getCFileHandle(const wchar_t* mode);
  std::FILE* getCFileHandle(const wchar_t*, bool) = delete;  // the mode says all: L"rb+"
  // The platform's handle, all bits set when there is none. `give` hands it over to the caller, who
  // closes it; this object has no file then.
  [[nodiscard]] void* handle(bool give = false);

 private:
  [[nodiscard]] int makeReady();

  ZoFileImp* imp_ = nullptr;  // none in an object that was moved from
};

static_assert(sizeof(ZoFile) == sizeof(void*));

inline void swap(ZoFile& a, ZoFile& b) noexcept { a.swap(b); }
