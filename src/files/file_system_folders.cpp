// Directories, and names that only the file system can complete.
#include <zo/text/containers/array.h>

#include <algorithm>
#include <vector>

#include "files/folder_search.h"
#include "files/ftp.h"
#include "files/name_parser.h"
#include "files/std_file_system_imp.h"
#include "platform/collation.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

namespace {

// The path without its last component; empty when there is none to take away.
std::wstring parentOf(std::wstring path) {
  while (!path.empty() && zo::isDelimiter(path.back())) path.pop_back();
  while (!path.empty() && !zo::isDelimiter(path.back())) path.pop_back();
  return path;
}

bool makeFolder(const std::wstring& path) {
  return zo::fileApi().createFolder(zo::SystemPath(path.c_str()));
}

// Makes the folder with all above it that are missing, from the top; or none of them.
bool makeFolders(const std::wstring& path) {
  std::vector<std::wstring> missing{path};
  while (!makeFolder(missing.back())) {
    // Somebody else may make a folder on the way, but not the last one.
    if (GetLastError() == ERROR_ALREADY_EXISTS && missing.size() > 1) break;
    if (GetLastError() != ERROR_PATH_NOT_FOUND) return false;
    std::wstring parent = parentOf(missing.back());
    if (parent.empty() || parent == missing.back()) return false;
    missing.push_back(std::move(parent));
  }
  std::vector<std::wstring> made;
  while (missing.size() > 1) {
    made.push_back(std::move(missing.back()));
    missing.pop_back();
    if (makeFolder(missing.back())) continue;
    if (GetLastError() == ERROR_ALREADY_EXISTS && missing.size() > 1) continue;
    const zo::KeptError kept;
    // One that is not ours is not empty, or empty and somebody's: it must stay.
    for (size_t i = made.size(); i-- > 0;)
      zo::fileApi().removeFolder(zo::SystemPath(made[i].c_str()));
    return false;
  }
  return true;
}

int setDirectoryName(ZoFileName& name, const std::wstring& text) {
  ZoFileName directory;
  directory.setFullName(text.c_str(), false, true);
  name = std::move(directory);
  return ZoResult::ok;
}

}  // namespace

int ZoStdFileSystemImp::createDirectory(const ZoFileName& name) {
  if (name.isURL()) {
    return zo::onServer(name, L"ZoFileSystemCreateDir", service_, [&](zo::FtpConnection& server) {
      return result(server.createFolder(zo::ftpPath(name)), L"ZoFileSystemCreateDir");
    });
  }
  return result(makeFolders(name.fullName()), L"ZoFileSystemCreateDir");
}

int ZoStdFileSystemImp::getCurrentDirectory(ZoFileName& name) {
  const std::wstring text = zo::textOf(
      [](DWORD size, wchar_t* buffer) { return zo::fileApi().currentFolder(size, buffer); });
  return text.empty() ? report(L"getCurrentDirectory") : setDirectoryName(name, text);
}

int ZoStdFileSystemImp::setCurrentDirectory(const ZoFileName& name) {
  if (name.isURL()) return ZoResult::invalid;
  return result(zo::fileApi().setCurrentFolder(name.fullName()), L"setCurrentDirectory");
}

int ZoStdFileSystemImp::getTempPath(ZoFileName& name) {
  const std::wstring text = zo::textOf(
      [](DWORD size, wchar_t* buffer) { return zo::fileApi().tempFolder(size, buffer); });
  return text.empty() ? report(L"getTempPath") : setDirectoryName(name, text);
}

int ZoStdFileSystemImp::getFullPathName(const ZoFileName& name, ZoFileName& full) {
  if (name.isURL()) return ZoResult::invalid;
  const std::wstring text = zo::textOf([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().fullPath(name.fullName(), size, buffer);
  });
  if (text.empty()) return report(L"getFullPathName");
  full = std::wstring_view(text);
  return ZoResult::ok;
}

int ZoStdFileSystemImp::getAbsolutePath(ZoFileName& name) {
  if (name.isURL()) return ZoResult::ok;
  if (!name.isCD()) return getFullPathName(ZoFileName(name), name);
  ZoString volume, rest;
  name.parseCD(volume, rest);
  const ZoString label(volume.mid(5));  // behind "cd://"
  ZoArray<ZoFileName> drives;
  ZoArray<ZoString> labels;
  if (const int code = service_.getCDRom(drives, labels)) return code;
  for (unsigned int i = 0; i < drives.entries(); ++i) {
    if (!zo::equalIgnoreCase(labels[i].view(), label.view())) continue;
    std::wstring path = drives[i].drive() + std::wstring(rest.view());
    std::replace(path.begin(), path.end(), L'/', L'\\');
    if (path.size() == 2) path += L'\\';
    name = std::wstring_view(path);
    return ZoResult::ok;
  }
  return report(L"getAbsolutePath", ERROR_NOT_READY);
}

int ZoStdFileSystemImp::searchPath(const ZoFileName& file, ZoFileName& found,
                                   const ZoFileName& path) {
  if (file.isURL()) return ZoResult::invalid;
  const wchar_t* const folders = path.isEmpty() ? nullptr : path.fullName();
  const std::wstring text = zo::textOf([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().searchPath(folders, file.fullName(), size, buffer);
  });
  if (text.empty()) return report(L"searchPath");
  found = std::wstring_view(text);
  return ZoResult::ok;
}

int ZoStdFileSystemImp::getTempFileName(ZoFileName& name, const ZoFileName& pattern) {
  if (pattern.isURL()) return ZoResult::invalid;
  std::wstring folder(zo::folderOf(pattern));
  if (folder.empty()) {
    folder = zo::textOf(
        [](DWORD size, wchar_t* buffer) { return zo::fileApi().tempFolder(size, buffer); });
    if (folder.empty()) return report(L"getTempFileName");
  }
  wchar_t made[MAX_PATH];
  if (!zo::fileApi().tempName(folder.c_str(), pattern.fileName(), made))
    return report(L"getTempFileName");
  name = static_cast<const wchar_t*>(made);
  return ZoResult::ok;
}
