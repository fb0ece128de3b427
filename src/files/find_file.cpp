#include <windows.h>
#include <zo/files/find_file.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>
#include <zo/text/containers/sequence.h>

#include <string>
#include <vector>

#include "files/wildcard.h"
#include "platform/file_api.h"
#include "platform/system_path.h"

namespace {

// One open search of a folder.
class Search {
 public:
  // The first entry is in `entry` already when it is open.
  Search(const std::wstring& pattern, std::size_t folder, WIN32_FIND_DATAW& entry)
      : handle_(zo::fileApi().findFirst(zo::SystemPath(pattern.c_str()), entry)), folder_(folder) {}
  Search(Search&& other) noexcept
      : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)),
        folder_(other.folder_),
        first_(other.first_) {}
  Search& operator=(Search&&) = delete;
  ~Search() {
    if (isOpen()) zo::fileApi().findClose(handle_);
  }

  [[nodiscard]] bool isOpen() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  bool next(WIN32_FIND_DATAW& entry) {
    return std::exchange(first_, false) || zo::fileApi().findNext(handle_, entry);
  }
  // How much of the path is the folder.
  [[nodiscard]] std::size_t folder() const noexcept { return folder_; }

 private:
  HANDLE handle_;
  std::size_t folder_;
  bool first_ = true;
};

bool isDots(const wchar_t* name) noexcept {
  return name[0] == L'.' && (!name[1] || (name[1] == L'.' && !name[2]));
}

}  // namespace

struct ZoFindFile::Imp {
  std::vector<Search> searches;  // a folder and those above it
  WIN32_FIND_DATAW entry{};
  std::wstring path;     // of the entry
  std::wstring pattern;  // for names
  ZoFileName name;
  bool nameIsOld = true;
  bool entersNext = false;  // the entry is a folder that is to be entered
  bool subfolders = false;
  unsigned int required = 0, excluded = ZoFindFile::kDirectory, kinds = 0;
  int result = ZoResult::ok;

  int report() {
    ZoSystem::fileSystem().errorIO(L"find");
    return result = ZoResult::refused;
  }

  // Begins a search in the folder that path names, with its final delimiter. The platform may leave
  // out what does not fit the pattern only where no subfolders are to be found.
  int enter() {
    const std::size_t folder = path.size();
    Search search(path + (subfolders ? L"*" : pattern), folder, entry);
    if (search.isOpen()) {
      searches.push_back(std::move(search));
      return ZoResult::ok;
    }
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES ? ZoResult::ok : report();
  }

  const ZoFileName& currentName() {
    if (std::exchange(nameIsOld, false)) name = std::wstring_view(path);
    return name;
  }

  bool isWanted() {
    const DWORD attributes = entry.dwFileAttributes;
    if ((attributes & required) != required || (attributes & excluded)) return false;
    if (!zo::fitsWildcard(entry.cFileName, pattern)) return false;
    if (!kinds) return true;
    for (unsigned int kind = 0; kind <= ZoFileName::kAnyFile; ++kind) {
      if ((kinds >> kind & 1) && currentName().isKindOf(static_cast<ZoFileName::FileKind>(kind)))
        return true;
    }
    return false;
  }

  // The next entry of all, but "." and "..".
  bool step() {
    if (std::exchange(entersNext, false)) {
      path += L'\\';
      enter();
    }
    while (!searches.empty()) {
      Search& search = searches.back();
      if (!search.next(entry)) {
        if (GetLastError() != ERROR_NO_MORE_FILES) report();
        searches.pop_back();
        continue;
      }
      if (isDots(entry.cFileName)) continue;
      path.resize(search.folder());
      path += entry.cFileName;
      nameIsOld = true;
      constexpr DWORD kPlainFolder = FILE_ATTRIBUTE_DIRECTORY, kLink = FILE_ATTRIBUTE_REPARSE_POINT;
      entersNext = subfolders && (entry.dwFileAttributes & (kPlainFolder | kLink)) == kPlainFolder;
      return true;
    }
    return false;
  }
};

ZoFindFile::ZoFindFile() : imp_(new Imp) {}
ZoFindFile::~ZoFindFile() { delete imp_; }

void ZoFindFile::setAttributes(unsigned int required, unsigned int excluded) noexcept {
  imp_->required = required;
  imp_->excluded = excluded;
}

void ZoFindFile::setKinds(unsigned int kinds) noexcept { imp_->kinds = kinds; }

int ZoFindFile::open(const ZoFileName& pattern, bool subfolders) {
  close();
  imp_->result = ZoResult::ok;
  if (pattern.isURL()) return imp_->result = ZoResult::invalid;
  imp_->subfolders = subfolders;
  imp_->pattern = *pattern.fileNameExt() ? pattern.fileNameExt() : L"*";
  const std::wstring_view whole = pattern.view();
  imp_->path = whole.substr(0, whole.size() - std::wstring_view(pattern.fileNameExt()).size());
  return imp_->enter();
}

bool ZoFindFile::next() {
  while (imp_->step()) {
    if (imp_->isWanted()) return true;
  }
  return false;
}

void ZoFindFile::close() noexcept {
  imp_->searches.clear();
  imp_->entersNext = false;
}

int ZoFindFile::result() const noexcept { return imp_->result; }

int ZoFindFile::findAll(const ZoFileName& pattern, ZoSequence<ZoFileName>& names, bool subfolders) {
  if (const int code = open(pattern, subfolders)) return code;
  while (next()) {
    if (const int code = names.append(name())) return code;
  }
  return result();
}

const ZoFileName& ZoFindFile::name() { return imp_->currentName(); }
std::wstring_view ZoFindFile::path() const { return imp_->path; }
std::wstring_view ZoFindFile::fileNameExt() const noexcept { return imp_->entry.cFileName; }
unsigned int ZoFindFile::attributes() const noexcept { return imp_->entry.dwFileAttributes; }

std::int64_t ZoFindFile::size() const noexcept {
  return static_cast<std::int64_t>((std::uint64_t{imp_->entry.nFileSizeHigh} << 32) |
                                   imp_->entry.nFileSizeLow);
}

FILETIME ZoFindFile::creationTime() const noexcept { return imp_->entry.ftCreationTime; }
FILETIME ZoFindFile::lastAccessTime() const noexcept { return imp_->entry.ftLastAccessTime; }
FILETIME ZoFindFile::lastWriteTime() const noexcept { return imp_->entry.ftLastWriteTime; }
