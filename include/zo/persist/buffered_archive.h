// What the archives over memory and files have in common: a stretch of bytes in which most values
// are written or read without any further call.
//
// Errors:  ZoComException: reading past the end or containers that lie more than
//          ZoVariant::kMaxDepth deep, reading from an archive that stores and the other way round,
//          a file that cannot be read or written. position() is then the offset, counted from where
//          the archive began (2^31 - 1 where it is more); message() says what was being read. An
//          archive that has thrown goes on from where it stands.
// Threads: one thread at a time per archive. Equal short texts in a variant that was read share
//          their storage: give another thread a copy() of what it takes out.
// Memory:  reading n bytes takes at most 64 KiB + 160 n, of which empty dictionaries are the worst;
//          texts and lists take a few times their bytes.
#pragma once

#include <zo/persist/archive.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace zo {

class SharedTexts;

// Numbers and most texts without a call.
inline void copyBytes(void* to, const void* from, std::size_t size) noexcept {
  if (size < 16 || size > 64) {
    std::memcpy(to, from, size);
    return;
  }
  // In pieces that overlap.
  auto* const out = static_cast<std::byte*>(to);
  const auto* const in = static_cast<const std::byte*>(from);
  std::memcpy(out, in, 16);
  if (size > 32) {
    std::memcpy(out + 16, in + 16, 16);
    std::memcpy(out + size - 32, in + size - 32, 16);
  }
  std::memcpy(out + size - 16, in + size - 16, 16);
}

class ZO_COM_API ReadArchive : public ZoArchive {
 public:
  virtual ~ReadArchive();
  ReadArchive(const ReadArchive&) = delete;
  ReadArchive& operator=(const ReadArchive&) = delete;

  // How many bytes were read.
  [[nodiscard]] std::uint64_t offset() const noexcept {
    return windowEnd_ - static_cast<std::uint64_t>(end_ - next_);
  }

  bool isStoring() final;
  void readBin(void* buffer, unsigned int size) final;
  using ZoArchive::read, ZoArchive::write;
  void writeBin(const void* data, unsigned int size, const wchar_t* name) final;  // throws
  void read(_GUID& value) final;
  void read(ZoHnd& value) final;
  void read(ZoTol& value) final;
  void read(ZoCoSystem& value) final;
  void read(ZoMatrix& value) final;
  void read(ZoPlane& value) final;
  void read(ZoVector& value) final;
  void read(ZoPoint& value) final;
  void read(ZoFileName& value) final;
  void read(ZoVariant& value) final;
  void read(ZoString& value) final;
  void read(ZoColor& value) final;
  void read(wchar_t*& value) final;
  void read(double& value) final;
  void read(std::int64_t& value) final;
  void read(std::uint64_t& value) final;
  void read(unsigned int& value) final;
  void read(int& value) final;
  void read(unsigned short& value) final;
  void read(short& value) final;
  void read(unsigned char& value) final;
  void read(signed char& value) final;
  void read(bool& value) final;

 protected:
  ReadArchive();
  // What is read next; the bytes must stay until the next call of refill.
  void setWindow(const std::byte* bytes, std::size_t size) noexcept {
    next_ = bytes;
    end_ = bytes + size;
    windowEnd_ += size;
  }
  [[nodiscard]] std::size_t unread() const noexcept {
    return static_cast<std::size_t>(end_ - next_);
  }
  // Counts what is unread as not given. Returns how much that was.
  std::size_t dropWindow() noexcept {
    const std::size_t dropped = unread();
    windowEnd_ -= dropped;
    end_ = next_;
    return dropped;
  }
  [[noreturn]] void fail(const wchar_t* message) const;

 private:
  template <class Archive>
  friend struct ArchiveAccess;

  // Sets the window behind the one that was read; false when there is nothing more.
  virtual bool refill() = 0;
  void take(void* out, std::size_t size, const wchar_t* message) {
    if (size > unread()) return takeMore(out, size, message);
    copyBytes(out, next_, size);
    next_ += size;
  }
  void takeMore(void* out, std::size_t size, const wchar_t* message);
  template <class Number>
  void takeNumber(Number& value);

  const std::byte* next_ = nullptr;
  const std::byte* end_ = nullptr;
  std::uint64_t windowEnd_ = 0;
  unsigned int depth_ = 0;
  unsigned int textsRead_ = 0;          // in the outermost container that is being read
  std::unique_ptr<SharedTexts> texts_;  // of that container
};

class ZO_COM_API WriteArchive : public ZoArchive {
 public:
  virtual ~WriteArchive();
  WriteArchive(const WriteArchive&) = delete;
  WriteArchive& operator=(const WriteArchive&) = delete;

  // How many bytes were written.
  [[nodiscard]] std::uint64_t offset() const noexcept {
    return stored_ + static_cast<std::uint64_t>(next_ - begin_);
  }

  bool isStoring() final;
  using ZoArchive::read, ZoArchive::write;
  void readBin(void* buffer, unsigned int size) final;  // throws
  void writeBin(const void* data, unsigned int size, const wchar_t* name) final;
  void write(const _GUID& value, const wchar_t* name) final;
  void write(const ZoHnd& value, const wchar_t* name) final;
  void write(const ZoTol& value, const wchar_t* name) final;
  void write(const ZoCoSystem& value, const wchar_t* name) final;
  void write(const ZoMatrix& value, const wchar_t* name) final;
  void write(const ZoPlane& value, const wchar_t* name) final;
  void write(const ZoVector& value, const wchar_t* name) final;
  void write(const ZoPoint& value, const wchar_t* name) final;
  void write(const ZoFileName& value, const wchar_t* name) final;
  void write(const ZoVariant& value, const wchar_t* name) final;
  void write(const ZoString& value, const wchar_t* name) final;
  void write(ZoColor& value, const wchar_t* name) final;
  void write(const wchar_t* text, const wchar_t* name) final;
  void write(double value, const wchar_t* name) final;
  void write(std::int64_t value, const wchar_t* name) final;
  void write(std::uint64_t value, const wchar_t* name) final;
  void write(unsigned int value, const wchar_t* name) final;
  void write(int value, const wchar_t* name) final;
  void write(unsigned short value, const wchar_t* name) final;
  void write(short value, const wchar_t* name) final;
  void write(unsigned char value, const wchar_t* name) final;
  void write(signed char value, const wchar_t* name) final;
  void write(bool value, const wchar_t* name) final;

 protected:
  // keepsAll: [begin_, next_) is all that was written since the archive began.
  explicit WriteArchive(bool keepsAll) noexcept : keepsAll_(keepsAll) {}
  [[noreturn]] void fail(const wchar_t* message) const;

  // Where bytes go: [begin_, next_) is written, up to end_ there is room. stored_ bytes went before
  // begin_.
  std::byte* begin_ = nullptr;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
  std::uint64_t stored_ = 0;

 private:
  template <class Archive>
  friend struct ArchiveAccess;

  // Takes bytes for which there is no room.
  virtual void overflow(const void* data, std::size_t size) = 0;
  void put(const void* data, std::size_t size) {
    if (size > static_cast<std::size_t>(end_ - next_)) return overflow(data, size);
    copyBytes(next_, data, size);
    next_ += size;
  }

  unsigned int depth_ = 0;
  bool keepsAll_;
  std::size_t containerStart_ = 0;  // of the outermost one that is being written
};

}  // namespace zo
