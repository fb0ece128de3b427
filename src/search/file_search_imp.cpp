#include "search/file_search_imp.h"

#include <windows.h>
#include <zo/files/file.h>
#include <zo/files/find_file.h>
#include <zo/library/library.h>
#include <zo/names/member_name.h>
#include <zo/results.h>
#include <zo/system/file_system.h>
#include <zo/system/macro_lib.h>
#include <zo/system/open_results.h>
#include <zo/text/containers/array.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "files/folder_search.h"
#include "files/make_folders.h"
#include "names/name_compare.h"
#include "names/name_levels.h"
#include "platform/file_api.h"
#include "platform/system_path.h"
#include "system/service_or_null.h"
#include "text/code_units.h"

namespace zo {
namespace {

// The name as seen from the current directory of its drive.
ZoFileName absolute(const ZoFileName& name) {
  return ZoFileName(std::wstring_view(platformText([&](DWORD size, wchar_t* buffer) {
    return fileApi().fullPath(name.fullName(), size, buffer);
  })));
}

ZoFound foundFile(ZoFileName name, ZoFound::Place place) {
  ZoFound found;
  found.name = std::move(name);
  found.place = place;
  return found;
}

ZoFound foundMember(const ZoFileName& library, const ZoFileName& member) {
  ZoFound found = foundFile(zoMemberName(library, member), ZoFound::kLibrary);
  found.library = library;
  found.member = member;
  return found;
}

// A relative name in the form in which places are asked; empty for one that would leave them.
std::wstring wantedBelow(const ZoFileName& name) {
  if (!name.isContained()) return {};
  if (name.view().find_first_of(L"\\/") == name.view().npos) return std::wstring(name.view());
  const ZoFileName normal = name.normalized();
  return normal.isContained() ? withBackslashes(normal.view()) : std::wstring();
}

// A URL without what a reader of a report is not to see.
std::wstring withoutPassword(const ZoFileName& url) {
  std::wstring text(url.view());
  const std::size_t begin = text.find(L"://");
  if (begin == text.npos) return text;
  const std::size_t end = std::min(text.find(L'/', begin + 3), text.size());
  const std::size_t sign = text.rfind(L'@', end);
  if (sign != text.npos && sign > begin) text.erase(begin + 3, sign - begin - 2);
  return text;
}

void tell(SearchReport* report, const ZoFileName& name, std::wstring_view answer) {
  if (report) report->tell(withoutPassword(name), answer);
}

bool hasKind(const ZoFileName& name, unsigned int kinds) {
  if (kinds == 0) return true;
  for (unsigned int kind = 0; kind <= ZoFileName::kAnyFile; ++kind)
    if ((kinds >> kind & 1) && name.isKindOf(static_cast<ZoFileName::FileKind>(kind))) return true;
  return false;
}

// The member as its library spells it; \ and / are one.
bool findSpelling(ZoLibrary& library, const ZoFileName& member, ZoFileName& spelled) {
  for (const auto& [from, to] : {std::pair(L'/', L'/'), {L'\\', L'/'}, {L'/', L'\\'}}) {
    std::wstring text(member.view());
    std::ranges::replace(text, from, to);
    ZoLibEntry entry;
    if (library.getEntry(ZoFileName(text), entry) != ZoResult::ok) continue;
    spelled = entry.name.isEmpty() ? ZoFileName(text) : entry.name;
    return true;
  }
  return false;
}

}  // namespace

int withoutMacro(const ZoFileName& name, ZoFileName& plain) {
  ZoFileName expanded = name.deepCopy();
  if (*name.macro()) {
    auto* const macros = serviceOrNull<ZoMacroLib>();
    const bool isKnown = macros && macros->expand(expanded) == ZoResult::ok;
    if (!isKnown && name.view().starts_with(L'$')) return ZoResult::refused;
    ZoFileName whole(expanded.view());
    if (whole.isURL() || whole.isCD())
      static_cast<void>(whole.setFullName(expanded.fullName(), true));
    expanded = std::move(whole);
  }
  if (expanded.isEmpty()) return ZoResult::refused;
  plain = std::move(expanded);
  return ZoResult::ok;
}

int FileSearchImp::locate(const ZoFileName& name, ZoFound& found, SearchReport* report) {
  ZoFileName plain;
  if (const int code = withoutMacro(name, plain)) {
    if (*name.macro()) tell(report, name, L"the macro is unknown");
    return code;
  }
  const bool hasMacro = *name.macro() != 0;
  if (hasMacro) tell(report, name, std::wstring(L"is ").append(withoutPassword(plain)));
  ZoFound result;
  const int code = zoIsMemberName(plain) ? locateMember(plain, result, report)
                                         : locateFile(plain, result, report);
  if (code && result.place == ZoFound::kNowhere) return code;
  if (hasMacro && result.place == ZoFound::kAsNamed) result.place = ZoFound::kMacro;
  found = std::move(result);
  return code;
}

int FileSearchImp::locateFile(const ZoFileName& name, ZoFound& found, SearchReport* report) {
  if (name.isURL()) return fetch(name, found, report);
  if (name.isCD() || !name.isRelativ()) return locateAsNamed(name, found, report);
  return locateBelow(name, found, report);
}

int FileSearchImp::locateAsNamed(const ZoFileName& name, ZoFound& found, SearchReport* report) {
  ZoFileName file = name.deepCopy();
  if (name.isCD()) {
    auto* const files = serviceOrNull<ZoFileSystem>();
    if (!files || files->getAbsolutePath(file) != ZoResult::ok) {
      tell(report, name, L"no drive has this disc");
      return ZoResult::refused;
    }
  }
  if (file.hasDeviceName() || !isFile(std::wstring(file.view()))) {
    tell(report, file, L"not there");
    return ZoResult::refused;
  }
  found = foundFile(absolute(file), name.isCD() ? ZoFound::kDisc : ZoFound::kAsNamed);
  tell(report, found.name, L"found");
  return ZoResult::ok;
}

int FileSearchImp::locateBelow(const ZoFileName& name, ZoFound& found, SearchReport* report) {
  const std::wstring wanted = wantedBelow(name);
  if (wanted.empty()) return locateAsNamed(name, found, report);
  std::wstring below;
  if (const auto place = finder_.find(wanted, below, report)) {
    if (place->kind == FilePlace::kLibrary) {
      found = foundMember(ZoFileName(place->path), ZoFileName(below));
    } else {
      const bool isNamed = place->asNamed;
      found = foundFile(ZoFileName(place->path + below),
                        isNamed ? ZoFound::kAsNamed : ZoFound::kFolder);
    }
    found.module = std::wstring_view(place->module);
    return ZoResult::ok;
  }
  for (const auto& server : finder_.servers()) {
    std::wstring url = server->path + wanted;
    std::ranges::replace(url, L'\\', L'/');
    const int code = fetch(ZoFileName(url), found, report);
    if (code && found.place == ZoFound::kNowhere) continue;
    found.module = std::wstring_view(server->module);
    return code;
  }
  return ZoResult::refused;
}

int FileSearchImp::locateMember(const ZoFileName& name, ZoFound& found, SearchReport* report) {
  ZoMemberName parts;
  if (zoSplitMemberName(name, parts) != ZoResult::ok) {
    tell(report, name, L"is no name of a member");
    return ZoResult::refused;
  }
  ZoFound file;
  if (const int code = locateFile(parts.library, file, report)) return code;
  ZoLibrary library;
  const bool isThere = file.place != ZoFound::kLibrary && library.open(file.name) == ZoResult::ok &&
                       library.isLibrary() && findSpelling(library, parts.member, parts.member);
  tell(report, name, isThere ? L"found in the library" : L"not in the library");
  if (!isThere) return ZoResult::refused;
  found = foundMember(file.name, parts.member);
  found.module = file.module;
  return ZoResult::ok;
}

// Where a server's file lies on this machine.
int FileSearchImp::copyOf(const ZoFileName& url, ZoFileName& file, bool asksServer) const {
  ZoFileName alias = url.localAlias();
  if (!alias.isEmpty() && isFile(std::wstring(alias.view()))) {
    file = std::move(alias);
    return ZoResult::ok;
  }
  auto* const files = serviceOrNull<ZoFileSystem>();
  ZoFileName place;
  if (files && files->isRemote(url, place) == ZoResult::ok)
    return asksServer ? files->getRemote(url, file) : ZoResult::refused;
  const auto cache = cache_.load();
  if (!cache) return ZoResult::invalid;
  return asksServer ? cache->downloads.get(url, file) : cache->downloads.find(url, file);
}

// A report asks no server.
int FileSearchImp::fetch(const ZoFileName& url, ZoFound& found, SearchReport* report) {
  ZoFileName file;
  const int code = copyOf(url, file, !report);
  const bool isThere = code == ZoResult::ok || code == ZoResult::stale;
  if (code == ZoResult::invalid)
    tell(report, url, L"there is no cache for it");
  else
    tell(report, url, isThere ? L"found in the cache" : L"not in the cache; would be asked for");
  if (!isThere) return code;
  found = foundFile(url.deepCopy(), ZoFound::kDownload);
  found.name.setLocalAlias(file);
  return code;
}

int FileSearchImp::open(const ZoFileName& name, ZoFile& file, int access, int share) {
  ZoFound found;
  const int code = locate(name, found);
  if (found.place == ZoFound::kNowhere) return code;
  const bool isOwn = found.place != ZoFound::kLibrary && found.place != ZoFound::kDownload;
  if (!isOwn && (access & ZoFile::kWrite)) return ZoResult::refused;
  const int opened = file.open(found.name, access, ZoFile::kOpenExisting, share);
  return opened ? opened : code;
}

int FileSearchImp::toDisk(const ZoFileName& name, ZoFileName& file) {
  ZoFound found;
  const int code = locate(name, found);
  if (found.place == ZoFound::kNowhere) return code;
  if (found.place == ZoFound::kLibrary) return copyMember(found, file);
  file = found.place == ZoFound::kDownload ? found.name.localAlias() : found.name;
  return code;
}

std::wstring FileSearchImp::folderOfCopies() const {
  if (const auto cache = cache_.load()) return cache->folder + L"members\\";
  const std::wstring folder =
      platformText([](DWORD size, wchar_t* buffer) { return fileApi().tempFolder(size, buffer); });
  return folder.empty() ? folder : folder + L"zo_members\\";
}

// A copy is told from those of other libraries, members and states by its folder.
int FileSearchImp::copyMember(const ZoFound& member, ZoFileName& file) {
  const FileStamp stamp = stampOf(std::wstring(member.library.view()));
  const std::wstring last(lastComponent(withBackslashes(member.member.view())));
  const std::wstring all = folderOfCopies();
  if (all.empty() || !ZoFileName(last).isContained()) return ZoResult::refused;
  const std::wstring key = std::wstring(member.name.view()) + L'|' + std::to_wstring(stamp.size) +
                           L'|' + std::to_wstring(stamp.written);
  wchar_t digits[16];
  writeHex(digits, hashName(key), 16, kLowerHexDigits);
  const std::wstring folder = all + std::wstring(digits, 16);
  const std::wstring path = folder + L'\\' + last;
  ZoLibrary library;
  ZoLibEntry entry;
  if (const int code = library.open(member.library)) return code;
  if (const int code = library.getEntry(member.member, entry)) return code;
  const bool isCopied =
      stampOf(path) == FileStamp{static_cast<std::int64_t>(entry.size), entry.written.ticks};
  if (!isCopied) {
    if (!isFolder(folder) && !makeFolders(folder) && !isFolder(folder)) return ZoResult::refused;
    if (const int code = library.extractFile(member.member, ZoFileName(path))) return code;
  }
  file = ZoFileName(path);
  return ZoResult::ok;
}

int FileSearchImp::setCache(const ZoFileName& folder, std::uint64_t limit, unsigned int maxAge) {
  std::shared_ptr<Cache> cache;
  if (!folder.isEmpty()) {
    ZoFileName plain;
    if (const int code = withoutMacro(folder, plain)) return code;
    cache = std::make_shared<Cache>();
    cache->folder = std::wstring(withoutFinalDelimiters(absolute(plain).view())) + L'\\';
    const ZoDownloadOptions options{.limit = limit, .maxAge = maxAge};
    if (const int code = cache->downloads.open(ZoFileName(cache->folder), options)) return code;
  }
  cache_.store(std::move(cache));
  return ZoResult::ok;
}

int FileSearchImp::namesOfMembers(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                                  unsigned int kinds) {
  ZoMemberName parts;
  ZoFound file;
  if (zoSplitMemberName(pattern, parts) != ZoResult::ok) return ZoResult::refused;
  if (const int code = locateFile(parts.library, file, nullptr)) return code;
  if (file.place == ZoFound::kLibrary) return ZoResult::refused;
  const FilePlace place(FilePlace::kLibrary, std::wstring(file.name.view()));
  const KnownNames known = readNames(place);
  for (const std::wstring& member : namesBelow(place, known, withBackslashes(parts.member.view())))
    if (hasKind(ZoFileName(member), kinds))
      if (const int code = names.append(zoMemberName(file.name, ZoFileName(member)))) return code;
  return ZoResult::ok;
}

int FileSearchImp::findNames(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                             unsigned int kinds) {
  ZoFileName plain;
  ZoArray<ZoFileName> found;
  if (const int code = withoutMacro(pattern, plain)) return code;
  if (zoIsMemberName(plain)) {
    if (const int code = namesOfMembers(plain, found, kinds)) return code;
    return names.append(found);
  }
  if (plain.isURL()) return ZoResult::invalid;
  if (plain.isCD()) {
    auto* const files = serviceOrNull<ZoFileSystem>();
    if (!files || files->getAbsolutePath(plain) != ZoResult::ok) return ZoResult::refused;
  }
  ZoFileName start(folderOf(plain));
  const std::wstring last(plain.fileNameExt());
  const std::wstring levels = start.isEmpty() ? std::wstring() : wantedBelow(start);
  if (plain.isRelativ() && (start.isEmpty() || !levels.empty())) {
    for (const auto& [place, below] : finder_.findAll(levels + last)) {
      const bool isMember = place->kind == FilePlace::kLibrary;
      const ZoFileName name = isMember ? zoMemberName(ZoFileName(place->path), ZoFileName(below))
                                       : ZoFileName(place->path + below);
      if (hasKind(isMember ? ZoFileName(below) : name, kinds))
        if (const int code = found.append(name)) return code;
    }
    return names.append(found);
  }
  ZoFindFile find;
  find.setKinds(kinds);
  if (const int code = find.findAll(absolute(plain), found)) return code;
  if (const int code = found.sort()) return code;
  return names.append(found);
}

}  // namespace zo
