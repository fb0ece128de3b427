#include <windows.h>
#include <zo/files/file.h>
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>
#include <zo/files/find_file.h>
#include <zo/files/std_file_system.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "files/buffered_file.h"
#include "files/folder_search.h"
#include "files/keep_reason.h"
#include "files/replace_file.h"
#include "names/name_parser.h"
#include "platform/file_api.h"
#include "platform/system_path.h"
#include "system/service_or_null.h"

namespace {

constexpr unsigned int kPiece = 256 * 1024;

struct Item {
  ZoFileName source, target;
  std::int64_t size = 0;  // when the run began
  bool done = false;
};

DWORD attributesOf(const ZoFileName& name) {
  return zo::fileApi().attributes(zo::SystemPath(name.fullName()));
}

// 0 for what is not there, or on a server.
std::int64_t sizeOf(const ZoFileName& name) {
  if (name.isURL()) return 0;
  WIN32_FIND_DATAW entry;
  HANDLE search = zo::fileApi().findFirst(zo::SystemPath(name.fullName()), entry);
  if (search == INVALID_HANDLE_VALUE) return 0;
  zo::fileApi().findClose(search);
  return static_cast<std::int64_t>((std::uint64_t{entry.nFileSizeHigh} << 32) | entry.nFileSizeLow);
}

int report(DWORD error) { return zo::keepReason(L"transfer", error); }

}  // namespace

struct ZoFileTransfer::Imp {
  std::vector<Item> items;
  ZoArray<Failure> failures;
  Watcher watcher;
  bool refusesExisting = false;
  bool cancelled = false;

  // The service in force, else one of our own.
  ZoFileSystem& fileSystem() {
    if (auto* const inForce = zo::serviceOrNull<ZoFileSystem>()) return *inForce;
    if (!ownService) ownService = std::make_unique<ZoStdFileSystem>();
    return *ownService;
  }
  std::unique_ptr<ZoStdFileSystem> ownService;

  // Somebody else may make it at the same time.
  int makeFolderOf(const ZoFileName& target) {
    const ZoFileName folder(zo::folderOf(target));
    if (folder.isEmpty() || attributesOf(folder) != INVALID_FILE_ATTRIBUTES) return ZoResult::ok;
    const int code = fileSystem().createDirectory(folder);
    return code && attributesOf(folder) != INVALID_FILE_ATTRIBUTES ? ZoResult::ok : code;
  }

  // Of the run.
  unsigned int filesDone = 0, files = 0;
  std::int64_t bytesDone = 0, bytes = 0;

  // false when the run is to end.
  bool tell(const Item& item, std::int64_t ofThis) {
    if (cancelled) return false;
    if (watcher) {
      cancelled = !watcher({.source = item.source,
                            .target = item.target,
                            .filesDone = filesDone,
                            .files = files,
                            .bytesDone = bytesDone + std::min(ofThis, item.size),
                            .bytes = bytes});
    }
    return !cancelled;
  }

  // 0, or a code; a cancelled run ends with 1.
  int pour(const Item& item, ZoFile& from, ZoFileSave& save) {
    const auto buffer = std::make_unique<std::byte[]>(kPiece);
    const std::int64_t size = from.size();
    if (size < 0) return ZoResult::refused;
    for (std::int64_t moved = 0; moved < size;) {
      const unsigned int got = from.read(buffer.get(), kPiece);
      if (got == 0) return from.size() < size ? report(ERROR_HANDLE_EOF) : ZoResult::refused;
      if (zo::writeAll(save.file(), buffer.get(), got) != got) return ZoResult::refused;
      moved += got;
      if (moved < size && !tell(item, moved)) return report(ERROR_CANCELLED);
    }
    return ZoResult::ok;
  }

  int copyFile(const Item& item) {
    ZoFile from;
    ZoFileSave save;
    if (const int code = from.open(item.source, ZoFile::kRead, ZoFile::kOpenExisting,
                                   ZoFile::kShareRead, ZoFile::kSequential))
      return code;
    if (const int code = save.open(item.target)) return code;
    if (const int code = pour(item, from, save)) return code;
    if (save.file().setLastWriteTime(from.lastWriteTime())) return ZoResult::refused;
    const unsigned int attributes = from.attributes();
    if (attributes == 0) return ZoResult::refused;
    if (const int code = fileSystem().subSetAttributes(save.file().name(), attributes)) return code;
    return save.commit(false);
  }

  int fetchOrSend(const Item& item) {
    if (item.target.isURL()) return fileSystem().putRemote(item.source, item.target);
    ZoFileName local = item.target;
    return fileSystem().getRemote(item.source, local, refusesExisting);
  }

