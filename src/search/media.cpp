#include "search/media.h"

#include <windows.h>
#include <zo/persist/check_sum.h>

#include <algorithm>
#include <memory>

#include "files/folder_search.h"
#include "files/fresh_file.h"
#include "files/keep_reason.h"
#include "files/replace_file.h"
#include "names/name_compare.h"
#include "platform/open_file.h"
#include "platform/system_path.h"
#include "platform/whole_file.h"
#include "platform/write_all.h"
#include "search/file_look.h"

namespace zo {
namespace {

constexpr DWORD kBlock = 256 * 1024;
constexpr unsigned int kMaxDepth = 200;

int failed(const wchar_t* operation) { return keepReason(operation); }
int failed(const wchar_t* operation, DWORD error, int code = ZoResult::refused) {
  return keepReason(operation, error, code);
}

// A name that leads nowhere else, and no device.
bool isSafe(const std::wstring& name) {
  const ZoFileName alone{std::wstring_view(name)};
  return alone.isContained() && alone.possibleOnVolume();
}

bool isGone(DWORD error) noexcept {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

int sumOf(std::string_view text, const std::string& key, Sha256Sum& sum) {
  return zoCheckSum(text.data(), text.size(), ZoCheckKey(key), sum);
}

}  // namespace

Media::Media(const ZoFileName& root, const std::string& key, const ZoMediaWatcher& watcher)
    : root_(root.view()), key_(key), watcher_(watcher) {
  if (!root_.empty() && root_.back() != L'\\' && root_.back() != L'/') root_ += L'\\';
}

bool Media::goesOn(const std::wstring& path) const {
  if (!watcher_) return true;
  const ZoFileName file{std::wstring_view(path)};
  return watcher_({.file = file,
                   .filesDone = filesDone_,
                   .files = files_,
                   .bytesDone = bytesDone_,
                   .bytes = bytes_});
}

// 0, `cancelled`, or 1 also when the file has another size.
int Media::sum(const std::wstring& path, std::uint64_t size, Sha256Sum& sum) {
  const OpenFile file(fileApi().create(SystemPath(path.c_str()), GENERIC_READ, FILE_SHARE_READ,
                                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN));
  std::int64_t there = 0;
  ZoCheckSum made;
  if (!file || !fileApi().size(file.get(), there)) return failed(L"media");
  if (static_cast<std::uint64_t>(there) != size) return failed(L"media", ERROR_CRC);
  if (made.start(ZoCheckKey(key_))) return failed(L"media");
  const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
  for (DWORD got = 1; got > 0; bytesDone_ += got) {
    if (!goesOn(path)) return failed(L"media", ERROR_CANCELLED, ZoResult::cancelled);
    if (!fileApi().read(file.get(), block.get(), kBlock, got)) return failed(L"media");
    if (got > size) return failed(L"media", ERROR_CRC);
    if (made.add(block.get(), got)) return failed(L"media");
    size -= got;
  }
  if (size > 0) return failed(L"media", ERROR_HANDLE_EOF);
  return made.finish(sum) ? failed(L"media") : ZoResult::ok;
}

// ---- Checking ----

int Media::read(Manifest& manifest) const {
  std::string bytes;
  FileLook look;
  if (!lookAt(manifestName(), look)) {
    const DWORD error = GetLastError();
    const DWORD attributes = fileApi().attributes(SystemPath(root_.c_str()));
    const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
    return failed(L"checkMedia", error,
                  isThere && isGone(error) ? ZoResult::noManifest : ZoResult::refused);
  }
  if (look.size > kMaxManifestBytes)
    return failed(L"checkMedia", ERROR_INVALID_DATA, ZoResult::manifestDamaged);
  if (!readWholeFile(manifestName().c_str(), kMaxManifestBytes, bytes))
    return failed(L"checkMedia");
  std::string_view text = bytes;
  Sha256Sum stored, made;
  const bool hasSum = takeSum(text, stored);
  if (hasSum && sumOf(text, key_, made)) return failed(L"checkMedia");
  // Nothing of a manifest is looked at that is not the maker's.
  const bool isRight = hasSum && ZoCheckSum::isSame(stored, made) &&
                       parseManifest(text, manifest) &&
                       std::ranges::all_of(manifest.files, isSafe, &ManifestFile::name);
  return isRight ? ZoResult::ok
                 : failed(L"checkMedia", ERROR_INVALID_DATA, ZoResult::manifestDamaged);
}

int Media::checkFile(const ManifestFile& file, ZoMediaReport& report) {
  const std::wstring path = root_ + file.name;
  const ZoFileName name{std::wstring_view(path)};
  const std::uint64_t before = bytesDone_;
  Sha256Sum made;
  const int code = sum(path, file.size, made);
  bytesDone_ = before + file.size;
  ++filesDone_;
  if (code == ZoResult::cancelled) return code;
  if (code == ZoResult::ok && ZoCheckSum::isSame(made, file.sum)) return ZoResult::ok;
  const bool isMissing = code != ZoResult::ok && isGone(GetLastError());
  if ((isMissing ? report.missing : report.different).append(name)) throw std::bad_alloc();
  return code ? ZoResult::mediaDiffers : failed(L"checkMedia", ERROR_CRC, ZoResult::mediaDiffers);
}

int Media::check(ZoMediaReport* report) {
  Manifest manifest;
  ZoMediaReport found;
  if (const int code = read(manifest)) return code;
  found.label = ZoString(std::wstring_view(manifest.label));
  found.files = files_ = static_cast<unsigned int>(manifest.files.size());
  for (const ManifestFile& file : manifest.files) bytes_ += file.size;
  found.bytes = bytes_;
  int result = ZoResult::ok;
  for (const ManifestFile& file : manifest.files) {
    const int code = checkFile(file, found);
    if (code == ZoResult::cancelled) return code;
    if (code) result = code;
  }
  if (report) *report = std::move(found);
  return result;
}

// ---- Making ----

// The files in a folder, which is given from the root on with its final delimiter, and below it.
int Media::collect(const std::wstring& below, unsigned int depth, Manifest& manifest) const {
  FolderSearch search(root_ + below, L"*");
  std::vector<std::wstring> folders;
  for (WIN32_FIND_DATAW entry; search.next(entry);) {
    const std::wstring name = below + entry.cFileName;
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) continue;
    if (!isSafe(name)) return failed(L"writeManifest", ERROR_INVALID_NAME);
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
      folders.push_back(name + L'\\');
    else if (!equalNames(name, kManifestName))
      manifest.files.push_back({.name = name, .size = lookOf(entry).size});
  }
  if (search.error()) return failed(L"writeManifest", search.error());
  if (depth > kMaxDepth) return failed(L"writeManifest", ERROR_FILENAME_EXCED_RANGE);
  for (const std::wstring& folder : folders)
    if (const int code = collect(folder, depth + 1, manifest)) return code;
  return ZoResult::ok;
}

int Media::write(const ZoString& label) {
  Manifest manifest;
  manifest.label = label.view();
  if (!canBeLabel(manifest.label)) return failed(L"writeManifest", ERROR_INVALID_NAME);
  if (const int code = collect({}, 0, manifest)) return code;
  std::ranges::sort(manifest.files, [](const ManifestFile& a, const ManifestFile& b) {
    return orderNames(a.name, b.name) < 0;
  });
  files_ = static_cast<unsigned int>(manifest.files.size());
  for (const ManifestFile& file : manifest.files) bytes_ += file.size;
  for (ManifestFile& file : manifest.files) {
    if (const int code = sum(root_ + file.name, file.size, file.sum)) return code;
    ++filesDone_;
  }
  Sha256Sum made;
  std::string text = printManifest(manifest);
  if (text.size() > kMaxManifestBytes / 2) return failed(L"writeManifest", ERROR_FILE_TOO_LARGE);
  if (sumOf(text, key_, made)) return failed(L"writeManifest");
  text = withSum(std::move(text), made);
  const ZoFileName target{std::wstring_view(manifestName())};
  FreshFile fresh = createFresh(stemBeside(target), kEndingBeside, GENERIC_WRITE, 0, 0);
  const bool isWritten =
      fresh.file && writeAll(fresh.file.get(), text.data(), text.size()) == text.size();
  if (!isWritten || !fresh.file.close() ||
      !putInPlace(fresh, SystemPath(target.fullName()), false)) {
    return failed(L"writeManifest");
  }
  return ZoResult::ok;
}

}  // namespace zo
