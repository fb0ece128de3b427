// The layout's access to the archives of this library, and the texts, handles and names of files:
// what needs more than archive_layout.h.
#pragma once

#include <zo/names/file_name.h>
#include <zo/names/handle.h>
#include <zo/persist/buffered_archive.h>
#include <zo/text/string.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "persist/archive_layout.h"
#include "platform/ansi.h"

namespace zo {

inline constexpr const wchar_t* kTooDeep = L"The archive's containers lie too deep in one another";

// What a ZoArchive, which has no data, needs to know while it reads. One thread reads one value at
// a time. (No destructor: a thread's end frees thread_local objects before those run.)
struct ReadState {
  bool cameShort = false;
  unsigned int depth = 0;
};
ReadState& readState() noexcept;

template <>
struct ArchiveAccess<ZoArchive> {
  static bool fill(ZoArchive& archive, void* buffer, unsigned int size, const wchar_t*) {
    std::memset(buffer, 0, size);
    readState().cameShort = false;
    archive.readBin(buffer, size);
    if (!readState().cameShort) return true;
    std::memset(buffer, 0, size);  // not half of a number
    return false;
  }
  static bool cameShort(const ZoArchive&) { return readState().cameShort; }
  static bool enter(const ZoArchive& archive);
  static void leave(const ZoArchive&) { --readState().depth; }
};

template <>
struct ArchiveAccess<ReadArchive> {
  static bool fill(ReadArchive& archive, void* buffer, unsigned int size, const wchar_t* message) {
    archive.take(buffer, size, message);
    return true;
  }
  static bool cameShort(const ReadArchive&) { return false; }
  static bool enter(ReadArchive& archive);
  static void leave(ReadArchive& archive);
  // Within a container, shared with an equal text that was read before.
  static ZoString sharedText(ReadArchive& archive, const wchar_t* text, std::size_t length);
};

template <>
struct ArchiveAccess<WriteArchive> {
  static bool enter(WriteArchive& archive);
  static void leave(WriteArchive& archive) { --archive.depth_; }
};

// ---- Texts ----

// Gives `take` the text as a view that is valid during the call.
template <class Archive, class Take>
void readText(Archive& archive, std::uint32_t count, Take take) {
  if (archive.needToConvertToUnicode()) {
    std::string bytes;
    readUnits(archive, count, bytes);
    take(std::wstring_view(fromMultiByte(bytes)));
    return;
  }
  constexpr std::uint32_t kShort = 256;
  if (count <= kShort) {
    wchar_t units[kShort];
    if (count > 0 &&
        !ArchiveAccess<Archive>::fill(archive, units, static_cast<unsigned int>(2 * count),
                                      L"The archive ends within a text"))
      count = 0;
    take(std::wstring_view(units, count));
    return;
  }
  std::wstring text;
  readUnits(archive, count, text);
  take(std::wstring_view(text));
}

template <class Archive>
void readString(Archive& archive, ZoString& value) {
  unsigned int count = 0;
  archive.read(count);
  if (count == 0) {
    value = ZoString();
    return;
  }
  // Within the string's own memory, where it fits.
  readText(archive, count, [&](std::wstring_view text) { value.replace(0, ZoString::npos, text); });
}

template <class Archive>
void readNewText(Archive& archive, wchar_t*& value) {
  unsigned int count = 0;
  archive.read(count);
  readText(archive, count, [&](std::wstring_view text) {
    auto* const read = new wchar_t[text.size() + 1];
    text.copy(read, text.size());
    read[text.size()] = L'\0';
    value = read;
  });
}

template <class Archive>
void writeString(Archive& archive, const ZoString& value) {
  const unsigned int length = value.length();
  archive.write(length, L"");
  if (length > 0) archive.writeBin(value.data(), 2 * length, L"");
}

template <class Archive>
void writeText(Archive& archive, const wchar_t* text) {
  const auto length = static_cast<unsigned int>(text ? std::wcslen(text) : 0);
  archive.write(length, L"");
  archive.writeBin(text, 2 * length, L"");
}

// ---- Handles and names of files ----

template <class Archive>
void writeHandle(Archive& archive, const ZoHnd& value) {
  archive.write(static_cast<int>(value.types()), L"");
  if (value.isKindOf(ZoHnd::kId)) archive.write(value.id(), L"");
  if (value.isKindOf(ZoHnd::kText)) archive.write(ZoString(value.handle()), L"");
}
template <class Archive>
void readHandle(Archive& archive, ZoHnd& value) {
  ZoHnd handle;
  int types = 0;
  int id = 0;  // not the 8 bytes that are written, on purpose
  ZoString text;
  archive.read(types);
  const auto kinds = static_cast<unsigned int>(types);
  if (kinds & ZoHnd::kId) {
    archive.read(id);
    handle.setId(id);
  }
  if (kinds & ZoHnd::kText) {
    archive.read(text);
    handle.setHandle(text);
  }
  value = handle;
}

template <class Archive>
void writeFileName(Archive& archive, const ZoFileName& value) {
  const auto size = static_cast<unsigned short>(std::min(value.fullNameSize(), 0xFFFFU));
  archive.write(static_cast<unsigned char>(value.delimiter() & 0xFF), L"");
  archive.write(size, L"");
  if (size > 0) archive.writeBin(value.fullName(), 2U * size, L"");
}
template <class Archive>
void readFileName(Archive& archive, ZoFileName& value) {
  ZoFileName name;
  unsigned char delimiter = 0;
  unsigned short size = 0;
  archive.read(delimiter);
  archive.read(size);
  if (!ArchiveAccess<Archive>::cameShort(archive)) {
    readText(archive, size, [&](std::wstring_view view) {
      const ZoString text(view);
      static_cast<void>(name.setFullName(text));  // isEmpty() tells
      // What cannot be split by the usual rules may have been made under wider ones.
      if (name.isEmpty()) static_cast<void>(name.setFullName(text, false, false, true, true));
    });
    name.setDelimiter(delimiter);
  }
  value = std::move(name);
}

}  // namespace zo
