#include "files/make_folders.h"

#include <utility>
#include <vector>

#include "files/ftp.h"
#include "names/name_parser.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

namespace zo {
namespace {

// The path without its last component; empty when there is none to take away.
std::wstring parentOf(std::wstring path) {
  while (!path.empty() && isDelimiter(path.back())) path.pop_back();
  while (!path.empty() && !isDelimiter(path.back())) path.pop_back();
  return path;
}

// The platform's errors tell what is there and what is missing.
struct Disk {
  using Kept = KeptError;
  bool make(const std::wstring& path) { return fileApi().createFolder(SystemPath(path.c_str())); }
  void remove(const std::wstring& path) { fileApi().removeFolder(SystemPath(path.c_str())); }
  bool isThere(const std::wstring&) { return GetLastError() == ERROR_ALREADY_EXISTS; }
  bool lacks(const std::wstring&) { return GetLastError() == ERROR_PATH_NOT_FOUND; }
};

// Servers refuse everything in the same way, so a folder is looked for by entering it.
struct Server {
  using Kept = KeptReason;
  bool make(const std::wstring& path) { return connection.createFolder(path); }
  void remove(const std::wstring& path) { connection.removeFolder(path); }
  bool isThere(const std::wstring& path) {
    const Kept kept;
    return connection.isFolder(path);
  }
  bool lacks(const std::wstring& path) { return path != L"/" && !isThere(path); }

  FtpConnection& connection;
};

// What was made on the way, removed again unless all could be made.
template <class Place>
struct Made {
  ~Made() {
    if (folders.empty()) return;
    try {
      const typename Place::Kept kept;
      for (std::size_t i = folders.size(); i-- > 0;) place.remove(folders[i]);
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): empty folders stay
    }
  }

  Place& place;
  std::vector<std::wstring> folders;
};

// From the folder upwards until one can be made, and down again. Somebody else may make a folder on
// the way, but not the last one.
template <class Place>
bool makeAll(Place place, const std::wstring& path) {
  std::vector<std::wstring> missing{path};
  bool isOurs = true;  // what was made last
  while (!place.make(missing.back())) {
    isOurs = missing.size() <= 1 || !place.isThere(missing.back());
    if (!isOurs) break;
    std::wstring parent = parentOf(missing.back());
    if (parent.empty() || !place.lacks(parent)) return false;
    missing.push_back(std::move(parent));
  }
  Made<Place> made{.place = place, .folders = {}};
  made.folders.reserve(missing.size());
  while (missing.size() > 1) {
    if (isOurs) made.folders.push_back(std::move(missing.back()));
    missing.pop_back();
    isOurs = place.make(missing.back());
    if (isOurs || (missing.size() > 1 && place.isThere(missing.back()))) continue;
    return false;
  }
  made.folders.clear();
  return true;
}

}  // namespace

bool makeFolders(const std::wstring& path) { return makeAll(Disk{}, path); }
bool makeFolders(FtpConnection& server, const std::wstring& path) {
  return makeAll(Server{server}, path);
}

}  // namespace zo
