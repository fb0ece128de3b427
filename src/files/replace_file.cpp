#include "files/replace_file.h"

#include "files/fresh_file.h"
#include "names/name_compare.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

namespace zo {
namespace {

// Refuses what the renaming would refuse in the end, and a read-only target, which some platforms
// would replace.
bool mayReplace(const ZoFileName& target, bool failIfExists) {
  const DWORD attributes = fileApi().attributes(SystemPath(target.fullName()));
  if (attributes == INVALID_FILE_ATTRIBUTES) return true;  // what is wrong with it, others will say
  const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (failIfExists || readOnly)
    SetLastError(failIfExists ? ERROR_FILE_EXISTS : ERROR_ACCESS_DENIED);
  return !failIfExists && !readOnly;
}

std::wstring fullPath(const ZoFileName& name) {
  return textOf([&](DWORD size, wchar_t* buffer) {
    return fileApi().fullPath(name.fullName(), size, buffer);
  });
}

// Without delimiters behind the last component.
std::wstring_view bare(const ZoFileName& name) {
  const std::wstring_view text = name.view();
  return text.substr(0, text.find_last_not_of(LR"(\/)") + 1);
}

std::wstring_view lastOf(std::wstring_view path) {
  return path.substr(path.find_last_of(LR"(\/)") + 1);
}

// Whether the file system calls it so, case included; true if that cannot be told.
bool isCalled(const std::wstring& path) {
  WIN32_FIND_DATAW entry;
  HANDLE search = fileApi().findFirst(SystemPath(path.c_str()), entry);
  if (search == INVALID_HANDLE_VALUE) return true;
  fileApi().findClose(search);
  return lastOf(path) == entry.cFileName || !equalNames(lastOf(path), entry.cFileName);
}

}  // namespace

bool differInCaseAtMost(const ZoFileName& a, const ZoFileName& b) {
  return equalNames(bare(a), bare(b)) || equalNames(fullPath(a), fullPath(b));
}

bool rename(const ZoFileName& from, const ZoFileName& to) {
  FileApi& api = fileApi();
  const SystemPath source(from.fullName()), target(to.fullName());
  if (!api.move(source, target, 0)) return false;
  const std::wstring wanted(bare(to));
  const std::wstring_view before = lastOf(bare(from)), after = lastOf(wanted);
  if (before == after || !equalNames(before, after) || isCalled(wanted)) return true;
  const std::wstring between = freshName(stemBeside(ZoFileName(wanted)), kEndingBeside);
  const SystemPath step(between.c_str());
  if (!api.move(source, step, 0)) return false;
  if (api.move(step, target, 0)) return true;
  const KeptError kept;
  api.move(step, source, 0);
  return false;
}

bool putInPlace(const std::wstring& complete, const ZoFileName& target, bool failIfExists) {
  if (!mayReplace(target, failIfExists)) return false;
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (failIfExists ? 0 : MOVEFILE_REPLACE_EXISTING);
  return fileApi().move(SystemPath(complete.c_str()), SystemPath(target.fullName()), flags);
}

bool copyIntoPlace(const ZoFileName& from, const ZoFileName& to, bool failIfExists) {
  if (!mayReplace(to, failIfExists)) return false;
  const std::wstring stem = stemBeside(to);
  std::wstring beside;
  bool copied = false;
  do {
    beside = freshName(stem, kEndingBeside);
    copied = fileApi().copy(SystemPath(from.fullName()), SystemPath(beside.c_str()), true);
  } while (!copied && GetLastError() == ERROR_FILE_EXISTS);
  if (copied && putInPlace(beside, to, failIfExists)) return true;
  discard(beside);
  return false;
}

void discard(const std::wstring& name) noexcept {
  const KeptError kept;
  const SystemPath path(name.c_str());
  if (fileApi().removeFile(path) || GetLastError() != ERROR_ACCESS_DENIED) return;
  fileApi().setAttributes(path, FILE_ATTRIBUTE_NORMAL);
  fileApi().removeFile(path);
}

}  // namespace zo
