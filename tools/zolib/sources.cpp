#include "sources.h"

#include <zo/files/find_file.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "cancel.h"
#include "glob.h"
#include "names.h"
#include "text.h"

namespace zolib {
namespace {

constexpr unsigned int kLinkAttribute = FILE_ATTRIBUTE_REPARSE_POINT;

std::wstring fullPath(const std::wstring& path) {
  ZoFileName full;
  if (ZoSystem::fileSystem().getFullPathName(ZoFileName(path), full)) return path;
  return std::wstring(full.view());
}

// One walk over all that the options name.
class Walk {
 public:
  Walk(const Options& options, Report& report)
      : report_(report),
        verbose_(options.verbose && !options.json),
        selection_({}, options.include, options.exclude),
        library_(folded(fullPath(shellPath(options.library)))),
        libraryName_(library_.substr(library_.find_last_of(L"\\/") + 1)) {}

  // A name as the user gave it.
  void addNamed(const std::wstring& name) {
    forgetReason();
    const std::wstring path = shellPath(name);
    const unsigned int attributes = ZoSystem::fileSystem().getAttributes(ZoFileName(path));
    if (attributes & ZoFindFile::kDirectory) {
      addFolder(path, memberName(name));
    } else if (attributes) {
      if (!addMatching(path, std::wstring(folderOf(name)), true)) refuse(name);
    } else if (const std::size_t before = found_.size(); Glob::isGlob(name)) {
      addMatching(path, std::wstring(folderOf(name)), false);
      if (found_.size() == before) notFound(name);
    } else {
      notFound(name);
    }
  }

  std::vector<Source> found() && { return std::move(found_); }

  // What a library does not keep, said once.
  void tellLosses() {
    const auto tell = [&](std::size_t count, const Text& text) {
      if (count) report_.note(text, count);
    };
    tell(links_, {158, "%{?1 1 link to a folder was|%1 links to folders were} not followed"});
    tell(empty_, {159, "%{?1 1 empty folder leaves|%1 empty folders leave} no trace"});
    tell(readOnly_, {160, "%{?1 1 file is|%1 files are} read-only, which is not kept"});
  }

 private:
  void notFound(const std::wstring& name) {
    report_.fail(kNotFound, {150, "cannot find %1%2; check the name"}, name, because());
  }

  // What is there, and what the platform takes for something else.
  void refuse(const std::wstring& name) {
    const std::wstring_view last = std::wstring_view(name).substr(name.find_last_of(L"\\/") + 1);
    std::optional<Text> why = refusalOf(memberName(name));
    if (!why) why = refusalOf(last);
    const std::string reason = why ? say(*why) + say({210, "; rename the file"}) : say(kRefused);
    report_.fail(kFailed, {200, "cannot add %1: %2"}, name, reason);
  }

  // What fits a path, whose last level may have wildcards. False when nothing does.
  bool addMatching(const std::wstring& path, const std::wstring& givenFolder, bool isThere) {
    ZoFindFile find;
    find.setAttributes(0);
    ZoFileName pattern;
    // The platform knows * and ? only.
    const bool isOurs = !isThere && path.find_first_of(L"[{") != std::wstring::npos;
    const Glob last(L"/" + path.substr(path.find_last_of(L"\\/") + 1));
    const std::wstring asked = isOurs ? joined(folderOf(path), L"*") : path;
    static_cast<void>(pattern.setFullName(asked, false, false, true));  // open will say it
    if (find.open(pattern)) return false;
    bool isFound = false;
    while (find.next()) {
      isFound = true;
      if (isOurs && !last.fits(folded(find.fileNameExt()))) continue;
      const std::wstring given = joined(givenFolder, find.fileNameExt());
      if (!find.isDirectory())
        addFile(find, memberName(given));
      else if (isWalked(find, folderOf(path)))
        addFolder(std::wstring(find.path()), memberName(given));
    }
    return isFound;
  }

  void addFolder(const std::wstring& path, const std::wstring& member) {
    if (!member.empty() && selection_.excludes(folded(member))) return;
    struct Folder {
      std::wstring path, member, key;
    };
    std::vector<Folder> folders;
    const std::size_t first = found_.size();
    bool isEmpty = true;
    ZoFindFile find;
    find.setAttributes(0);
    forgetReason();
    if (find.open(ZoFileName(joined(path, L"*")))) {
      report_.fail(kFailed, {151, "cannot read the folder %1%2"}, path, because());
      return;
    }
    while (!isCancelled() && find.next()) {
      const std::wstring name = joined(member, find.fileNameExt());
      isEmpty = false;
      if (!find.isDirectory())
        addFile(find, name);
      else if (isWalked(find, path))
        folders.push_back({std::wstring(find.path()), name, folded(name)});
    }
    if (isEmpty && !isCancelled()) lose(empty_, path, {161, "empty"});
    const auto byKey = [](const auto& a, const auto& b) { return a.key < b.key; };
    std::sort(found_.begin() + static_cast<std::ptrdiff_t>(first), found_.end(), byKey);
    std::sort(folders.begin(), folders.end(), byKey);
    for (const Folder& folder : folders) addFolder(folder.path, folder.member);
  }

