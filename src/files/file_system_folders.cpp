// Directories, and names that only the file system can complete.
#include <zo/text/containers/array.h>

#include <algorithm>
#include <array>

#include "files/folder_search.h"
#include "files/fresh_file.h"
#include "files/ftp.h"
#include "files/make_folders.h"
#include "files/std_file_system_imp.h"
#include "platform/open_file.h"
#include "platform/system_path.h"
#include "text/collation.h"

namespace {

int setDirectoryName(ZoFileName& name, const std::wstring& text) {
  ZoFileName directory;
  static_cast<void>(directory.setFullName(text, false, true));  // what the platform takes is a name
  name = std::move(directory);
  return ZoResult::ok;
}

// Makes an empty file with the first three characters of a prefix, ours when it could be made.
zo::FreshFile temporaryFile(const std::wstring& folder, std::wstring_view prefix) {
  if (folder.size() > zo::FileApi::kLongestTempFolder) {
    return zo::createFresh(folder + std::wstring(prefix.substr(0, 3)), L".tmp", GENERIC_WRITE, 0,
                           FILE_ATTRIBUTE_NORMAL);
  }
  zo::FreshFile fresh;
  for (std::wstring* text : {&fresh.name, &fresh.path}) text->reserve(MAX_PATH);
  std::array<wchar_t, MAX_PATH> made{};
  fresh.isOurs = zo::fileApi().tempName(folder.c_str(), std::wstring(prefix).c_str(), made);
  for (std::wstring* text : {&fresh.name, &fresh.path}) text->assign(made.data());
  return fresh;
}

}  // namespace

int ZoStdFileSystemImp::createDirectory(const ZoFileName& name) {
  if (name.isURL()) {
    return zo::onServer(name, L"ZoFileSystemCreateDir", service_, [&](zo::FtpConnection& server) {
      return result(zo::makeFolders(server, zo::ftpPath(name)), L"ZoFileSystemCreateDir");
    });
  }
  return result(zo::makeFolders(name.fullName()), L"ZoFileSystemCreateDir");
}

int ZoStdFileSystemImp::getCurrentDirectory(ZoFileName& name) {
  const std::wstring text = zo::platformText(
      [](DWORD size, wchar_t* buffer) { return zo::fileApi().currentFolder(size, buffer); });
  return text.empty() ? report(L"getCurrentDirectory") : setDirectoryName(name, text);
}

int ZoStdFileSystemImp::setCurrentDirectory(const ZoFileName& name) {
  if (name.isURL()) return noUse(L"setCurrentDirectory");
  return result(zo::fileApi().setCurrentFolder(name.fullName()), L"setCurrentDirectory");
}

int ZoStdFileSystemImp::getTempPath(ZoFileName& name) {
  const std::wstring text = zo::platformText(
      [](DWORD size, wchar_t* buffer) { return zo::fileApi().tempFolder(size, buffer); });
  return text.empty() ? report(L"getTempPath") : setDirectoryName(name, text);
}

int ZoStdFileSystemImp::getFullPathName(const ZoFileName& name, ZoFileName& full) {
  if (name.isURL()) return noUse(L"getFullPathName");
  const std::wstring text = zo::platformText([&](DWORD size, wchar_t* buffer) {
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
  static_cast<void>(name.parseCD(volume, rest));  // as it is one
  const ZoString label(volume.mid(5));            // behind "cd://"
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
  if (file.isURL()) return noUse(L"searchPath");
  const wchar_t* const folders = path.isEmpty() ? nullptr : path.fullName();
  const std::wstring text = zo::platformText([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().searchPath(folders, file.fullName(), size, buffer);
  });
  if (text.empty()) return report(L"searchPath");
  found = std::wstring_view(text);
  return ZoResult::ok;
}

int ZoStdFileSystemImp::getTempFileName(ZoFileName& name, const ZoFileName& pattern) {
  if (pattern.isURL()) return noUse(L"getTempFileName");
  std::wstring folder(zo::folderOf(pattern));
  if (folder.empty()) {
    folder = zo::platformText(
        [](DWORD size, wchar_t* buffer) { return zo::fileApi().tempFolder(size, buffer); });
    if (folder.empty()) return report(L"getTempFileName");
  }
  zo::FreshFile made = temporaryFile(folder, pattern.fileName());
  if (!made.isOurs || !made.file.close()) return report(L"getTempFileName");
  name = made.name;
  made.isOurs = false;
  return ZoResult::ok;
}
