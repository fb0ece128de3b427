// Files of a server.
#include <algorithm>

#include "files/folder_search.h"
#include "files/fresh_file.h"
#include "files/ftp.h"
#include "files/replace_file.h"
#include "files/std_file_system_imp.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

namespace {

// A component of a server's name as one of the file system's, which may not lead anywhere else.
std::wstring asComponent(std::wstring_view text) {
  std::wstring component(text);
  for (wchar_t& c : component) {
    if (c < L' ' || std::wstring_view(L"<>\"|:?*\\/").find(c) != std::wstring_view::npos) c = L'_';
  }
  const ZoFileName alone(component.c_str());
  return alone.isContained() && alone.possibleOnVolume() ? component : L'_' + component + L'_';
}

// Where the copy of a server's file has its place.
std::wstring placeFor(const zo::FtpAddress& address, const std::wstring& tempFolder) {
  std::wstring place = tempFolder + LR"(zo_remote\)" + asComponent(address.host);
  if (address.port) place += L'_' + std::to_wstring(address.port);
  std::wstring_view rest = address.path;
  while (!rest.empty()) {
    const size_t slash = std::min(rest.find(L'/'), rest.size());
    if (slash > 0) place += L'\\' + asComponent(rest.substr(0, slash));
    rest.remove_prefix(std::min(slash + 1, rest.size()));
  }
  return place;
}

// Gives what was sent its name. Servers that refuse to rename onto a file get the old one erased
// first; should the renaming fail even then, what was sent stays under its other name.
bool putInPlace(zo::FtpConnection& server, const std::wstring& sent, const std::wstring& target) {
  if (server.rename(sent, target)) return true;
  const zo::KeptReason kept;
  if (server.removeFile(target)) return server.rename(sent, target);
  server.removeFile(sent);
  return false;
}

}  // namespace

int ZoStdFileSystemImp::isRemote(const ZoFileName& name, ZoFileName& local) {
  const zo::FtpAddress address = zo::ftpAddress(name);
  if (address.host.empty()) return ZoResult::refused;
  ZoFileName place = name.localAlias();
  if (place.isEmpty()) {
    const std::wstring folder = zo::platformText(
        [](DWORD size, wchar_t* buffer) { return zo::fileApi().tempFolder(size, buffer); });
    if (folder.empty()) return report(L"isRemote");
    place = std::wstring_view(placeFor(address, folder));
  }
  local = std::move(place);
  return ZoResult::ok;
}

int ZoStdFileSystemImp::getRemote(const ZoFileName& remote, ZoFileName& local, bool failIfExists) {
  ZoFileName place = local;
  if (place.isURL() || zo::ftpAddress(remote).host.empty()) return noUse(L"getRemote");
  if (place.isEmpty() && isRemote(remote, place)) return ZoResult::refused;
  return zo::onServer(remote, L"getRemote", service_, [&](zo::FtpConnection& server) {
    const ZoFileName folder(zo::folderOf(place));
    const bool missing =
        !folder.isEmpty() &&
        zo::fileApi().attributes(zo::SystemPath(folder.fullName())) == INVALID_FILE_ATTRIBUTES;
    if (missing) {
      if (const int code = createDirectory(folder)) return code;
    }
    zo::FreshFile beside = zo::nameFresh(zo::stemBeside(place), zo::kEndingBeside);
    beside.isOurs = true;  // also what came in part
    const zo::SystemPath target(place.fullName());
    if (!server.get(zo::ftpPath(remote), beside.path.c_str()) ||
        !zo::putInPlace(beside, target, failIfExists)) {
      return report(L"getRemote");
    }
    local = std::move(place);
    return ZoResult::ok;
  });
}

int ZoStdFileSystemImp::putRemote(const ZoFileName& local, const ZoFileName& remote) {
  if (local.isURL()) return noUse(L"putRemote");
  return zo::onServer(remote, L"putRemote", service_, [&](zo::FtpConnection& server) {
    const std::wstring target = zo::ftpPath(remote);
    const std::wstring sent = zo::freshName(target + L'~', zo::kEndingBeside);
    if (!server.put(zo::SystemPath(local.fullName()), sent)) {
      const zo::KeptReason kept;
      server.removeFile(sent);
    } else if (putInPlace(server, sent, target)) {
      return ZoResult::ok;
    }
    return report(L"putRemote");
  });
}
