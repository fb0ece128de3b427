#include <zo/persist/memory_archive.h>
#include <zo/system/exception.h>

#include <optional>
#include <vector>

#include "c_interface/call.h"
#include "c_interface/value.h"
#include "platform/address_range.h"

namespace {

using namespace zo::c;

// Stored values, in one direction.
class Archive final : public Object {
 public:
  static constexpr Kind kKind = Kind::archive;
  static constexpr bool kIsShared = false;

  Archive() : Object(kKind) {}
  [[nodiscard]] bool mayClose() noexcept override { return isFree(*this); }

  std::vector<std::byte> bytes;  // that the reader reads
  std::optional<ZoMemoryReadArchive> reader;
  std::optional<ZoMemoryWriteArchive> writer;
};

ZoMemoryWriteArchive& writerOf(Archive& archive) {
  return archive.writer ? *archive.writer : throw Refusal{ZOC_WRONG_HANDLE};
}
ZoMemoryReadArchive& readerOf(Archive& archive) {
  return archive.reader ? *archive.reader : throw Refusal{ZOC_WRONG_HANDLE};
}

template <class Write>
int writeTo(ZocArchive archive, const Write& write) noexcept {
  return call([&] {
    const Use<Archive> to(archive);
    write(writerOf(*to));
    return 0;
  });
}

// A read throws where the data ends.
template <class Read>
int readFrom(ZocArchive archive, const Read& read) noexcept {
  return call([&] {
    const Use<Archive> from(archive);
    ZoMemoryReadArchive& reader = readerOf(*from);
    try {
      read(reader);
    } catch (const ZoComException&) {
      return ZOC_ENDED;
    }
    return ZOC_OK;
  });
}

template <class T>
int readNumber(ZocArchive archive, T* out) noexcept {
  return readFrom(archive, [&](ZoMemoryReadArchive& reader) {
    T number = 0;
    T& target = required(out);
    reader >> number;
    target = number;
  });
}

}  // namespace

int zocArchiveNew(ZocArchive* out) noexcept {
  return make<Archive>(out, [](Archive& archive) {
    archive.writer.emplace();
    return 0;
  });
}

int zocArchiveLoad(const void* bytes, size_t size, ZocArchive* out) noexcept {
  return make<Archive>(out, [&](Archive& archive) {
    require(zo::canBeMemory(bytes, size));
    const auto* const begin = static_cast<const std::byte*>(bytes);
    archive.bytes.assign(begin, begin + size);
    archive.reader.emplace(archive.bytes);
    return 0;
  });
}

int zocArchiveBytes(ZocArchive archive, const void** bytes, size_t* size) noexcept {
  return call([&] {
    const Use<Archive> from(archive);
    const std::span<const std::byte> written = writerOf(*from).bytes();
    require(bytes && size);
    *bytes = written.data();
    *size = written.size();
    return 0;
  });
}

int zocArchiveRest(ZocArchive archive, size_t* size) noexcept {
  return call([&] {
    const Use<Archive> from(archive);
    const std::size_t rest = readerOf(*from).rest();
    required(size) = rest;
    return 0;
  });
}

int zocArchiveWriteValue(ZocArchive archive, ZocValue value) noexcept {
  return writeTo(archive, [&](ZoMemoryWriteArchive& to) {
    const Use<Value> from(value);
    if (from->variant.isTooDeep()) throw Refusal{ZOC_REFUSED};
    to << from->variant;
  });
}

int zocArchiveWriteText(ZocArchive archive, ZocText text) noexcept {
  return writeTo(archive, [&](ZoMemoryWriteArchive& to) { to << textOf(text); });
}

int zocArchiveWriteInt(ZocArchive archive, int32_t number) noexcept {
  return writeTo(archive, [&](ZoMemoryWriteArchive& to) { to << number; });
}

int zocArchiveWriteBigInt(ZocArchive archive, int64_t number) noexcept {
  return writeTo(archive, [&](ZoMemoryWriteArchive& to) { to << number; });
}

int zocArchiveWriteReal(ZocArchive archive, double number) noexcept {
  return writeTo(archive, [&](ZoMemoryWriteArchive& to) { to << number; });
}

int zocArchiveWriteRaw(ZocArchive archive, const void* bytes, uint32_t size) noexcept {
  return writeTo(archive, [&](ZoMemoryWriteArchive& to) {
    require(zo::canBeMemory(bytes, size));
    if (size != 0) to.writeBin(bytes, size, L"");
  });
}

int zocArchiveReadValue(ZocArchive archive, ZocValue out) noexcept {
  return readFrom(archive, [&](ZoMemoryReadArchive& reader) {
    const Use<Value> to(out);
    ZoVariant read;
    reader >> read;
    to->variant.swap(read);
  });
}

int zocArchiveReadText(ZocArchive archive, ZocString out) noexcept {
  return readFrom(archive, [&](ZoMemoryReadArchive& reader) {
    const Use<String> to(out);
    ZoString read;
    reader >> read;
    to->set(read.view());
  });
}

int zocArchiveReadInt(ZocArchive archive, int32_t* out) noexcept {
  return readNumber(archive, out);
}

int zocArchiveReadBigInt(ZocArchive archive, int64_t* out) noexcept {
  return readNumber(archive, out);
}

int zocArchiveReadReal(ZocArchive archive, double* out) noexcept {
  return readNumber(archive, out);
}

int zocArchiveReadRaw(ZocArchive archive, void* bytes, uint32_t size) noexcept {
  return readFrom(archive, [&](ZoMemoryReadArchive& reader) {
    require(zo::canBeMemory(bytes, size));
    if (size > reader.rest()) throw Refusal{ZOC_ENDED};
    if (size != 0) reader.readBin(bytes, size);
  });
}
