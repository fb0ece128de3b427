// Reading members as a whole: into a file, or only to see that they are as they were added.
#include "files/fresh_file.h"
#include "files/replace_file.h"
#include "library/copy.h"
#include "library/operations.h"
#include "library/read_member.h"
#include "library/time_value.h"
#include "platform/write_all.h"

namespace zo {
namespace {

// The file that is to become the target of an extraction; removed unless it does.
class Target final : public ByteSink {
 public:
  explicit Target(const ZoFileName& name)
      : name_(name),
        fresh_(createFresh(stemBeside(name), kEndingBeside, GENERIC_READ | GENERIC_WRITE | DELETE,
                           FILE_SHARE_READ, FILE_ATTRIBUTE_NORMAL)) {}

  [[nodiscard]] bool isOpen() const { return static_cast<bool>(fresh_.file); }
  bool write(Bytes bytes) noexcept override {
    return writeAll(fresh_.file.get(), bytes.data(), bytes.size()) == bytes.size() ||
           reportFailure(L"extract");
  }
  // Brings it to its name. What it replaces is replaced by bytes that are on the disk.
  bool commit(const EntryRecord& record) {
    const FILETIME created = fileTime(record.created), accessed = fileTime(record.accessed),
                   written = fileTime(record.written);
    if (!fileApi().setTimes(fresh_.file.get(), &created, &accessed, &written)) return false;
    const SystemPath target(name_.fullName());
    std::wstring renamed(target);
    if (fileApi().rename(fresh_.file.get(), target)) {
      fresh_.path.swap(renamed);
      fresh_.isOurs = !fresh_.file.close();
      return !fresh_.isOurs;
    }
    // Something has the name, or the file system cannot do that.
    const bool replaces = fileApi().attributes(target) != INVALID_FILE_ATTRIBUTES;
    if (replaces && !fileApi().flush(fresh_.file.get())) return false;
    return fresh_.file.close() && putInPlace(fresh_, target, false);
  }

 private:
  const ZoFileName& name_;
  FreshFile fresh_;
};

}  // namespace

int extractMember(LibraryState& library, const ZoFileName& member, const ZoFileName& target) {
  RawEntry entry;
  if (const int code = findMember(library, member, entry)) return code;
  Progress watched = library.progress(entry.contentSize());
  Target out(target);
  if (!out.isOpen()) {
    reportFailure(L"open");
    return ZoResult::refused;
  }
  if (readMember(library, entry, out, watched)) return ZoResult::refused;
  if (out.commit(entry.record)) return ZoResult::ok;
  reportFailure(L"extract");
  return ZoResult::refused;
}

int verifyEntry(LibraryState& library, const ZoLibEntry& entry) {
  RawEntry raw;
  if (const int code = findEntryAt(library, entry.position, raw)) return code;
  Progress watched = library.progress(raw.contentSize());
  NoSink sink(watched);
  return readMember(library, raw, sink, watched);
}

}  // namespace zo
