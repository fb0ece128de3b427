#include <zo/library/library.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "c_interface/call.h"
#include "c_interface/value.h"
#include "library/files_lock.h"
#include "names/name_compare.h"
#include "platform/address_range.h"

namespace {

using namespace zo::c;

struct NamesInOrder {
  using is_transparent = void;
  bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
    return zo::orderNames(a, b) < 0;
  }
};
using Names = std::set<std::wstring, NamesInOrder>;

class Library final : public Object {
 public:
  static constexpr Kind kKind = Kind::library;
  static constexpr bool kIsShared = true;

  Library() : Object(kKind) {}
  // The platform ties a writer's lock to the thread that took it.
  [[nodiscard]] bool mayClose() noexcept override {
    return !library.isWritable() || opener_ == currentThread();
  }
  [[nodiscard]] int close() override { return library.close(); }

  ZoLibrary library;
  // Under the lock of libraries: no thread comes between a look at these and what it allows.
  std::optional<Names> batch;     // what was added since it began
  unsigned int reorganizing = 0;  // calls, which let go of the lock while they wait

 private:
  unsigned long opener_ = currentThread();
};

// Calls work for the library behind the handle, and for one of its members.
template <class Work>
int with(ZocLibrary handle, const Work& work) noexcept {
  return call([&] { return work(Use<Library>(handle)->library); });
}
template <class Work>
int withMember(ZocLibrary handle, const ZocText& member, const Work& work) noexcept {
  return with(handle,
              [&](ZoLibrary& library) { return work(library, ZoFileName(textOf(member))); });
}

// Changes. Those that would end a batch are refused while one is open: it ends, or is cancelled, as
// a whole.
template <class Work>
int change(ZocLibrary handle, const Work& work) noexcept {
  return call([&] {
    const Use<Library> use(handle);
    const zo::FilesLock lock;
    if (use->batch) throw Refusal{ZOC_IN_BATCH};
    return work(*use);
  });
}
template <class Work>
int changeMember(ZocLibrary handle, const ZocText& member, const Work& work) noexcept {
  return change(handle, [&](Library& in) { return work(in.library, ZoFileName(textOf(member))); });
}

// Adding is all that a batch allows, each name once.
template <class Work>
int addMember(ZocLibrary handle, const ZocText& member, bool replaces, const Work& work) noexcept {
  return call([&] {
    const Use<Library> use(handle);
    const ZoFileName name(textOf(member));
    const zo::FilesLock lock;
    if (!use->batch) return work(use->library, name);
    if (use->batch->contains(name.view()))
      return replaces ? int{ZOC_IN_BATCH} : ZoResult::memberExists;
    Names added{std::wstring(name.view())};
    const int code = work(use->library, name);
    if (code == 0) use->batch->merge(added);
    return code;
  });
}

// The end of a batch, whatever its code.
template <class Work>
int endBatch(ZocLibrary handle, const Work& work) noexcept {
  return call([&] {
    const Use<Library> use(handle);
    const zo::FilesLock lock;
    if (!use->batch) return int{ZOC_NO_BATCH};
    use->batch.reset();
    return work(use->library);
  });
}

// A reorganization that is on its way, perhaps waiting for others, when it holds no lock.
class Reorganizing {
 public:
  explicit Reorganizing(Library& in) : in_(in) {
    const zo::FilesLock lock;
    if (in.batch) throw Refusal{ZOC_IN_BATCH};
    ++in.reorganizing;
  }
  Reorganizing(const Reorganizing&) = delete;
  Reorganizing& operator=(const Reorganizing&) = delete;
  ~Reorganizing() {
    const zo::FilesLock lock;
    --in_.reorganizing;
  }

 private:
  Library& in_;
};

ZoLibrary::compMode modeOf(int mode) {
  require(mode >= ZOC_STORE && mode <= ZOC_AUTOMATIC);
  return static_cast<ZoLibrary::compMode>(mode);
}

ZoVariant entryOf(const ZoLibEntry& entry) {
  ZoVariant result(ZoVariant::kDict);
  const auto put = [&](std::wstring_view key, ZoVariant value) {
    if (result.put(key, std::move(value))) throw std::bad_alloc();
  };
  put(L"name", ZoVariant(entry.name).copy());
  put(L"size", static_cast<std::int64_t>(entry.size));
  put(L"stored", static_cast<std::int64_t>(entry.storedSize));
  put(L"written", static_cast<std::int64_t>(entry.written.ticks));
  put(L"deleted", entry.isDeleted());
  put(L"compressed", entry.isCompressed());
  return result;
}

// As many bytes as there are, into memory that was checked.
int readAt(ZoFile& file, std::uint64_t offset, void* bytes, std::uint32_t size,
           std::uint32_t& got) {
  const std::int64_t length = file.size();
  if (length < 0) return ZOC_REFUSED;
  const auto begin =
      static_cast<std::int64_t>(std::min(offset, static_cast<std::uint64_t>(length)));
  if (file.seek(begin, ZoFile::kBegin) != begin) return ZOC_REFUSED;
  const auto wanted = static_cast<std::uint32_t>(std::min<std::int64_t>(size, length - begin));
  if (file.read(bytes, wanted) != wanted) return ZOC_REFUSED;
  got = wanted;
  return ZOC_OK;
}

}  // namespace

