#include "files/replace_file.h"

#include "files/fresh_file.h"
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

}  // namespace

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
