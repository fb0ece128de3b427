// Erasing files, directories, trees and backups.
#include "files/ftp.h"
#include "files/std_file_system_imp.h"
#include "platform/case_fold.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

#include <algorithm>

namespace {

constexpr wchar_t kAnyName[] = L"*";
constexpr wchar_t kBackupEnding[] = L".bak";

bool isDelimiter(wchar_t c) { return c == L'\\' || c == L'/'; }

std::wstring inFolder(std::wstring folder, const wchar_t* name) {
  if (!folder.empty() && !isDelimiter(folder.back())) folder += L'\\';
  return folder += name;
}

// Patterns also match the platform's short names ("BACKUP~1.BAK"), which are not meant.
bool isBackup(std::wstring_view name) {
  const std::wstring_view ending = kBackupEnding;
  if (name.size() < ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), name.end() - 4,
                    [](wchar_t a, wchar_t b) { return a == zo::lowerFold(b); });
}

// An empty name, or one that comes to the root of a volume.
bool isRoot(const ZoFileName& name) {
  const std::wstring full = zo::textOf([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().fullPath(name.fullName(), size, buffer);
  });
  ZoFileName directory;
  directory.setFullName(full.c_str(), false, true);
  return full.empty() || !directory.nextDirPart(true);
}

bool isFolder(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace

int ZoStdFileSystemImp::Erased::code() const {
  if (failed == 0) return ZoResult::ok;
  return done == 0 ? ZoResult::refused : ZoResult::partial;
}

void ZoStdFileSystemImp::eraseFile(const std::wstring& path, Erased& erased) {
  const bool done = zo::fileApi().removeFile(zo::SystemPath(path.c_str()));
  ++(done ? erased.done : erased.failed);
  if (!done) report(L"erase File");
}

void ZoStdFileSystemImp::eraseFolder(const std::wstring& path, Erased& erased) {
  const bool done = zo::fileApi().removeFolder(zo::SystemPath(path.c_str()));
  ++(done ? erased.done : erased.failed);
  if (!done) report(L"erase Directory");
}

// Passes each entry of a folder on, but "." and "..".
template <class Entry>
void ZoStdFileSystemImp::forEachIn(const std::wstring& folder, const wchar_t* pattern,
                                   Erased& erased, Entry entry) {
  zo::FileApi& api = zo::fileApi();
  WIN32_FIND_DATAW found;
  const std::wstring all = inFolder(folder, pattern);
  HANDLE search = api.findFirst(zo::SystemPath(all.c_str()), found);
  bool more = search != INVALID_HANDLE_VALUE;
  while (more) {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") entry(found);
    more = api.findNext(search, found);
  }
  const DWORD error = GetLastError();
  if (search != INVALID_HANDLE_VALUE) api.findClose(search);
  if (error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND) return;
  ++erased.failed;
  report(L"erase", error);
}

void ZoStdFileSystemImp::eraseTree(const std::wstring& folder, Erased& erased) {
  forEachIn(folder, kAnyName, erased, [&](const WIN32_FIND_DATAW& entry) {
    const std::wstring path = inFolder(folder, entry.cFileName);
    if (!isFolder(entry.dwFileAttributes)) {
      eraseFile(path, erased);
    } else if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
      eraseFolder(path, erased);
    } else {
      eraseTree(path, erased);
    }
  });
  // What could not be erased keeps the folder, and has been reported with its own reason.
  if (erased.failed == 0) eraseFolder(folder, erased);
}

