// The storage block of ZoString: counter, capacity and length, directly followed by the characters.
//
// A block is one allocation of (capacity + 1) * 2 + 12 bytes from the global operator new; the cell
// at index length() always holds 0. Strings share blocks and copy them before they write
// (zo/text/string.h).
//
// Errors:  getRep throws std::bad_alloc. Nothing else throws.
// Threads: one thread at a time per block, and so per group of strings that share it. The
//          process-wide empty block is the exception: any thread may take and drop it. Its count
//          can lose updates then and decides nothing.
#pragma once

#include <zo/config.h>
#include <zo/text/ref_count.h>

class ZO_COM_API ZoStringRef : private ZoRefCount {
 public:
  static constexpr unsigned int npos = 0xFFFFFFFF;

  ZoStringRef(const ZoStringRef&) = delete;
  ZoStringRef& operator=(const ZoStringRef&) = delete;

  // A fresh block with one reference and a terminator at index length; the shared empty block, with
  // its count raised, when both are 0. Needs length <= capacity.
  [[nodiscard]] static ZoStringRef* getRep(unsigned int capacity, unsigned int length);
  // The one block that all empty strings share. It is never freed and always counts as shared.
  [[nodiscard]] static inline ZoStringRef* emptyRep() noexcept;
  // Drops one reference and frees the block with the last one.
  void release() noexcept {
    if (removeReference() == 0) freeBlock();
  }

  using ZoRefCount::addReference;
  using ZoRefCount::references;
  [[nodiscard]] bool isShared() const noexcept { return references() > 1; }

  [[nodiscard]] unsigned int capacity() const noexcept { return capacity_; }
  [[nodiscard]] unsigned int length() const noexcept { return length_; }
  // Sets the length and writes the terminator. Needs an unshared block and length <= capacity().
  void setLength(unsigned int length) noexcept {
    length_ = length;
    data()[length] = 0;
  }
  [[nodiscard]] wchar_t* data() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
  [[nodiscard]] const wchar_t* data() const noexcept {
    return reinterpret_cast<const wchar_t*>(this + 1);
  }

  // Index of the first or last occurrence of a character, or of the first of any character of a
  // set; npos when absent.
  [[nodiscard]] unsigned int first(wchar_t c) const noexcept;
  [[nodiscard]] unsigned int first(const wchar_t* set) const noexcept;
  [[nodiscard]] unsigned int last(wchar_t c) const noexcept;

  // The hash of the exact text, and the one that ignores the case of a to z. They are different
  // functions: a text without letters hashes differently under the two. The values are part of the
  // interface.
  [[nodiscard]] unsigned int hash() const noexcept;
  [[nodiscard]] unsigned int hashFoldCase() const noexcept;
  // Order in the runtime library's current locale (wcscoll); null counts as empty.
  [[nodiscard]] int collate(const wchar_t* text) const noexcept;

 private:
  struct EmptyBlock;
  static EmptyBlock s_empty;

  constexpr ZoStringRef(unsigned int capacity, unsigned int length) noexcept
      : ZoRefCount(1), capacity_(capacity), length_(length) {}
  ~ZoStringRef() = default;
  wchar_t& operator[](unsigned int i) noexcept { return data()[i]; }
  void freeBlock() noexcept;

  unsigned int capacity_;
  unsigned int length_;
};

static_assert(sizeof(ZoStringRef) == 12);

// The block starts with one reference of its own, so that every string on it counts as sharing.
struct ZoStringRef::EmptyBlock {
  ZoStringRef header{0, 0};
  wchar_t terminator = 0;
};

inline ZoStringRef* ZoStringRef::emptyRep() noexcept { return &s_empty.header; }
