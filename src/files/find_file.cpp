#include <windows.h>
#include <zo/files/find_file.h>
#include <zo/text/containers/sequence.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "files/folder_search.h"
#include "files/ftp.h"
#include "names/wildcard.h"

struct ZoFindFile::Imp {
  // A folder that is being searched, and how much of the path it is.
  struct Level {
    zo::FolderSearch search;
    std::size_t folder;
  };

  std::vector<Level> levels;                  // a folder and those above it
  std::unique_ptr<zo::FtpConnection> server;  // none for the file system
  WIN32_FIND_DATAW entry{};
  std::wstring path;     // of the entry
  std::wstring pattern;  // for names
  ZoFileName name;
  bool nameIsOld = true;
  bool entersNext = false;  // the entry is a folder that is to be entered
  bool subfolders = false;
  unsigned int required = 0, excluded = ZoFindFile::kDirectory, kinds = 0;
  int result = ZoResult::ok;

  int report(DWORD error) { return result = zo::keepReason(L"find", error); }

  // Begins a search in the folder that path names, with its final delimiter. The platform may leave
  // out what does not fit the pattern only where no subfolders are to be found.
  int enter() {
    zo::FolderSearch search = server
                                  ? zo::FolderSearch(*server, zo::ftpPath(ZoFileName(path.c_str())))
                                  : zo::FolderSearch(path, subfolders ? L"*" : pattern);
    if (search.error()) return report(search.error());
    path.reserve(path.size() + MAX_PATH);  // so that step() needs no memory for what it found
    levels.push_back({.search = std::move(search), .folder = path.size()});
    return ZoResult::ok;
  }

  const ZoFileName& currentName() {
    if (nameIsOld) name = std::wstring_view(path);
    nameIsOld = false;
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

  // The next entry of all. Where entering a folder throws, it is entered by the next call.
  bool step() {
    if (entersNext) {
      path.resize(levels.back().folder);
      path.append(entry.cFileName).append(1, server ? L'/' : L'\\');
      enter();
      entersNext = false;
    }
    while (!levels.empty()) {
      Level& level = levels.back();
      if (!level.search.next(entry)) {
        if (level.search.error()) report(level.search.error());
        levels.pop_back();
        continue;
      }
      path.resize(level.folder);
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
  if (pattern.isURL()) {
    const zo::FtpAddress address = zo::ftpAddress(pattern);
    if (address.host.empty())
      return imp_->result = zo::keepReason(L"find", ERROR_NOT_SUPPORTED, ZoResult::invalid);
    imp_->server = std::make_unique<zo::FtpConnection>(address, L"ZoFindFile");
    if (!imp_->server->isOpen()) return imp_->report(GetLastError());
  }
  imp_->subfolders = subfolders;
  zo::SearchPlace place = zo::searchPlace(pattern);
  imp_->path = std::move(place.folder);
  imp_->pattern = std::move(place.pattern);
  return imp_->enter();
}

bool ZoFindFile::next() {
  while (imp_->step()) {
    if (imp_->isWanted()) return true;
  }
  return false;
}

void ZoFindFile::close() noexcept {
  imp_->levels.clear();
  imp_->server.reset();
  imp_->entersNext = false;
}

int ZoFindFile::result() const noexcept { return imp_->result; }

int ZoFindFile::findAll(const ZoFileName& pattern, ZoSequence<ZoFileName>& names, bool subfolders) {
  if (const int code = open(pattern, subfolders)) return code;
  while (next()) {
    if (const int code = names.append(name()))
      return zo::keepReason(L"find", ERROR_NOT_ENOUGH_MEMORY, code);
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