int zocLibraryOpen(ZocText name, int access, ZocLibrary* out) noexcept {
  return make<Library>(out, [&](Library& made) {
    require(access >= ZOC_READ && access <= ZOC_CREATE);
    const int code = made.library.open(
        ZoFileName(textOf(name)), access == ZOC_READ ? ZoFile::kRead : ZoFile::kReadWrite,
        access == ZOC_CREATE ? ZoFile::kOpenAlways : ZoFile::kOpenExisting);
    return code || made.library.isLibrary() ? code : int{ZOC_NO_LIBRARY};
  });
}

int zocLibraryAddFile(ZocLibrary library, ZocText source, ZocText member, int replace,
                      int mode) noexcept {
  return addMember(library, member, replace != 0, [&](ZoLibrary& to, const ZoFileName& name) {
    return to.addFile(ZoFileName(textOf(source)), name, replace != 0, modeOf(mode));
  });
}

int zocLibraryExtract(ZocLibrary library, ZocText member, ZocText target) noexcept {
  return withMember(library, member, [&](ZoLibrary& from, const ZoFileName& name) {
    return from.extractFile(name, ZoFileName(textOf(target)));
  });
}

int zocLibraryRename(ZocLibrary library, ZocText member, ZocText newName) noexcept {
  return changeMember(library, member, [&](ZoLibrary& in, const ZoFileName& name) {
    return in.renameFile(name, ZoFileName(textOf(newName)));
  });
}

int zocLibraryDelete(ZocLibrary library, ZocText member) noexcept {
  return changeMember(library, member,
                      [](ZoLibrary& in, const ZoFileName& name) { return in.deleteFile(name); });
}

int zocLibraryRecover(ZocLibrary library, ZocText member) noexcept {
  return changeMember(library, member,
                      [](ZoLibrary& in, const ZoFileName& name) { return in.recoverFile(name); });
}

int zocLibraryReorganize(ZocLibrary library) noexcept {
  return call([&] {
    const Use<Library> use(library);
    const Reorganizing mark(*use);
    return use->library.reorganize();
  });
}

int zocLibraryVerify(ZocLibrary library, ZocText member) noexcept {
  return withMember(library, member, [](ZoLibrary& in, const ZoFileName& name) {
    ZoLibEntry entry;
    if (const int code = in.getEntry(name, entry)) return code;
    return in.verify(entry);
  });
}

int zocLibraryBeginBatch(ZocLibrary library) noexcept {
  return change(library, [](Library& in) {
    if (in.reorganizing != 0) throw Refusal{ZOC_WRONG_THREAD};
    Names none;
    const int code = in.library.beginBatch();
    if (code == 0) in.batch.emplace(std::move(none));
    return code;
  });
}

int zocLibraryEndBatch(ZocLibrary library) noexcept {
  return endBatch(library, [](ZoLibrary& in) { return in.endBatch(); });
}

int zocLibraryCancelBatch(ZocLibrary library) noexcept {
  return endBatch(library, [](ZoLibrary& in) { return in.cancelBatch(); });
}

int zocLibraryList(ZocLibrary library, int withDeleted, ZocValue out) noexcept {
  return with(library, [&](ZoLibrary& in) {
    const Use<Value> to(out);
    ZoArray<ZoVariant> entries;
    const auto add = [&](const ZoLibEntry& entry) {
      if (entries.append(entryOf(entry))) throw std::bad_alloc();
      return true;
    };
    if (const int code = in.forEachEntry(add, withDeleted != 0)) return code;
    to->variant = ZoVariant(std::move(entries));
    return 0;
  });
}

int zocLibrarySize(ZocLibrary library, ZocText member, uint64_t* size) noexcept {
  return withMember(library, member, [&](ZoLibrary& in, const ZoFileName& name) {
    ZoLibEntry entry;
    std::uint64_t& target = required(size);
    if (const int code = in.getEntry(name, entry)) return code;
    target = entry.size;
    return 0;
  });
}

int zocLibraryRead(ZocLibrary library, ZocText member, uint64_t offset, void* bytes, uint32_t size,
                   uint32_t* got) noexcept {
  return withMember(library, member, [&](ZoLibrary& in, const ZoFileName& name) {
    require(zo::canBeMemory(bytes, size));
    std::uint32_t& count = required(got);
    ZoFile file;
    if (const int code = in.getFile(file, name)) return code;
    return readAt(file, offset, bytes, size, count);
  });
}

int zocLibraryWrite(ZocLibrary library, ZocText member, const void* bytes, uint32_t size,
                    int mode) noexcept {
  return addMember(library, member, true, [&](ZoLibrary& in, const ZoFileName& name) {
    require(zo::canBeMemory(bytes, size));
    ZoFile file;
    if (const int code = in.getFile(file, name, ZoFile::kWrite, modeOf(mode))) return code;
    if (file.write(bytes, size) == size) return file.close();
    file.cancel();
    return int{ZOC_REFUSED};
  });
}
