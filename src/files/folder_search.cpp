#include "files/folder_search.h"

#include <utility>

#include "files/ftp.h"
#include "platform/file_api.h"
#include "platform/system_path.h"

namespace zo {
namespace {

bool isDots(const wchar_t* name) noexcept {
  return name[0] == L'.' && (!name[1] || (name[1] == L'.' && !name[2]));
}

}  // namespace

SearchPlace searchPlace(const ZoFileName& pattern) {
  const std::wstring whole(pattern.view());
  const std::wstring_view folder = folderOf(pattern);
  if (pattern.volumePrefixLength() > folder.size())
    return {.folder = whole + pattern.delimiter(), .pattern = L"*"};
  const std::wstring names = whole.substr(folder.size());
  return {.folder = std::wstring(folder), .pattern = names.empty() ? L"*" : names};
}

FolderSearch::FolderSearch(std::wstring_view folder, std::wstring_view pattern) {
  const std::wstring all = std::wstring(folder).append(pattern);
  fetched_.resize(1);
  handle_ = fileApi().findFirst(SystemPath(all.c_str()), fetched_[0]);
  if (handle_ != INVALID_HANDLE_VALUE) return;
  endWith(GetLastError());
  fetched_.clear();
}

FolderSearch::FolderSearch(FtpConnection& server, const std::wstring& folder) {
  if (server.list(folder, fetched_)) return;
  error_ = GetLastError();
  if (error_ == ERROR_SUCCESS) error_ = ERROR_GEN_FAILURE;  // what does not say why has failed, too
}

FolderSearch::FolderSearch(FolderSearch&& other) noexcept
    : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)),
      fetched_(std::move(other.fetched_)),
      given_(other.given_),
      error_(other.error_) {}

FolderSearch::~FolderSearch() {
  if (handle_ != INVALID_HANDLE_VALUE) fileApi().findClose(handle_);
}

void FolderSearch::endWith(DWORD error) noexcept {
  const bool isEnd = error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND;
  if (error == ERROR_SUCCESS) error = ERROR_GEN_FAILURE;  // it has failed all the same
  error_ = isEnd ? ERROR_SUCCESS : error;
}

bool FolderSearch::next(WIN32_FIND_DATAW& entry) {
  do {
    if (given_ < fetched_.size()) {
      entry = fetched_[given_++];
    } else if (handle_ == INVALID_HANDLE_VALUE) {
      return false;
    } else if (!fileApi().findNext(handle_, entry)) {
      endWith(GetLastError());
      return false;
    }
  } while (isDots(entry.cFileName));
  return true;
}

}  // namespace zo
