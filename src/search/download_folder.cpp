#include "search/download_folder.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "files/folder_search.h"
#include "files/fresh_file.h"
#include "files/replace_file.h"
#include "names/name_compare.h"
#include "platform/system_path.h"
#include "platform/time_value.h"
#include "platform/whole_file.h"
#include "platform/write_all.h"
#include "search/download.h"
#include "search/text_lines.h"
#include "text/code_units.h"

namespace zo {
namespace {

// Not what is open: its name would stay taken until it is closed.
bool remove(const std::wstring& name) {
  const OpenFile gone(fileApi().create(SystemPath(name.c_str()), DELETE, 0, OPEN_EXISTING,
                                       FILE_FLAG_DELETE_ON_CLOSE));
  if (gone) return true;
  const DWORD error = GetLastError();
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

bool isMarkFile(const std::wstring& name) {
  std::string text;
  return readWholeFile(name.c_str(), kMaxMarkBytes, text) && isCacheMark(text);
}

// The sum of a file's bytes, if it has so many.
bool sumOf(const std::wstring& name, std::uint64_t size, Sha256Sum& sum) {
  constexpr DWORD kBlock = 256 * 1024;
  const OpenFile file(fileApi().create(SystemPath(name.c_str()), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING,
                                       FILE_FLAG_SEQUENTIAL_SCAN));
  Sha256 hash;
  if (!file || !hash.start()) return false;
  const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
  std::uint64_t left = size;
  for (DWORD got = 1; got > 0; left -= got) {
    if (!fileApi().read(file.get(), block.get(), kBlock, got) || got > left) return false;
    if (!hash.add(block.get(), got)) return false;
  }
  return left == 0 && hash.finish(sum);
}

// An entry as a listing of the folder shows it.
struct Listed {
  std::uint64_t used = 0, size = 0;  // used: 0 without what is known of it
  unsigned int copies = 0, unfinished = 0;
  [[nodiscard]] bool isSound() const { return used != 0 && copies == 1 && unfinished == 0; }
};

std::map<std::wstring, Listed> listed(const std::wstring& folder) {
  std::map<std::wstring, Listed> entries;
  FolderSearch search(folder, L"*");
  for (WIN32_FIND_DATAW file; search.next(file);) {
    const std::wstring_view name = file.cFileName;
    const CacheFile kind = cacheFileOf(name);
    if (kind == CacheFile::other) continue;
    Listed& entry = entries[std::wstring(name.substr(0, kKeyDigits))];
    const FileLook look = lookOf(file);
    if (kind == CacheFile::mark) entry.used = std::max<std::uint64_t>(look.written, 1);
    if (kind == CacheFile::copy) entry.size += look.size;
    entry.copies += kind == CacheFile::copy ? 1 : 0;
    entry.unfinished += kind == CacheFile::unfinished ? 1 : 0;
  }
  return entries;
}

}  // namespace

std::wstring EntryLock::nameOf(const std::wstring& folder, const std::wstring& key) {
  std::wstring name = L"ZoDownload-";
  const std::size_t begin = name.size();
  name.resize(begin + 16);
  writeHex(name.data() + begin, hashName(folder), 16, kLowerHexDigits);
  return name + L'-' + key;
}

EntryLock::EntryLock(const std::wstring& folder, const std::wstring& key)
    : mutex_(CreateMutexW(nullptr, FALSE, nameOf(folder, key).c_str())) {}

EntryLock::~EntryLock() {
  if (isHeld_) ReleaseMutex(mutex_.get());
}

bool EntryLock::wait(DWORD milliseconds) noexcept {
  const DWORD waited = mutex_ ? WaitForSingleObject(mutex_.get(), milliseconds) : WAIT_FAILED;
  isHeld_ = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
  return isHeld_;
}

std::wstring DownloadFolder::copyName(const std::wstring& key, const Sha256Sum& sum,
                                      const std::wstring& extension) const {
  const std::string digits = hexOf(sum).substr(0, kCopyDigits);
  return folder_ + key + L'-' + std::wstring(digits.begin(), digits.end()) + extension;
}

bool DownloadFolder::load(const std::wstring& key, const std::string& url,
                          const std::wstring& extension, CacheMark& mark, FileLook& look) const {
  std::string text;
  if (!readWholeFile((folder_ + key).append(kMarkEnding).c_str(), kMaxMarkBytes, text))
    return false;
  if (!parseCacheMark(text, mark) || mark.url != url) return false;
  const std::wstring copy = copyName(key, mark.sum, extension);
  Sha256Sum sum;
  return lookAt(copy, look) && look.size == mark.size && sumOf(copy, mark.size, sum) &&
         sum == mark.sum;
}

bool DownloadFolder::store(const std::wstring& key, const CacheMark& mark) const {
  const std::string text = printCacheMark(mark);
  FreshFile fresh = createFresh(folder_ + key + L'~', kEndingBeside, GENERIC_WRITE, 0, 0);
  if (!fresh.file || writeAll(fresh.file.get(), text.data(), text.size()) < text.size())
    return false;
  const std::wstring name = (folder_ + key).append(kMarkEnding);
  return fresh.file.close() && putInPlace(fresh, SystemPath(name.c_str()), false);
}

void DownloadFolder::touch(const std::wstring& key) const {
  const std::wstring name = (folder_ + key).append(kMarkEnding);
  const OpenFile file(fileApi().create(SystemPath(name.c_str()), FILE_WRITE_ATTRIBUTES,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       OPEN_EXISTING, 0));
  const FILETIME time = fileTime(timeNow());
  if (file) fileApi().setTimes(file.get(), nullptr, nullptr, &time);
}

bool DownloadFolder::removeAll(const std::wstring& key, const std::wstring& kept) const {
  std::vector<std::wstring> copies;
  FolderSearch search(folder_ + key, L"*");
  for (WIN32_FIND_DATAW file; search.next(file);) {
    const CacheFile kind = cacheFileOf(file.cFileName);
    const std::wstring name = folder_ + file.cFileName;
    const bool isKept = name == kept || (kind == CacheFile::mark && !kept.empty());
    if (kind == CacheFile::other || isKept) continue;
    // A folder cannot be removed, and is told so: no copy can stand in its place.
    const bool isFolder = (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isFolder || kind != CacheFile::mark || isMarkFile(name)) copies.push_back(name);
  }
  // What is known of it goes last, and stays with a copy that stays.
  std::ranges::partition(copies,
                         [](const std::wstring& name) { return !name.ends_with(kMarkEnding); });
  return std::ranges::all_of(copies, remove);
}

// Empty when none is.
std::wstring DownloadFolder::copyInForce(const std::wstring& key) const {
  std::string text;
  CacheMark mark;
  WebAddress address;
  if (!readWholeFile((folder_ + key).append(kMarkEnding).c_str(), kMaxMarkBytes, text)) return {};
  if (!parseCacheMark(text, mark)) return {};
  const std::wstring url(mark.url.begin(), mark.url.end());
  return parseWebAddress(url, address) ? copyName(key, mark.sum, extensionOf(address))
                                       : std::wstring();
}

bool DownloadFolder::clear() const {
  bool isDone = true;
  for (const auto& [key, entry] : listed(folder_)) {
    EntryLock lock(folder_, key);
    isDone = lock.wait(0) && removeAll(key) && isDone;
  }
  return isDone;
}

void DownloadFolder::trim(std::uint64_t limit, const std::wstring& kept) const {
  using Entry = std::pair<std::wstring, Listed>;
  std::uint64_t total = 0;
  std::vector<Entry> entries;
  for (const Entry entry : listed(folder_)) {
    total += entry.second.size;
    if (entry.first != kept) entries.push_back(entry);
  }
  std::ranges::sort(entries, {}, [](const Entry& entry) { return entry.second.used; });
  for (const auto& [key, entry] : entries) {
    const bool isOver = total > limit;
    if (!isOver && entry.isSound()) continue;
    EntryLock lock(folder_, key);
    if (!lock.wait(0)) continue;
    if (removeAll(key, isOver ? std::wstring() : copyInForce(key)) && isOver) total -= entry.size;
  }
}

}  // namespace zo