  int transfer(const Item& item, Mode mode) {
    const bool remote = item.source.isURL() || item.target.isURL();
    if (!item.target.isURL()) {
      if (const int code = makeFolderOf(item.target)) return code;
      const bool renames = mode == kMove && zo::differInCaseAtMost(item.source, item.target);
      if (refusesExisting && !renames && attributesOf(item.target) != INVALID_FILE_ATTRIBUTES)
        return report(ERROR_FILE_EXISTS);
    }
    if (mode == kMove && !remote) {
      if (zo::rename(item.source, item.target)) return ZoResult::ok;
      // Onto another volume, or what is there: by copying.
      const DWORD error = GetLastError();
      if (error != ERROR_NOT_SAME_DEVICE && error != ERROR_ALREADY_EXISTS) return report(error);
    }
    if (const int code = remote ? fetchOrSend(item) : copyFile(item)) return code;
    if (mode == kMove && fileSystem().erase(item.source, ZoFileSystem::kFile))
      return ZoResult::partial;
    return ZoResult::ok;
  }

  // What is done goes only when it is known to be: a watcher may throw.
  void dropDone() {
    std::erase_if(items, [](const Item& item) { return item.done; });
  }

  // Without memory for it the item stays in the list all the same, and the result tells.
  void note(const Item& item, int code) {
    try {
      static_cast<void>(failures.append(Failure{.source = item.source,
                                                .target = item.target,
                                                .code = code,
                                                .reason = fileSystem().errorTxt()}));
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): see above
    }
  }

  void begin() {
    dropDone();
    failures.removeAll();
    cancelled = false;
    filesDone = 0;
    files = static_cast<unsigned int>(items.size());
    bytesDone = bytes = 0;
    for (Item& item : items) bytes += item.size = sizeOf(item.source);
  }

  int run(Mode mode) {
    begin();
    for (Item& item : items) {
      if (!tell(item, 0)) break;
      const int code = transfer(item, mode);
      item.done = code == ZoResult::ok;
      if (!item.done && !cancelled) {
        note(item, code);
      }
      ++filesDone;
      bytesDone += item.size;
      tell(item, 0);
    }
    dropDone();
    if (items.empty()) return ZoResult::ok;
    if (cancelled) report(ERROR_CANCELLED);
    return items.size() < files ? ZoResult::partial : ZoResult::refused;
  }
};

ZoFileTransfer::ZoFileTransfer() : imp_(new Imp) {}
ZoFileTransfer::~ZoFileTransfer() { delete imp_; }

int ZoFileTransfer::add(const ZoFileName& source, const ZoFileName& target) {
  imp_->items.push_back({.source = source, .target = target});
  return ZoResult::ok;
}

int ZoFileTransfer::addTree(const ZoFileName& pattern, const ZoFileName& targetFolder) {
  std::wstring target(targetFolder.view());
  const wchar_t delimiter = targetFolder.delimiter();
  if (!target.empty() && !zo::isDelimiter(target.back())) target += delimiter;
  const size_t folder = zo::searchPlace(pattern).folder.size();
  int code = ZoResult::ok;
  ZoFindFile find;
  if (find.open(pattern, true)) return find.result();
  while (find.next()) {
    std::wstring below(find.path().substr(folder));
    // A server can call its files anything, even what would lead out of the target's folder.
    if (pattern.isURL() && !ZoFileName(below.c_str()).isContained()) {
      code = report(ERROR_INVALID_NAME);
      continue;
    }
    for (wchar_t& c : below) {
      if (zo::isDelimiter(c)) c = delimiter;
    }
    add(find.name(), ZoFileName(std::wstring_view(target + below)));
  }
  return code ? code : find.result();
}

unsigned int ZoFileTransfer::entries() const noexcept {
  return static_cast<unsigned int>(imp_->items.size());
}

void ZoFileTransfer::clear() noexcept { imp_->items.clear(); }
void ZoFileTransfer::onProgress(Watcher watcher) { imp_->watcher = std::move(watcher); }
void ZoFileTransfer::refuseExisting(bool refuse) noexcept { imp_->refusesExisting = refuse; }
int ZoFileTransfer::run(Mode mode) { return imp_->run(mode); }
bool ZoFileTransfer::wasCancelled() const noexcept { return imp_->cancelled; }
const ZoArray<ZoFileTransfer::Failure>& ZoFileTransfer::failures() const noexcept {
  return imp_->failures;
}
