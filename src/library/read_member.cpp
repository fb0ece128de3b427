#include "library/read_member.h"

#include <zo/persist/zip.h>

#include "library/copy.h"
#include "library/member_data.h"

namespace zo {
namespace {

int readStored(ByteStore& bytes, std::uint32_t counter, const RawEntry& entry, ByteSink& out) {
  CheckedSink sink(&out);
  if (!copyPart(bytes, entry.dataPosition(), entry.record.storedSize, sink)) {
    return ZoResult::refused;
  }
  const bool isChecked = entry.record.protectsStored(counter);
  return isChecked && sink.crc() != entry.record.crc ? ZoZip::checkMismatch : ZoResult::ok;
}

int readCompressed(ByteStore& bytes, const RawEntry& entry, ByteSink& out) {
  MemberData data(bytes, entry);
  return explodeStream(data, out);
}

}  // namespace

int readContent(ByteStore& bytes, std::uint32_t counter, const RawEntry& entry, ByteSink& out,
                Progress& watched) {
  WatchedSink sink(out, watched);
  if (!watched.begin()) return ZoResult::refused;
  if (entry.record.contradictsItself(counter)) return ZoZip::checkMismatch;
  const int code = entry.record.has(kIsCompressed) ? readCompressed(bytes, entry, sink)
                                                   : readStored(bytes, counter, entry, sink);
  if (code == ZoResult::refused) return code;
  return watched.finish() ? code : ZoResult::refused;
}

int readMember(LibraryState& library, const RawEntry& entry, ByteSink& out, Progress& watched) {
  return readContent(library.bytes(), library.header().counter(), entry, out, watched);
}

bool isProtected(const LibraryState& library, const EntryRecord& record) {
  return record.has(kIsCompressed) || record.protectsStored(library.header().counter());
}

Extent extentOf(LibraryState& library, const RawEntry& entry, Progress& goesOn) {
  if (entry.meetsTrailer()) return Extent::kSound;
  if (!isProtected(library, entry.record) &&
      !entry.record.contradictsItself(library.header().counter())) {
    return Extent::kUnknown;
  }
  Progress unwatched;
  NoSink sink(goesOn);
  if (readMember(library, entry, sink, unwatched) != ZoResult::ok) return Extent::kDamaged;
  return entry.contentSize() != 0 ? Extent::kSound : Extent::kUnknown;
}

bool holdsLibrary(LibraryState& library, const RawEntry& entry) {
  LibraryHeader inner;
  return entry.record.storedSize >= kHeaderSize &&
         library.bytes().read(entry.dataPosition(), inner.room()) && inner.hasMagic();
}

}  // namespace zo
