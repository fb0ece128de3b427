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
#include "names/member_text.h"
#include "names/name_compare.h"
#include "names/name_levels.h"
#include "platform/file_api.h"
#include "platform/system_path.h"
#include "system/service_or_null.h"
#include "text/code_units.h"

namespace zo {
namespace {

// The name as seen from the current directory of its drive.
std::wstring absolute(const ZoFileName& name) {
  return platformText([&](DWORD size, wchar_t* buffer) {
    return fileApi().fullPath(name.fullName(), size, buffer);
  });
}

// Whether a path leads above where it begins.
bool climbsOut(std::wstring_view path) {
  int depth = 0;
  for (std::size_t at = 0; at < path.size() && depth >= 0;) {
    const std::wstring_view level = nextLevel(path, at);
    if (!level.empty() && level != L".") depth += level == L".." ? -1 : 1;
  }
  return depth < 0;
}

bool hasParentLevel(std::wstring_view path) {
  for (std::size_t at = 0; at < path.size();)
    if (nextLevel(path, at) == L"..") return true;
  return false;
}

// Whether a path has no level that is empty or ".".
bool isNormal(std::wstring_view path) {
  for (auto level = path.begin();;) {
    const auto end = std::find_if(level, path.end(), isDelimiter);
    if (end == level || (end - level == 1 && *level == L'.')) return false;
    if (end == path.end()) return true;
    level = end + 1;
  }
}

// What stands behind a name's macro.
std::wstring behindMacro(const ZoFileName& name) {
  ZoFileName plain = name.deepCopy();
  static_cast<void>(plain.setMacro(name.macro(), nullptr));  // so that it is $macro'path
  const std::size_t quote = plain.view().find_first_of(L"'\"");
  return std::wstring(plain.view().substr(std::min(quote, plain.view().size() - 1) + 1));
}

// A name as it stands in a URL: what would end its path, or be decoded, is no such sign any more.
std::wstring inUrl(std::wstring_view name) {
  std::wstring text;
  for (const wchar_t c : name) {
    constexpr std::wstring_view kSigns = L"#?%";
    constexpr const wchar_t* kCoded[] = {L"%23", L"%3F", L"%25"};
    const std::size_t at = kSigns.find(c);
    if (at != kSigns.npos)
      text += kCoded[at];
    else
      text += c == L'\\' ? L'/' : c;
  }
  return text;
}

// A relative name in the form in which places are asked; empty for one that could leave them.
std::wstring wantedBelow(const ZoFileName& name) {
  if (!name.isContained() || hasParentLevel(name.view())) return {};
  if (isNormal(name.view())) return withBackslashes(name.view());
  const ZoFileName normal = name.normalized();
  return normal.isContained() ? withBackslashes(normal.view()) : std::wstring();
}

// A URL without what a reader of a report is not to see.
std::wstring withoutPassword(std::wstring_view url) {
  std::wstring text(url);
  const std::size_t begin = text.find(L"://");
  if (begin == text.npos) return text;
  const std::size_t end = std::min(text.find(L'/', begin + 3), text.size());
  const std::size_t sign = text.rfind(L'@', end);
  if (sign != text.npos && sign > begin) text.erase(begin + 3, sign - begin - 2);
  return text;
}

void tell(SearchReport* report, std::wstring_view name, std::wstring_view answer) {
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
    if (climbsOut(behindMacro(name))) return ZoResult::refused;
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

ZoFileName Located::name() const {
  ZoFileName name(member.empty() ? file : joinMemberText(file, member));
  if (!copy.isEmpty()) name.setLocalAlias(copy);
  return name;
}

ZoFound Located::found() const {
  ZoFound found;
  found.name = name();
  found.place = place;
  if (!member.empty()) {
    found.library = ZoFileName(file);
    found.member = ZoFileName(member);
  }
  if (at) found.module = std::wstring_view(at->module);
  return found;
}

int FileSearchImp::locate(const ZoFileName& name, Located& found, SearchReport* report) {
  if (!*name.macro()) return locatePlain(name, found, report);
  ZoFileName plain;
  if (const int code = withoutMacro(name, plain)) {
    const bool leaves = climbsOut(behindMacro(name));
    tell(report, name, leaves ? L"leaves the folder of the macro" : L"the macro is unknown");
    return code;
  }
  tell(report, name, std::wstring(L"is ").append(withoutPassword(plain)));
  const int code = locatePlain(plain, found, report);
  if (found.place == ZoFound::kAsNamed) found.place = ZoFound::kMacro;
  return code;
}

int FileSearchImp::locatePlain(const ZoFileName& name, Located& found, SearchReport* report) {
  if (name.isEmpty()) return ZoResult::refused;
  return zoIsMemberName(name) ? locateMember(name, found, report) : locateFile(name, found, report);
}

int FileSearchImp::locateFile(const ZoFileName& name, Located& found, SearchReport* report) {
  if (beginsWith(name.view(), L"mailto:")) return ZoResult::invalid;
  if (name.isURL()) return fetch(name, found, report);
  if (name.isCD() || !name.isRelativ()) return locateAsNamed(name, found, report);
  return locateBelow(name, found, report);
}

int FileSearchImp::locateAsNamed(const ZoFileName& name, Located& found, SearchReport* report) {
  ZoFileName file = name.deepCopy();
  if (name.isCD()) {
    auto* const files = serviceOrNull<ZoFileSystem>();
    if (!files || files->getAbsolutePath(file) != ZoResult::ok) {
      tell(report, name, L"no drive has this disc");
      return ZoResult::refused;
    }
  }
  const bool isThere = !file.hasDeviceName() && isFile(std::wstring(file.view()));
  tell(report, file, isThere ? L"found" : L"not there");
  if (!isThere) return ZoResult::refused;
  found.place = name.isCD() ? ZoFound::kDisc : ZoFound::kAsNamed;
  found.file = absolute(file);
  return ZoResult::ok;
}

int FileSearchImp::locateBelow(const ZoFileName& name, Located& found, SearchReport* report) {
  const std::wstring wanted = wantedBelow(name);
  if (wanted.empty()) return locateAsNamed(name, found, report);
  std::wstring below;
  found.at = finder_.find(wanted, below, report);
  if (!found.at) return locateOnServers(wanted, found, report);
  if (found.at->kind == FilePlace::kLibrary) {
    found.place = ZoFound::kLibrary;
    found.file = found.at->path;
    found.member = std::move(below);
  } else {
    found.place = found.at->asNamed ? ZoFound::kAsNamed : ZoFound::kFolder;
    found.file = found.at->path + below;
  }
  return ZoResult::ok;
}

int FileSearchImp::locateOnServers(const std::wstring& name, Located& found, SearchReport* report) {
  for (const auto& server : finder_.servers()) {
    const int code = fetch(ZoFileName(server->path + inUrl(name)), found, report);
    if (found.place == ZoFound::kNowhere) continue;
    found.at = server;
    return code;
  }
  return ZoResult::refused;
}

int FileSearchImp::locateMember(const ZoFileName& name, Located& found, SearchReport* report) {
  ZoMemberName parts;
  if (zoSplitMemberName(name, parts) != ZoResult::ok) {
    tell(report, name, L"is no name of a member");
    return ZoResult::refused;
  }
  Located file;
  const int code = locateFile(parts.library, file, report);
  if (file.place == ZoFound::kNowhere) return code;
  ZoLibrary library;
  const bool isThere = file.place != ZoFound::kLibrary &&
                       library.open(file.name()) == ZoResult::ok && library.isLibrary() &&
                       findSpelling(library, parts.member, parts.member);
  tell(report, name, isThere ? L"found in the library" : L"not in the library");
  if (!isThere) return ZoResult::refused;
  found = std::move(file);
  if (!found.copy.isEmpty()) found.file = std::exchange(found.copy, {}).view();
  found.place = ZoFound::kLibrary;
  found.member = parts.member.view();
  return code;
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
int FileSearchImp::fetch(const ZoFileName& url, Located& found, SearchReport* report) {
  ZoFileName file;
  const int code = copyOf(url, file, !report);
  const bool isThere = code == ZoResult::ok || code == ZoResult::stale;
  const wchar_t* const absent = code == ZoResult::invalid ? L"there is no cache for it"
                                                          : L"not in the cache; would be asked for";
  tell(report, url, isThere ? L"found in the cache" : absent);
  if (!isThere) return code;
  found.place = ZoFound::kDownload;
  found.file = url.view();
  found.copy = std::move(file);
  return code;
}

// Locates a file and has it used by use(const Located&), which answers a code. A member that cannot
// be used may have gone without anybody having told yet: it is looked for once more.
template <class Use>
int FileSearchImp::withLocated(const ZoFileName& name, const Use& use) {
  for (bool isAgain = false;; isAgain = true) {
    Located found;
    const int code = locate(name, found);
    if (found.place == ZoFound::kNowhere) return code;
    const int used = use(found);
    if (!used) return code;
    const bool isMember = found.at && found.place == ZoFound::kLibrary;
    if (isAgain || !isMember || !finder_.noticeExchange(*found.at)) return used;
  }
}

int FileSearchImp::open(const ZoFileName& name, ZoFile& file, int access, int share) {
  return withLocated(name, [&](const Located& found) -> int {
    const bool isOwn = found.place != ZoFound::kLibrary && found.place != ZoFound::kDownload;
    if (!isOwn && (access & ZoFile::kWrite)) return ZoResult::refused;
    return file.open(found.name(), access, ZoFile::kOpenExisting, share);
  });
}

int FileSearchImp::toDisk(const ZoFileName& name, ZoFileName& file) {
  return withLocated(name, [&](const Located& found) -> int {
    if (found.place == ZoFound::kLibrary) return copyMember(found, file);
    file = found.copy.isEmpty() ? found.name() : found.copy;
    return ZoResult::ok;
  });
}

std::wstring FileSearchImp::folderOfCopies() const {
  if (const auto cache = cache_.load()) return cache->folder + L"members\\";
  const std::wstring folder =
      platformText([](DWORD size, wchar_t* buffer) { return fileApi().tempFolder(size, buffer); });
  return folder.empty() ? folder : folder + L"zo_members\\";
}

// A copy is told from those of other libraries, members and states by its folder.
int FileSearchImp::copyMember(const Located& member, ZoFileName& file) {
  const FileStamp stamp = stampOf(member.file);
  const std::wstring last(lastComponent(withBackslashes(member.member)));
  const std::wstring all = folderOfCopies();
  if (all.empty() || !ZoFileName(last).isContained()) return ZoResult::refused;
  const std::wstring key = joinMemberText(member.file, member.member) + L'|' +
                           std::to_wstring(stamp.size) + L'|' + std::to_wstring(stamp.written);
  wchar_t digits[16];
  writeHex(digits, hashName(key), 16, kLowerHexDigits);
  const std::wstring folder = all + std::wstring(digits, 16);
  const std::wstring path = folder + L'\\' + last;
  const ZoFileName name(member.member);
  ZoLibrary library;
  ZoLibEntry entry;
  if (const int code = library.open(ZoFileName(member.file))) return code;
  if (const int code = library.getEntry(name, entry)) return code;
  const FileStamp copied{static_cast<std::int64_t>(entry.size), entry.written.ticks};
  if (stampOf(path) != copied) {
    if (!isFolder(folder) && !makeFolders(folder) && !isFolder(folder)) return ZoResult::refused;
    if (const int code = library.extractFile(name, ZoFileName(path))) return code;
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
    cache->folder = std::wstring(withoutFinalDelimiters(absolute(plain))) + L'\\';
    const ZoDownloadOptions options{.limit = limit, .maxAge = maxAge};
    if (const int code = cache->downloads.open(ZoFileName(cache->folder), options)) return code;
  }
  cache_.store(std::move(cache));
  return ZoResult::ok;
}

int FileSearchImp::namesOfMembers(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                                  unsigned int kinds) {
  ZoMemberName parts;
  Located file;
  if (zoSplitMemberName(pattern, parts) != ZoResult::ok) return ZoResult::refused;
  static_cast<void>(locateFile(parts.library, file, nullptr));
  if (file.place == ZoFound::kNowhere || file.place == ZoFound::kLibrary) return ZoResult::refused;
  const FilePlace place(FilePlace::kLibrary,
                        file.copy.isEmpty() ? file.file : std::wstring(file.copy.view()));
  const KnownNames known = readNames(place);
  for (const std::wstring& member : namesBelow(place, known, withBackslashes(parts.member.view())))
    if (hasKind(ZoFileName(member), kinds))
      if (const int code = names.append(ZoFileName(joinMemberText(place.path, member))))
        return code;
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
  const ZoFileName start(folderOf(plain));
  const std::wstring last(plain.fileNameExt());
  const std::wstring levels = start.isEmpty() ? std::wstring() : wantedBelow(start);
  if (plain.isRelativ() && (start.isEmpty() || !levels.empty())) {
    for (const auto& [place, below] : finder_.findAll(levels + last)) {
      const bool isMember = place->kind == FilePlace::kLibrary;
      const ZoFileName name(isMember ? joinMemberText(place->path, below) : place->path + below);
      if (hasKind(isMember ? ZoFileName(below) : name, kinds))
        if (const int code = found.append(name)) return code;
    }
    return names.append(found);
  }
  ZoFindFile find;
  find.setKinds(kinds);
  if (const int code = find.findAll(ZoFileName(absolute(plain)), found)) return code;
  if (const int code = found.sort()) return code;
  return names.append(found);
}

}  // namespace zo
