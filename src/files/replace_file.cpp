#include "files/replace_file.h"

#include "names/name_compare.h"
#include "platform/open_file.h"

namespace zo {
namespace {

// Refuses what the renaming would refuse in the end, and a read-only target, which some platforms
// would replace.
bool mayReplace(const SystemPath& target, bool failIfExists) noexcept {
  const DWORD attributes = fileApi().attributes(target);
  if (attributes == INVALID_FILE_ATTRIBUTES) return true;  // what is wrong with it, others will say
  const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (failIfExists || readOnly)
    SetLastError(failIfExists ? ERROR_FILE_EXISTS : ERROR_ACCESS_DENIED);
  return !failIfExists && !readOnly;
}

std::wstring fullPath(const ZoFileName& name) {
  return platformText([&](DWORD size, wchar_t* buffer) {
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
bool isCalled(std::wstring_view name, const SystemPath& path) {
  WIN32_FIND_DATAW entry;
  HANDLE search = fileApi().findFirst(path, entry);
  if (search == INVALID_HANDLE_VALUE) return true;
  fileApi().findClose(search);
  return name == entry.cFileName || !equalNames(name, entry.cFileName);
}

}  // namespace

bool differInCaseAtMost(const ZoFileName& a, const ZoFileName& b) {
  return equalNames(bare(a), bare(b)) || equalNames(fullPath(a), fullPath(b));
}

bool rename(const ZoFileName& from, const ZoFileName& to) {
  FileApi& api = fileApi();
  const SystemPath source(from.fullName()), target(to.fullName());
  const std::wstring wanted(bare(to));
  const std::wstring_view before = lastOf(bare(from)), after = lastOf(wanted);
  const bool differsInCase = before != after && equalNames(before, after);
  const std::wstring between =
      differsInCase ? freshName(stemBeside(ZoFileName(wanted)), kEndingBeside) : std::wstring();
  const SystemPath step(between.c_str()), found(wanted.c_str());
  if (!api.move(source, target, 0)) return false;
  if (!differsInCase || isCalled(after, found)) return true;
  if (!api.move(source, step, 0)) return false;
  if (api.move(step, target, 0)) return true;
  const KeptError kept;
  api.move(step, source, 0);
  return false;
}

bool putInPlace(FreshFile& complete, const SystemPath& target, bool failIfExists) noexcept {
  if (!mayReplace(target, failIfExists)) return false;
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (failIfExists ? 0 : MOVEFILE_REPLACE_EXISTING);
  complete.isOurs = !fileApi().move(complete.path.c_str(), target, flags);
  return !complete.isOurs;
}

bool copyIntoPlace(const ZoFileName& from, const ZoFileName& to, bool failIfExists) {
  const SystemPath source(from.fullName()), target(to.fullName());
  if (!mayReplace(target, failIfExists)) return false;
  const std::wstring stem = stemBeside(to);
  for (;;) {
    FreshFile beside = nameFresh(stem, kEndingBeside);
    beside.isOurs = true;  // also what was copied in part
    if (fileApi().copy(source, beside.path.c_str(), true))
      return putInPlace(beside, target, failIfExists);
    if (GetLastError() != ERROR_FILE_EXISTS) return false;
    beside.isOurs = false;
  }
}

}  // namespace zo
