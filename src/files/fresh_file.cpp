#include "files/fresh_file.h"

#include <array>
#include <atomic>
#include <utility>

#include "files/folder_search.h"
#include "platform/file_api.h"
#include "platform/system_path.h"
#include "text/code_units.h"

namespace zo {
namespace {

// So that the digits and an ending still fit into a component of the platform, also of a file
// system that counts the bytes of UTF-8.
constexpr size_t kLongestStem = 60;

std::wstring_view shortened(std::wstring_view name) { return name.substr(0, kLongestStem); }

// What is of no use any more, read-only or not.
void discard(const wchar_t* path) noexcept {
  if (fileApi().removeFile(path) || GetLastError() != ERROR_ACCESS_DENIED) return;
  fileApi().setAttributes(path, FILE_ATTRIBUTE_NORMAL);
  fileApi().removeFile(path);
}

// Numbers that differ between processes and between calls. They only keep collisions rare: what
// exists is never touched.
unsigned int nextNumber() {
  static std::atomic<unsigned int> counter = GetCurrentProcessId() * 0x9E3779B1U;
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return counter.fetch_add(0x61C88647U) ^ now.LowPart;
}

std::wstring hexadecimal(unsigned int number) {
  std::wstring text(8, L'0');
  writeHex(text.data(), number, 8, kLowerHexDigits);
  return text;
}

}  // namespace

std::wstring freshName(std::wstring_view stem, std::wstring_view ending) {
  return std::wstring(stem).append(hexadecimal(nextNumber())).append(ending);
}

FreshFile::FreshFile(FreshFile&& other) noexcept
    : file(std::move(other.file)),
      name(std::move(other.name)),
      path(std::move(other.path)),
      isOurs(std::exchange(other.isOurs, false)) {}

FreshFile::~FreshFile() {
  const KeptError kept;
  file.close();
  if (isOurs) discard(path.c_str());
}

FreshFile nameFresh(std::wstring_view stem, std::wstring_view ending) {
  FreshFile fresh;
  fresh.name = freshName(stem, ending);
  fresh.path = static_cast<const wchar_t*>(SystemPath(fresh.name.c_str()));
  return fresh;
}

FreshFile createFresh(std::wstring_view stem, std::wstring_view ending, DWORD access, DWORD share,
                      DWORD flags) {
  constexpr int kAttempts = 1000;
  for (int attempt = 1;; ++attempt) {
    FreshFile fresh = nameFresh(stem, ending);
    fresh.file = OpenFile(fileApi().create(fresh.path.c_str(), access, share, CREATE_NEW, flags));
    fresh.isOurs = static_cast<bool>(fresh.file);
    const DWORD error = GetLastError();
    const bool isTaken = error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS;
    if (fresh.file || !isTaken || attempt == kAttempts) return fresh;
  }
}

std::wstring temporaryStem(const ZoFileName& name) {
  std::wstring folder(folderOf(name));
  if (folder.empty()) {
    folder = platformText(
        [](DWORD size, wchar_t* buffer) { return fileApi().tempFolder(size, buffer); });
    if (folder.empty()) return folder;
  }
  const std::wstring_view own = name.fileName();
  folder += own.empty() ? std::wstring_view(L"zo") : shortened(own);
  return folder;
}

std::wstring temporaryEnding(const ZoFileName& name) {
  const std::wstring_view own = name.extension();
  return std::wstring(own.empty() ? std::wstring_view(L".tmp") : own);
}

std::wstring stemBeside(const ZoFileName& target) {
  return std::wstring(folderOf(target)).append(shortened(target.fileNameExt())).append(1, L'~');
}

}  // namespace zo
