#include <zo/persist/buffered_archive.h>
#include <zo/system/exception.h>

#include <limits>

#include "persist/shared_texts.h"
#include "persist/variant_layout.h"

namespace zo {
namespace {

[[noreturn]] void failAt(std::uint64_t offset, const wchar_t* function, const wchar_t* message) {
  const auto position = static_cast<int>(
      std::min<std::uint64_t>(offset, static_cast<unsigned int>(std::numeric_limits<int>::max())));
  zoThrow(ZoComException(L"buffered_archive.cpp", function, message, position, true));
}

template <class Number>
constexpr const wchar_t* endsWithin() {
  if constexpr (std::is_same_v<Number, double>) return L"The archive ends within a real";
  if constexpr (sizeof(Number) == 1) return L"The archive ends in front of a byte";
  if constexpr (sizeof(Number) == 2) return L"The archive ends within a 16-bit number";
  if constexpr (sizeof(Number) == 4) return L"The archive ends within a 32-bit number";
  return L"The archive ends within a 64-bit number";
}

}  // namespace

// ---- Reading ----

bool ArchiveAccess<ReadArchive>::enter(ReadArchive& archive) {
  if (archive.depth_ == ZoVariant::kMaxDepth) archive.fail(kTooDeep);
  ++archive.depth_;
  return true;
}

void ArchiveAccess<ReadArchive>::leave(ReadArchive& archive) {
  if (--archive.depth_ > 0) return;
  archive.texts_.reset();
  archive.textsRead_ = 0;
}

ZoString ArchiveAccess<ReadArchive>::sharedText(ReadArchive& archive, const wchar_t* text,
                                                std::size_t length) {
  constexpr unsigned int kFew = 16;  // for which looking them up does not pay
  if (archive.depth_ == 0 || ++archive.textsRead_ <= kFew)
    return ZoString(std::wstring_view(text, length));
  if (!archive.texts_) archive.texts_ = std::make_unique<SharedTexts>();
  return archive.texts_->get(text, length);
}

ReadArchive::ReadArchive() = default;
ReadArchive::~ReadArchive() = default;

void ReadArchive::fail(const wchar_t* message) const { failAt(offset(), L"read", message); }

void ReadArchive::takeMore(void* out, std::size_t size, const wchar_t* message) {
  auto* to = static_cast<std::byte*>(out);
  while (size > 0) {
    if (next_ == end_ && !refill()) fail(message);
    const std::size_t piece = std::min(size, unread());
    std::memcpy(to, next_, piece);
    next_ += piece;
    to += piece;
    size -= piece;
  }
}

template <class Number>
inline void ReadArchive::takeNumber(Number& value) {
  Number read;
  take(&read, sizeof read, endsWithin<Number>());
  value = read;
}

bool ReadArchive::isStoring() { return false; }
void ReadArchive::writeBin(const void*, unsigned int, const wchar_t*) {
  fail(L"An archive that loads was written to");
}
void ReadArchive::readBin(void* buffer, unsigned int size) {
  take(buffer, size, L"The archive ends within bytes");
}

// First what composite values are made of, so that the compiler may put it in their place.
void ReadArchive::read(double& value) { takeNumber(value); }
void ReadArchive::read(std::int64_t& value) { takeNumber(value); }
void ReadArchive::read(std::uint64_t& value) { takeNumber(value); }
void ReadArchive::read(unsigned int& value) { takeNumber(value); }
void ReadArchive::read(int& value) { takeNumber(value); }
void ReadArchive::read(unsigned short& value) { takeNumber(value); }
void ReadArchive::read(short& value) { takeNumber(value); }
void ReadArchive::read(unsigned char& value) { takeNumber(value); }
void ReadArchive::read(signed char& value) { takeNumber(value); }
void ReadArchive::read(bool& value) {
  unsigned char byte = 0;
  takeNumber(byte);
  value = byte != 0;
}
void ReadArchive::read(_GUID& value) {
  _GUID read;
  take(&read, sizeof read, L"The archive ends within a GUID");
  value = read;
}
void ReadArchive::read(ZoColor& value) { takeNumber(value.value()); }
void ReadArchive::read(ZoString& value) { readString(*this, value); }
void ReadArchive::read(wchar_t*& value) { readNewText(*this, value); }
void ReadArchive::read(ZoPoint& value) { readPoint(*this, value); }
void ReadArchive::read(ZoVector& value) { readVector(*this, value); }
void ReadArchive::read(ZoPlane& value) { readPlane(*this, value); }
void ReadArchive::read(ZoMatrix& value) { readMatrix(*this, value); }
void ReadArchive::read(ZoCoSystem& value) { readCoSystem(*this, value); }
void ReadArchive::read(ZoTol& value) { readTol(*this, value); }
void ReadArchive::read(ZoHnd& value) { readHandle(*this, value); }
void ReadArchive::read(ZoFileName& value) { readFileName(*this, value); }
void ReadArchive::read(ZoVariant& value) {
  if (depth_ > 0) return readVariant(*this, value);  // a fresh element
  ZoVariant read;
  readVariant(*this, read);
  value = std::move(read);
}

// ---- Writing ----

bool ArchiveAccess<WriteArchive>::enter(WriteArchive& archive) {
  if (archive.depth_ == ZoVariant::kMaxDepth) {
    archive.next_ = archive.begin_ + archive.containerStart_;
    archive.fail(kTooDeep);
  }
  ++archive.depth_;
  return true;
}

WriteArchive::~WriteArchive() = default;

void WriteArchive::fail(const wchar_t* message) const { failAt(offset(), L"write", message); }

bool WriteArchive::isStoring() { return true; }
void WriteArchive::readBin(void*, unsigned int) { fail(L"An archive that stores was read from"); }
void WriteArchive::writeBin(const void* data, unsigned int size, const wchar_t*) {
  if (size > 0) put(data, size);
}

void WriteArchive::write(double value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(std::int64_t value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(std::uint64_t value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(unsigned int value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(int value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(unsigned short value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(short value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(unsigned char value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(signed char value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(bool value, const wchar_t* name) {
  write(static_cast<unsigned char>(value), name);
}
void WriteArchive::write(const _GUID& value, const wchar_t*) { put(&value, sizeof value); }
void WriteArchive::write(ZoColor& value, const wchar_t* name) { write(value.value(), name); }
void WriteArchive::write(const ZoString& value, const wchar_t*) { writeString(*this, value); }
void WriteArchive::write(const wchar_t* text, const wchar_t*) { writeText(*this, text); }
void WriteArchive::write(const ZoPoint& value, const wchar_t*) { writePoint(*this, value); }
void WriteArchive::write(const ZoVector& value, const wchar_t* name) {
  writeVector(*this, value, name);
}
void WriteArchive::write(const ZoPlane& value, const wchar_t*) { writePlane(*this, value); }
void WriteArchive::write(const ZoMatrix& value, const wchar_t*) { writeMatrix(*this, value); }
void WriteArchive::write(const ZoCoSystem& value, const wchar_t*) { writeCoSystem(*this, value); }
void WriteArchive::write(const ZoTol& value, const wchar_t*) { writeTol(*this, value); }
void WriteArchive::write(const ZoHnd& value, const wchar_t*) { writeHandle(*this, value); }
void WriteArchive::write(const ZoFileName& value, const wchar_t*) { writeFileName(*this, value); }
void WriteArchive::write(const ZoVariant& value, const wchar_t*) {
  if (!isContainer(value)) return writeVariant(*this, value);
  if (depth_ == 0) {
    // Where all can be taken back, its depth shows while it is written, which is faster.
    if (!keepsAll_ && value.isTooDeep()) fail(kTooDeep);
    containerStart_ = static_cast<std::size_t>(next_ - begin_);
  }
  const Nesting<WriteArchive> deeper(*this);
  writeVariant(*this, value);
}

}  // namespace zo
