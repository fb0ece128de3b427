// Copying, appending and moving whole files.
#include "files/ftp.h"
#include "files/replace_file.h"
#include "files/std_file_system_imp.h"
#include "platform/open_file.h"
#include "platform/system_path.h"

#include <memory>

namespace {

constexpr DWORD kPiece = 64 * 1024;

// Copies all from one open file to another. false leaves the reason in the last error.
bool pour(HANDLE from, HANDLE to) {
  const auto buffer = std::make_unique<std::byte[]>(kPiece);
  zo::FileApi& api = zo::fileApi();
  for (;;) {
    DWORD got = 0;
    if (!api.read(from, buffer.get(), kPiece, got)) return false;
    if (got == 0) return true;
    for (DWORD written = 0, done = 0; written < got; written += done) {
      if (!api.write(to, buffer.get() + written, got - written, done)) return false;
      if (done == 0) {
        SetLastError(ERROR_DISK_FULL);
        return false;
      }
    }
  }
}

// Opens the target of append; `made` says whether it was not there.
zo::OpenFile openForAppending(const wchar_t* name, bool mustExist, bool& made) {
  const zo::SystemPath path(name);
  constexpr DWORD kShare = FILE_SHARE_READ;
  zo::OpenFile file(
      zo::fileApi().create(path, GENERIC_WRITE, kShare, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  made = !file && !mustExist && GetLastError() == ERROR_FILE_NOT_FOUND;
  if (made) {
    file = zo::OpenFile(
        zo::fileApi().create(path, GENERIC_WRITE, kShare, CREATE_NEW, FILE_ATTRIBUTE_NORMAL));
  }
  return file;
}

// Brings the target of append back to what it was.
void takeBack(zo::OpenFile& file, const wchar_t* name, bool made, std::int64_t size) {
  const zo::KeptError kept;
  if (made) {
    file.close();
    zo::fileApi().removeFile(zo::SystemPath(name));
  } else if (size >= 0 && zo::fileApi().seek(file.get(), size, FILE_BEGIN, size)) {
    zo::fileApi().setEnd(file.get());
  }
}

}  // namespace

int ZoStdFileSystemImp::copy(const ZoFileName& from, const ZoFileName& to, bool failIfExists) {
  if (from.isURL() || to.isURL()) return ZoResult::invalid;
  return result(zo::copyIntoPlace(from, to, failIfExists), L"copy");
}

int ZoStdFileSystemImp::append(const ZoFileName& from, const ZoFileName& to, bool mustExist) {
  if (from.isURL() || to.isURL()) return ZoResult::invalid;
  zo::FileApi& api = zo::fileApi();
  const zo::OpenFile source(api.create(zo::SystemPath(from.fullName()), GENERIC_READ,
                                       FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN));
  if (!source) return report(L"append");
  bool made = false;
  zo::OpenFile target = openForAppending(to.fullName(), mustExist, made);
  if (!target) return report(L"append");
  std::int64_t size = -1;
  if (!api.seek(target.get(), 0, FILE_END, size) || !pour(source.get(), target.get())) {
    takeBack(target, to.fullName(), made, size);
    return report(L"append");
  }
  return result(target.close(), L"append");
}

int ZoStdFileSystemImp::move(const ZoFileName& from, const ZoFileName& to) {
  if (from.isURL() != to.isURL()) return ZoResult::invalid;
  if (from.isURL()) {
    if (!zo::sameServer(from, to)) return ZoResult::invalid;
    return zo::onServer(from, L"ZoFileSystemMove", service_, [&](zo::FtpConnection& server) {
      return result(server.rename(zo::ftpPath(from), zo::ftpPath(to)), L"ZoFileSystemMove");
    });
  }
  zo::FileApi& api = zo::fileApi();
  const zo::SystemPath source(from.fullName()), target(to.fullName());
  if (api.move(source, target, 0)) return ZoResult::ok;
  if (GetLastError() != ERROR_NOT_SAME_DEVICE) return report(L"move");
  if (!zo::copyIntoPlace(from, to, true)) return report(L"move");
  if (api.removeFile(source)) return ZoResult::ok;
  report(L"move");
  return ZoResult::partial;
}
