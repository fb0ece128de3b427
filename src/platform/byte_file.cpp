#include "platform/byte_file.h"

#include <algorithm>
#include <atomic>

namespace zo {

namespace {

constexpr std::size_t kLargestCall = std::size_t{1} << 30;  // a call's size has 32 bits

// A name in the folder of `name` that no other process and no other thread of this one makes.
std::wstring temporaryBeside(const std::wstring& name) {
  static std::atomic<unsigned int> counter = 0;
  return name.substr(0, name.find_last_of(L"\\/:") + 1) + L"zo" +
         std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter) + L".tmp";
}

}  // namespace

bool InputFile::open(const wchar_t* name) noexcept {
  file_ = Handle(fileApi().create(name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  position_ = 0;
  std::int64_t bytes = 0;
  if (!file_ || !fileApi().size(file_.get(), bytes)) return false;
  size_ = static_cast<std::uint64_t>(bytes);
  return true;
}

bool InputFile::read(std::uint64_t offset, std::span<unsigned char> to) noexcept {
  std::int64_t now = 0;
  if (offset != position_ &&
      !fileApi().seek(file_.get(), static_cast<std::int64_t>(offset), FILE_BEGIN, now))
    return false;
  position_ = offset;
  while (!to.empty()) {
    DWORD done = 0;
    const auto part = static_cast<DWORD>(std::min(to.size(), kLargestCall));
    if (!fileApi().read(file_.get(), to.data(), part, done)) return false;
    if (done == 0) {
      SetLastError(ERROR_HANDLE_EOF);
      return false;
    }
    position_ += done;
    to = to.subspan(done);
  }
  return true;
}

bool TargetFile::open(const wchar_t* name) {
  name_ = name;
  do {  // a killed process of the same number may have left a file
    temporary_ = temporaryBeside(name_);
    file_ = Handle(
        fileApi().create(temporary_.c_str(), GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL));
  } while (!file_ && GetLastError() == ERROR_FILE_EXISTS);
  if (!file_) temporary_.clear();
  return static_cast<bool>(file_);
}

TargetFile::~TargetFile() {
  file_.reset();
  if (!temporary_.empty()) fileApi().removeFile(temporary_.c_str());
}

bool TargetFile::write(std::span<const unsigned char> bytes) noexcept {
  while (!bytes.empty()) {
    DWORD done = 0;
    const auto part = static_cast<DWORD>(std::min(bytes.size(), kLargestCall));
    if (!fileApi().write(file_.get(), bytes.data(), part, done)) return false;
    if (done < part) {
      SetLastError(ERROR_DISK_FULL);
      return false;
    }
    bytes = bytes.subspan(part);
  }
  return true;
}

bool TargetFile::commit() noexcept {
  if (!fileApi().flush(file_.get())) return false;
  file_.reset();
  constexpr DWORD kReplace = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (!fileApi().move(temporary_.c_str(), name_.c_str(), kReplace)) return false;
  temporary_.clear();
  return true;
}

}  // namespace zo
