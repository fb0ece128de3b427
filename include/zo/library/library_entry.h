// What a library says of one member: its entry, with the fields named. Calls on members take an
// entry in the place of a name.
//
// Errors:  nothing throws but std::bad_alloc where names are copied.
// Threads: one at a time per object.
// Stored: docs/formats/library.md.
#pragma once

#include <zo/files/file_time.h>
#include <zo/names/file_name.h>

#include <cstddef>
#include <cstdint>
#include <utility>

struct ZoLibEntry {
  // Bits of flags. They are part of the format: never renumber.
  enum Flag : unsigned short { kScanEnds = 0x0080, kCompressed = 0x0100, kDeleted = 0x0200 };

  ZoFileName name;               // empty when the file holds one that no file name can be
  std::uint64_t position = 0;    // of the entry in the library file; the name and the data follow
  std::uint64_t storedSize = 0;  // bytes of data as they lie in the library
  // Bytes of the member itself. Taken from the data for a compressed member; from the entry, or
  // else the stored size, for any other.
  std::uint64_t size = 0;
  ZoFileTime created, accessed, written;
  // Which of the file's members it is, deleted ones counted, from 1: a short name for it that any
  // member has. Physical deletion and reorganize give new ones. 0 where salvage found the member.
  std::uint64_t ordinal = 0;
  std::uint32_t number = 0;  // the library's counter when the member was added; a hint
  std::uint32_t crc = 0;     // of the uncompressed bytes, where isProtected
  unsigned short mode = 0;   // 0 stored, else 1024, 2048 or 4096; a hint
  unsigned short flags = 0;
  // Whether a damage of the data can be told: false only for stored members of other makers.
  bool isProtected = false;
  // Whether another live member of its name comes first, so that it is found by its entry only. A
  // file that another maker wrote may hold such.
  bool isHidden = false;

  [[nodiscard]] bool isCompressed() const noexcept { return (flags & kCompressed) != 0; }
  [[nodiscard]] bool isDeleted() const noexcept { return (flags & kDeleted) != 0; }
};

namespace zo {

// A file name that is there: a null pointer does not become one.
struct GivenName : ZoFileName {
  using ZoFileName::ZoFileName;
  using ZoFileName::operator=;
  GivenName() = default;
  GivenName(const ZoFileName& name) noexcept : ZoFileName(name) {}
  GivenName(ZoFileName&& name) noexcept : ZoFileName(std::move(name)) {}
  GivenName(std::nullptr_t) = delete;  // a member's name; {} where an entry tells which it is
  GivenName& operator=(std::nullptr_t) = delete;  // a member's name
};

}  // namespace zo

// One of several members that get new names in one step.
struct ZoLibRename {
  zo::GivenName member;
  zo::GivenName newName;
  const ZoLibEntry* entry = nullptr;  // where given, the member is this one, whatever its name
};
