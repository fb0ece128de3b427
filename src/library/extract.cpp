// Reading members as a whole: into a file, or only to see that they are as they were added.
#include "files/fresh_file.h"
#include "files/replace_file.h"
#include "library/copy.h"
#include "library/operations.h"
#include "library/reading.h"
#include "platform/time_value.h"
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

int extractMember(const std::shared_ptr<LibraryDoor>& door, const MemberRef& member,
                  const ZoFileName& target) {
  const auto find = [&](LibraryState& library, RawEntry& entry) {
    return findMember(library, member, entry);
  };
  return readAside(door, {member.name, &target}, find, [&](Reading& reading) {
    Target out(target);
    if (!out.isOpen()) {
      reportFailure(L"open");
      return ZoResult::refused;
    }
    if (reading.into(out)) return ZoResult::refused;
    if (out.commit(reading.entry().record)) return ZoResult::ok;
    reportFailure(L"extract");
    return ZoResult::refused;
  });
}

int verifyEntry(const std::shared_ptr<LibraryDoor>& door, const ZoLibEntry& entry) {
  const auto find = [&](LibraryState& library, RawEntry& found) {
    return findMember(library, {.name = nullptr, .entry = &entry}, found);
  };
  return readAside(door, {}, find, [](Reading& reading) {
    NoSink sink(reading.progress());
    return reading.into(sink);
  });
}

}  // namespace zo
