#include "search/place.h"

#include <zo/library/library.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "files/folder_search.h"
#include "library/disk_file.h"
#include "names/name_compare.h"
#include "names/wildcard.h"
#include "platform/file_api.h"
#include "platform/open_file.h"
#include "platform/system_path.h"
#include "platform/time_value.h"

namespace zo {
namespace {

using Name = NameIndex::Name;

// Of a place that is kept in memory.
constexpr std::size_t kMostNames = 250000, kMostFolders = 1024;

// 0 for what is not there.
DWORD attributesOf(const std::wstring& path) {
  const DWORD attributes = fileApi().attributes(SystemPath(path.c_str()));
  return attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
}

std::wstring folderOfFile(const std::wstring& path) {
  return path.substr(0, path.find_last_of(L"\\/") + 1);
}

// Not on a network. Platforms may take longer for the answer than for a look at a file.
bool canBeWatched(const std::wstring& path) {
  if (path.size() < 3 || path[1] != L':') return false;
  return fileApi().driveType(path.substr(0, 3).c_str()) != DRIVE_REMOTE;
}

// Visits what is in a folder, with `below` also in those below it but for links to folders; false
// from the visitor ends it, and so does false from `enter`, which hears of each folder before that
// is read. False when that, or a folder that could not be read, ended it; without `enter`, one
// below may have gone meanwhile.
using Visit = std::function<bool(const std::wstring& path, const WIN32_FIND_DATAW& entry)>;
using Enter = std::function<bool(const std::wstring& folder)>;
bool visitFolder(const std::wstring& root, bool below, const Visit& visit,
                 const Enter& enter = {}) {
  std::vector<std::wstring> folders{L""};
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (enter && !enter(root + folders[i])) return false;
    FolderSearch search(root + folders[i], L"*");
    WIN32_FIND_DATAW entry;
    while (search.next(entry)) {
      const std::wstring path = folders[i] + entry.cFileName;
      if (!visit(path, entry)) return false;
      constexpr DWORD kPlain = FILE_ATTRIBUTE_DIRECTORY, kLink = FILE_ATTRIBUTE_REPARSE_POINT;
      if (below && (entry.dwFileAttributes & (kPlain | kLink)) == kPlain)
        folders.push_back(path + L'\\');
    }
    if (search.error() && (i == 0 || enter)) return false;
  }
  return true;
}

bool isFolderEntry(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::shared_ptr<const NameIndex> readFolder(const FilePlace& place, const Enter& enter) {
  const bool below = place.kind == FilePlace::kTree;
  std::vector<Name> names;
  const auto take = [&](const std::wstring& path, const WIN32_FIND_DATAW& e) {
    if (!below || !isFolderEntry(e)) names.push_back({path, {}, isFolderEntry(e)});
    const std::wstring shortName = e.cAlternateFileName;  // by which the platform finds it, too
    if (!shortName.empty() && shortName != e.cFileName && !(below && isFolderEntry(e)))
      names.push_back({folderOfFile(path) + shortName, {}, isFolderEntry(e)});
    return names.size() <= kMostNames;
  };
  if (!visitFolder(place.path, below, take, enter)) return nullptr;
  if (below) std::ranges::sort(names, comesFirst, &Name::path);
  return std::make_shared<NameIndex>(std::move(names),
                                     below ? NameIndex::kLast : NameIndex::kWhole);
}

// Empty for one that cannot be read: its change will be told like any other.
std::shared_ptr<const NameIndex> readLibrary(const FilePlace& place) {
  std::vector<Name> names;
  ZoLibrary library;
  if (library.open(ZoFileName(place.path)) == ZoResult::ok && library.isLibrary()) {
    const int code = library.forEachEntry([&](const ZoLibEntry& entry) {
      const std::wstring_view given = entry.name.view();
      std::wstring path = withBackslashes(given);
      std::wstring other = path == given ? std::wstring() : std::wstring(given);
      if (!path.empty()) names.push_back({std::move(path), std::move(other), false});
      return true;
    });
    if (code) names.clear();
  }
  return std::make_shared<NameIndex>(std::move(names), NameIndex::kWhole);
}

bool watch(const std::wstring& folder, FolderWatch::What what, KnownNames::Watches& watches) {
  FolderWatch made(folder.c_str(), what);
  if (!made || watches.size() == kMostFolders) return false;
  watches.push_back(std::make_shared<FolderWatch>(std::move(made)));
  return true;
}

KnownNames watchedLibrary(const FilePlace& place) {
  KnownNames known;
  if (canBeWatched(place.path)) watch(folderOfFile(place.path), FolderWatch::kFiles, known.watches);
  known.changes = std::make_shared<std::atomic<std::uint64_t>>(libraryChanges());
  known.stamp = stampOf(place.path);
  return known;
}

std::optional<std::wstring> findMember(const NameIndex& index, const std::wstring& name) {
  const Name* const found = index.find(name);
  if (!found) return std::nullopt;
  return found->given.empty() ? found->path : found->given;
}

// Of a tree the first of all that end in the name.
std::optional<std::wstring> walk(const FilePlace& place, const std::wstring& name) {
  std::optional<std::wstring> found;
  visitFolder(place.path, true, [&](const std::wstring& path, const WIN32_FIND_DATAW& entry) {
    if (!isFolderEntry(entry) && endsInLevels(path, name) && (!found || comesFirst(path, *found)))
      found = path;
    return true;
  });
  return found;
}

std::optional<std::wstring> findInTree(const FilePlace& place, const KnownNames& known,
                                       const std::wstring& name) {
  if (!known.index) return walk(place, name);
  const auto fits = [&](const Name& entry) { return endsInLevels(entry.path, name); };
  const Name* const found = known.index->find(lastComponent(name), fits);
  if (!found) return std::nullopt;
  return isFile(place.path + found->path) ? found->path : walk(place, name);
}

bool isPlainFile(const NameIndex::Name& name) { return !name.isFolder; }

std::optional<std::wstring> findInFolder(const FilePlace& place, const KnownNames& known,
                                         const std::wstring& name) {
  const std::size_t level = name.find(L'\\');
  if (known.index && level == name.npos) {
    if (!known.index->find(name, isPlainFile)) return std::nullopt;
  } else if (known.index) {  // of folders below only the first one's name is known
    const auto isThere = [](const Name& entry) { return entry.isFolder; };
    if (!known.index->find(std::wstring_view(name).substr(0, level), isThere)) return std::nullopt;
  }
  return isFile(place.path + name) ? std::optional(name) : std::nullopt;
}

}  // namespace

FileStamp stampOf(const std::wstring& file) {
  const OpenFile opened(fileApi().create(SystemPath(file.c_str()), FILE_READ_ATTRIBUTES,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                         OPEN_EXISTING, 0));
  FileStamp stamp;
  FILETIME written;
  if (!opened || !fileApi().size(opened.get(), stamp.size) ||
      !fileApi().times(opened.get(), nullptr, nullptr, &written))
    return {};
  stamp.written = timeValue(written);
  return stamp;
}

FileStamp stampOf(const FilePlace& place) {
  if (place.kind == FilePlace::kLibrary) return stampOf(place.path);
  WIN32_FILE_ATTRIBUTE_DATA is;
  if (!fileApi().details(SystemPath(place.path.c_str()), is)) return {};
  return {.size = static_cast<std::int64_t>(timeValue(is.ftCreationTime)),
          .written = timeValue(is.ftLastWriteTime)};
}

bool isFolder(const std::wstring& path) { return attributesOf(path) & FILE_ATTRIBUTE_DIRECTORY; }
bool isFile(const std::wstring& path) {
  const DWORD attributes = attributesOf(path);
  return attributes != 0 && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

FilePlace::FilePlace(Kind ofKind, std::wstring whole, std::wstring owner, int rank)
    : kind(ofKind), path(std::move(whole)), module(std::move(owner)), priority(rank) {}

bool isUpToDate(const FilePlace& library, const KnownNames& known) {
  const std::uint64_t changes = libraryChanges();
  if (!known.watches.empty() && *known.changes == changes) return true;
  if (known.stamp != stampOf(library.path)) return false;
  *known.changes = changes;
  return true;
}

KnownNames readNames(const FilePlace& place) {
  if (place.kind == FilePlace::kServer) return {};
  // Watched before it is read, so that no change is missed.
  KnownNames known;
  if (place.kind == FilePlace::kLibrary) {
    known = watchedLibrary(place);
    known.index = readLibrary(place);
  } else if (canBeWatched(place.path)) {
    known.stamp = stampOf(place);
    known.index = readFolder(place, [&](const std::wstring& folder) {
      return watch(folder, FolderWatch::kNames, known.watches);
    });
  }
  if (!known.index) known.watches.clear();
  return known;
}

KnownNames readAgain(const FilePlace& place, const KnownNames& before) {
  if (place.kind != FilePlace::kLibrary) return {};
  KnownNames known = watchedLibrary(place);
  known.index = known.stamp == before.stamp ? before.index : readLibrary(place);
  return known;
}

std::optional<std::wstring> findBelow(const FilePlace& place, const KnownNames& known,
                                      const std::wstring& name) {
  switch (place.kind) {
    case FilePlace::kFolder:
      return findInFolder(place, known, name);
    case FilePlace::kTree:
      return findInTree(place, known, name);
    case FilePlace::kLibrary:
      return known.index ? findMember(*known.index, name) : std::nullopt;
    default:
      return std::nullopt;
  }
}

std::vector<std::wstring> namesBelow(const FilePlace& place, const KnownNames& known,
                                     const std::wstring& pattern) {
  const std::wstring_view last = lastComponent(pattern);
  const std::wstring levels = pattern.substr(0, pattern.size() - last.size());
  std::vector<std::wstring> found;
  const auto take = [&](const std::wstring& path, const std::wstring& given) {
    const std::wstring_view name = lastComponent(path);
    if (!fitsWildcard(name, last)) return;
    const bool isBelow = place.kind == FilePlace::kTree;
    const std::wstring wanted = std::wstring(levels).append(name);
    if (isBelow ? endsInLevels(path, wanted) : equalNames(path, wanted)) found.push_back(given);
  };
  if (place.kind == FilePlace::kLibrary) {
    if (!known.index) return found;
    for (const Name& name : known.index->names())
      take(name.path, name.given.empty() ? name.path : name.given);
  } else if (place.kind != FilePlace::kServer) {
    const bool below = place.kind == FilePlace::kTree;
    const std::wstring start = below ? std::wstring() : levels;
    visitFolder(place.path + start, below, [&](const std::wstring& path, const auto& entry) {
      if (!isFolderEntry(entry)) take(start + path, start + path);
      return true;
    });
  }
  std::ranges::sort(found, [](const std::wstring& a, const std::wstring& b) {
    return comesFirst(withBackslashes(a), withBackslashes(b));
  });
  return found;
}

}  // namespace zo
