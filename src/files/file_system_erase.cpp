// Erasing files, directories, trees and backups, here and on a server.
#include <algorithm>
#include <vector>

#include "files/folder_search.h"
#include "files/ftp.h"
#include "files/std_file_system_imp.h"
#include "names/name_parser.h"
#include "names/wildcard.h"
#include "platform/system_path.h"

namespace {

constexpr wchar_t kBackupEnding[] = L".bak";
constexpr wchar_t kAgent[] = L"ZoFindFile";

// Where things are erased.
class Place {
 public:
  // What failures are reported under.
  struct Names {
    const wchar_t *file, *folder, *walk;
  };

  Place(const Names& operations, wchar_t separator) : names(operations), delimiter(separator) {}
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  virtual ~Place() = default;

  virtual bool removeFile(const std::wstring& path) = 0;
  virtual bool removeFolder(const std::wstring& path) = 0;
  virtual bool isFolder(const std::wstring& path) = 0;
  // The folder has its final delimiter. What is found need not fit the pattern.
  virtual zo::FolderSearch search(const std::wstring& folder, const std::wstring& pattern) = 0;

  const Names names;
  const wchar_t delimiter;
};

class Disk final : public Place {
 public:
  Disk() : Place({.file = L"erase File", .folder = L"erase Directory", .walk = L"erase"}, L'\\') {}
  bool removeFile(const std::wstring& path) override {
    return zo::fileApi().removeFile(zo::SystemPath(path.c_str()));
  }
  bool removeFolder(const std::wstring& path) override {
    return zo::fileApi().removeFolder(zo::SystemPath(path.c_str()));
  }
  bool isFolder(const std::wstring& path) override {
    const DWORD attributes = zo::fileApi().attributes(zo::SystemPath(path.c_str()));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
  }
  zo::FolderSearch search(const std::wstring& folder, const std::wstring& pattern) override {
    return {folder, pattern};
  }
};

class Server final : public Place {
 public:
  explicit Server(zo::FtpConnection& server)
      : Place({.file = kAgent, .folder = kAgent, .walk = kAgent}, L'/'), server_(server) {}
  bool removeFile(const std::wstring& path) override { return server_.removeFile(path); }
  bool removeFolder(const std::wstring& path) override { return server_.removeFolder(path); }
  bool isFolder(const std::wstring& path) override { return server_.isFolder(path); }
  zo::FolderSearch search(const std::wstring& folder, const std::wstring&) override {
    return {server_, folder};
  }

 private:
  zo::FtpConnection& server_;
};

// Counts what is done, so that nothing, all and a part can be told apart.
class Eraser {
 public:
  Eraser(Place& place, ZoFileSystem& service) : place_(place), service_(service) {}

  int erase(const std::wstring& path, ZoFileSystem::EraseType type) {
    switch (type) {
      case ZoFileSystem::kFile:
        removeFile(path);
        break;
      case ZoFileSystem::kDirectory:
        removeFolder(path);
        break;
      case ZoFileSystem::kTree:
        eraseTree(path);
        break;
      case ZoFileSystem::kBackups:
        eraseBackups(path);
        break;
      default:
        failed(place_.names.walk, ERROR_INVALID_PARAMETER);
        break;
    }
    if (failed_ == 0) return ZoResult::ok;
    return done_ == 0 ? ZoResult::refused : ZoResult::partial;
  }

 private:
  void failed(const wchar_t* operation, DWORD error) {
    ++failed_;
    zo::keepReason(operation, error, ZoResult::refused, &service_);
  }

  void removeFile(const std::wstring& path) {
    if (place_.removeFile(path)) {
      ++done_;
    } else {
      failed(place_.names.file, GetLastError());
    }
  }

  void removeFolder(const std::wstring& path) {
    if (place_.removeFolder(path)) {
      ++done_;
    } else {
      failed(place_.names.folder, GetLastError());
    }
  }

  [[nodiscard]] std::wstring withDelimiter(std::wstring folder) const {
    if (!folder.empty() && !zo::isDelimiter(folder.back())) folder += place_.delimiter;
    return folder;
  }