void ZoStdFileSystemImp::eraseBackups(const ZoFileName& name, Erased& erased) {
  if (!isFolder(zo::fileApi().attributes(zo::SystemPath(name.fullName())))) {
    ZoFileName backup = name;
    backup.setExtension(kBackupEnding);
    const std::wstring path = backup.fullName();
    const DWORD attributes = zo::fileApi().attributes(zo::SystemPath(path.c_str()));
    if (attributes != INVALID_FILE_ATTRIBUTES) eraseFile(path, erased);
    return;
  }
  const std::wstring folder = name.fullName();
  const std::wstring pattern = std::wstring(kAnyName) + kBackupEnding;
  forEachIn(folder, pattern.c_str(), erased, [&](const WIN32_FIND_DATAW& entry) {
    if (!isFolder(entry.dwFileAttributes) && isBackup(entry.cFileName))
      eraseFile(inFolder(folder, entry.cFileName), erased);
  });
}

int ZoStdFileSystemImp::erase(const ZoFileName& name, ZoFileSystem::EraseType type) {
  if (name.isURL()) return eraseRemote(name, type);
  Erased erased;
  switch (type) {
    case ZoFileSystem::kFile:
      eraseFile(name.fullName(), erased);
      break;
    case ZoFileSystem::kDirectory:
      eraseFolder(name.fullName(), erased);
      break;
    case ZoFileSystem::kTree: {
      if (isRoot(name)) return report(L"erase", ERROR_ACCESS_DENIED);
      const DWORD attributes = zo::fileApi().attributes(zo::SystemPath(name.fullName()));
      if (isFolder(attributes) && (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
        eraseFolder(name.fullName(), erased);
      } else {
        eraseTree(name.fullName(), erased);
      }
      break;
    }
    case ZoFileSystem::kBackups:
      eraseBackups(name, erased);
      break;
    default:
      return report(L"erase", ERROR_INVALID_PARAMETER);
  }
  return erased.code();
}

namespace {

// A tree on a server, as far as it can be erased; false when something is left.
bool eraseServerTree(zo::FtpConnection& server, const std::wstring& folder, unsigned int& done) {
  std::vector<zo::FtpConnection::Entry> entries;
  if (!server.list(folder, entries)) return false;
  bool all = true;
  for (const auto& entry : entries) {
    const std::wstring path = folder + L'/' + entry.name;
    const bool erased =
        entry.isFolder ? eraseServerTree(server, path, done) : server.removeFile(path);
    if (erased) ++done;
    all = all && erased;
  }
  if (!all || !server.removeFolder(folder)) return false;
  ++done;
  return true;
}

// The backups in a folder.
bool eraseServerBackups(zo::FtpConnection& server, const std::wstring& folder, unsigned int& done) {
  std::vector<zo::FtpConnection::Entry> entries;
  if (!server.list(folder, entries)) return false;
  bool all = true;
  for (const auto& entry : entries) {
    if (entry.isFolder || !isBackup(entry.name)) continue;
    const bool erased = server.removeFile(folder + L'/' + entry.name);
    if (erased) ++done;
    all = all && erased;
  }
  return all;
}

}  // namespace

int ZoStdFileSystemImp::eraseRemote(const ZoFileName& name, ZoFileSystem::EraseType type) {
  constexpr wchar_t kAgent[] = L"ZoFindFile";
  return zo::onServer(name, kAgent, service_, [&](zo::FtpConnection& server) {
    std::wstring path = zo::ftpPath(name);
    const bool trailing = path.size() > 1 && path.back() == L'/';
    if (trailing) path.pop_back();
    unsigned int done = 0;
    bool all = false;
    switch (type) {
      case ZoFileSystem::kFile:
        all = server.removeFile(path);
        break;
      case ZoFileSystem::kDirectory:
        all = server.removeFolder(path);
        break;
      case ZoFileSystem::kTree:
        if (path.size() <= 1) return report(kAgent, ERROR_ACCESS_DENIED);
        all = eraseServerTree(server, path, done);
        break;
      case ZoFileSystem::kBackups:
        all = eraseServerBackups(server, path, done);
        break;
      default:
        return report(kAgent, ERROR_INVALID_PARAMETER);
    }
    if (all) return ZoResult::ok;
    report(kAgent);
    return done == 0 ? ZoResult::refused : ZoResult::partial;
  });
}