  void addFile(ZoFindFile& find, const std::wstring& member) {
    std::wstring key = folded(member);
    if (!selection_.includes(key) || selection_.excludes(key)) return;
    const std::wstring path(find.path());
    if (isLibrary(find.fileNameExt(), path)) return;  // not into itself
    const auto [first, isNew] = members_.try_emplace(key, path);
    if (!isNew) {
      if (fullPath(first->second) == fullPath(path)) return;  // named twice
      report_.fail(kFailed,
                   {152,
                    "left out %1: %2 is the member %3 already (case does not count); rename one "
                    "of them"},
                   path, first->second, member);
      return;
    }
    if (find.attributes() & FILE_ATTRIBUTE_READONLY) lose(readOnly_, path, {162, "read-only"});
    found_.push_back({path, member, static_cast<std::uint64_t>(find.size()), find.lastWriteTime(),
                      std::move(key)});
  }

  // The platform is asked for the full path only of what has the library's name.
  bool isLibrary(std::wstring_view name, const std::wstring& path) const {
    return folded(name) == libraryName_ && folded(fullPath(path)) == library_;
  }

  // Whether a folder is looked into: no link is, and none that the platform cannot name, which
  // would lead elsewhere.
  bool isWalked(const ZoFindFile& find, std::wstring_view outer) {
    const std::wstring_view name = find.fileNameExt();
    if (find.attributes() & kLinkAttribute) {
      lose(links_, find.path(), {163, "link"});
      return false;
    }
    if (name.find(L':') == std::wstring_view::npos) return true;
    refuse(joined(outer, name));
    return false;
  }

  // Counted; named with --verbose.
  void lose(std::size_t& count, std::wstring_view path, const Text& what) {
    ++count;
    if (verbose_) report_.console().err(say(what) + "  " + toUtf8(path));
  }

  Report& report_;
  bool verbose_;
  std::size_t links_ = 0, empty_ = 0, readOnly_ = 0;
  Selection selection_;
  std::wstring library_, libraryName_;  // folded
  std::vector<Source> found_;
  std::unordered_map<std::wstring, std::wstring> members_;  // their files, by folded name
};

void invite(Report& report) {
  if (inputIsTyped()) report.note({164, "type it; Ctrl-D ends it, Ctrl-C cancels"});
}

bool readAllInput(std::string& text) {
  char buffer[16 * 1024];
  for (DWORD got = 0; readInput(buffer, sizeof buffer, got);) {
    if (!got) return true;
    text.append(buffer, got);
  }
  return false;
}

bool readWhole(const std::wstring& path, std::string& text) {
  ZoFile file;
  if (file.open(ZoFileName(path))) return false;
  char buffer[16 * 1024];
  while (const unsigned int got = file.read(buffer, sizeof buffer)) text.append(buffer, got);
  return true;
}

}  // namespace

bool readLines(const std::wstring& path, std::vector<std::wstring>& lines, Report& report) {
  forgetReason();
  std::string text;
  if (path == L"-") invite(report);
  if (!(path == L"-" ? readAllInput(text) : readWhole(shellPath(path), text))) {
    const bool missing = GetLastError() == ERROR_FILE_NOT_FOUND;
    if (!report.goesOn()) return false;
    report.fail(missing ? kNotFound : kFailed, {153, "cannot read the names in %1%2"}, path,
                because());
    return false;
  }
  const bool hasZeros = text.find('\0') != std::string::npos;
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
    report.fail(kFailed,
                {154,
                 "cannot read the names in %1: they are UTF-16; one name per line, in UTF-8, is "
                 "needed"},
                path);
    return false;
  }
  std::string_view left = text;
  if (left.starts_with("\xEF\xBB\xBF")) left.remove_prefix(3);
  while (!left.empty()) {
    const std::size_t end = std::min(left.find(hasZeros ? '\0' : '\n'), left.size());
    std::string_view line = left.substr(0, end);
    if (!hasZeros && line.ends_with('\r')) line.remove_suffix(1);
    if (!line.empty()) lines.push_back(toWide(line));
    left.remove_prefix(std::min(end + 1, left.size()));
  }
  return true;
}

bool namesOf(const Options& options, std::vector<std::wstring>& names, Report& report) {
  names = options.names;
  return !options.filesFrom || readLines(*options.filesFrom, names, report);
}

std::vector<Source> findSources(const Options& options, Report& report) {
  std::vector<std::wstring> names;
  if (!namesOf(options, names, report)) return {};
  Walk walk(options, report);
  bool fromInput = false;
  for (const std::wstring& name : names) {
    if (isCancelled()) break;
    if (name == L"-") {
      fromInput = true;
    } else {
      walk.addNamed(name);
    }
  }
  walk.tellLosses();
  std::vector<Source> found = std::move(walk).found();
  if (fromInput) {
    const std::wstring& name = options.memberName;
    found.push_back({L"-", refusalOf(name) ? name : memberName(name)});
  }
  return found;
}

bool readInputInto(ZoFile& file, Report& report) {
  invite(report);
  forgetReason();
  ZoFileName name(L"zolib.tmp");
  if (file.createTemp(name, ZoFile::kReadWrite, ZoFile::kCreateNew, ZoFile::kShareNone,
                      ZoFile::kTemporary | ZoFile::kDeleteOnClose)) {
    report.fail(kFailed, {155, "cannot make a temporary file%1"}, because());
    return false;
  }
  char buffer[64 * 1024];
  for (DWORD got = 0;;) {
    if (!readInput(buffer, sizeof buffer, got)) {
      if (report.goesOn()) report.fail(kFailed, {156, "cannot read standard input"});
      return false;
    }
    if (!got) break;
    if (file.write(buffer, got) != got) {
      report.fail(kFailed, {157, "cannot keep standard input in a temporary file%1"}, because());
      return false;
    }
  }
  return file.seekToBegin() == 0;
}

}  // namespace zolib