  // Passes each entry on, with its path.
  template <class Visit>
  void forEachIn(const std::wstring& folder, const std::wstring& pattern, Visit visit) {
    const std::wstring base = withDelimiter(folder);
    zo::FolderSearch search = place_.search(base, pattern);
    WIN32_FIND_DATAW entry;
    while (search.next(entry)) visit(entry, base + entry.cFileName);
    if (search.error()) failed(place_.names.walk, search.error());
  }

  // Files as they are found, then the folders, those within others first. Links to folders are
  // removed, and never followed.
  void eraseTree(const std::wstring& root) {
    std::vector<std::wstring> folders{root};
    for (size_t i = 0; i < folders.size(); ++i) {
      forEachIn(std::wstring(folders[i]), L"*", [&](const auto& entry, const std::wstring& path) {
        constexpr DWORD kFolder = FILE_ATTRIBUTE_DIRECTORY, kLink = FILE_ATTRIBUTE_REPARSE_POINT;
        if (!(entry.dwFileAttributes & kFolder)) {
          removeFile(path);
        } else if (entry.dwFileAttributes & kLink) {
          removeFolder(path);
        } else {
          folders.push_back(path);
        }
      });
    }
    const bool allGone = failed_ == 0;
    for (size_t i = folders.size(); i-- > 0;) {
      if (place_.removeFolder(folders[i])) {
        ++done_;
      } else if (allGone) {
        failed(place_.names.folder, GetLastError());
      }  // else what is left in it has been reported with its own reason
    }
  }

  // Of a folder or of a file. The search may have found more than was meant, such as a short name
  // ("BACKUP~1.BAK") that fits.
  void eraseBackups(const std::wstring& path) {
    const bool isFolder = place_.isFolder(path);
    ZoFileName backup(path.c_str());
    if (!isFolder && (backup.isEmpty() || backup.setExtension(kBackupEnding) == ZoResult::refused))
      return failed(place_.names.walk, ERROR_INVALID_NAME);
    const std::wstring folder = isFolder ? path : std::wstring(zo::folderOf(backup));
    const std::wstring pattern =
        isFolder ? std::wstring(L"*") + kBackupEnding : std::wstring(backup.fileNameExt());
    if (!isFolder && !folder.empty() && !place_.isFolder(folder)) return;
    forEachIn(folder, pattern, [&](const auto& entry, const std::wstring& found) {
      const bool isFile = !(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
      if (isFile && zo::fitsWildcard(entry.cFileName, pattern)) removeFile(found);
    });
  }

  Place& place_;
  ZoFileSystem& service_;
  unsigned int done_ = 0, failed_ = 0;
};

// An empty name, or one that comes to the root of a volume.
bool isRoot(const ZoFileName& name) {
  std::wstring full = zo::platformText([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().fullPath(name.fullName(), size, buffer);
  });
  if (full.starts_with(LR"(\\?\UNC\)")) full.erase(2, 6);
  ZoFileName directory;
  // What is no name has no level either.
  static_cast<void>(directory.setFullName(full, false, true));
  return full.empty() || !directory.nextDirPart(true);
}

bool isLinkToFolder(const ZoFileName& name) {
  constexpr DWORD kLinked = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  const DWORD attributes = zo::fileApi().attributes(zo::SystemPath(name.fullName()));
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kLinked) == kLinked;
}

}  // namespace

int ZoStdFileSystemImp::erase(const ZoFileName& name, ZoFileSystem::EraseType type) {
  if (name.isURL()) return eraseRemote(name, type);
  if (type == ZoFileSystem::kTree) {
    if (isRoot(name)) return report(L"erase", ERROR_ACCESS_DENIED);
    if (isLinkToFolder(name)) type = ZoFileSystem::kDirectory;
  }
  Disk disk;
  return Eraser(disk, service_).erase(name.fullName(), type);
}

int ZoStdFileSystemImp::eraseRemote(const ZoFileName& name, ZoFileSystem::EraseType type) {
  return zo::onServer(name, kAgent, service_, [&](zo::FtpConnection& connection) {
    std::wstring path = zo::ftpPath(name);
    if (path.size() > 1 && path.back() == L'/') path.pop_back();
    if (type == ZoFileSystem::kTree && path.size() <= 1) return report(kAgent, ERROR_ACCESS_DENIED);
    Server server(connection);
    return Eraser(server, service_).erase(path, type);
  });
}
