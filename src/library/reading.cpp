#include "library/reading.h"

#include "library/read_member.h"

namespace zo {
namespace {

// Whether another process has changed the file since then.
bool isChanged(const std::shared_ptr<LibraryDoor>& door, const DiskFile::Signature& before) {
  DiskFile::Signature now = before;
  const int code = run(door, Access::kRead, {}, [&](LibraryState& library) {
    return library.isWritable() || library.look(now) ? ZoResult::ok : ZoResult::refused;
  });
  return !code && !(now == before);
}

}  // namespace

Reading::Reading(std::shared_ptr<LibraryDoor> door, LibraryState& library, const RawEntry& entry)
    : door_(std::move(door)),
      library_(library),
      place_(library),
      entry_(entry),
      counter_(library.header().counter()),
      progress_(library.progress(entry.contentSize())) {
  place_.entry = entry;
}

int Reading::into(ByteSink& out) { return readContent(*this, counter_, entry_, out, progress_); }

bool Reading::read(std::uint64_t offset, std::span<unsigned char> to) noexcept {
  const FilesLock lock;
  if (place_.isGone) return false;
  return library_.bytes().read(offset - entry_.position + place_.entry.position, to);
}

int readAside(const std::shared_ptr<LibraryDoor>& door,
              std::initializer_list<const ZoFileName*> names,
              const std::function<int(LibraryState&, RawEntry&)>& find,
              const std::function<int(Reading&)>& use) {
  for (int attempt = 1;; ++attempt) {
    std::unique_ptr<Reading> reading;
    DiskFile::Signature before;
    int code = run(door, Access::kRead, names, [&](LibraryState& library) -> int {
      if (!library.isWritable() && !library.look(before)) return ZoResult::refused;
      RawEntry entry;
      if (const int missing = find(library, entry)) return missing;
      reading = std::make_unique<Reading>(door, library, entry);
      return ZoResult::ok;
    });
    if (reading) code = use(*reading);
    if (!code || attempt == LibraryState::kAttempts) return code;
    if ((reading && reading->progress().isCancelled()) || !isChanged(door, before)) return code;
  }
}

}  // namespace zo
