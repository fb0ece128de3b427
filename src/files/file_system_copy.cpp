// Copying, appending and moving whole files.
#include "files/fresh_file.h"
#include "files/ftp.h"
#include "files/replace_file.h"
#include "files/std_file_system_imp.h"
#include "platform/open_file.h"
#include "platform/system_path.h"
#include "platform/write_all.h"

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
    if (zo::writeAll(to, buffer.get(), got) != got) return false;
  }
}

// Makes a target of append that was not there, as a whole or not at all.
bool pourIntoNew(HANDLE from, const ZoFileName& target) {
  zo::FreshFile fresh = zo::createFresh(zo::stemBeside(target), zo::kEndingBeside, GENERIC_WRITE, 0,
                                        FILE_ATTRIBUTE_NORMAL);
  const zo::SystemPath place(target.fullName());
  return fresh.file && pour(from, fresh.file.get()) && fresh.file.close() &&
         zo::putInPlace(fresh, place, true);
}

// Adds to the end, or brings the file back to what it was.
bool pourBehind(HANDLE from, zo::OpenFile& target) {
  zo::FileApi& api = zo::fileApi();
  std::int64_t size = -1;
  if (!api.seek(target.get(), 0, FILE_END, size)) return false;
  if (pour(from, target.get())) return target.close();
  const zo::KeptError kept;
  if (api.seek(target.get(), size, FILE_BEGIN, size)) api.setEnd(target.get());
  return false;
}

}  // namespace

int ZoStdFileSystemImp::copy(const ZoFileName& from, const ZoFileName& to, bool failIfExists) {
  if (from.isURL() || to.isURL()) return noUse(L"copy");
  return result(zo::copyIntoPlace(from, to, failIfExists), L"copy");
}

int ZoStdFileSystemImp::append(const ZoFileName& from, const ZoFileName& to, bool mustExist) {
  if (from.isURL() || to.isURL()) return noUse(L"append");
  zo::FileApi& api = zo::fileApi();
  const zo::OpenFile source(api.create(zo::SystemPath(from.fullName()), GENERIC_READ,
                                       FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN));
  if (!source) return report(L"append");
  zo::OpenFile target(api.create(zo::SystemPath(to.fullName()), GENERIC_WRITE, FILE_SHARE_READ,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  if (target) return result(pourBehind(source.get(), target), L"append");
  const bool makesIt = !mustExist && GetLastError() == ERROR_FILE_NOT_FOUND;
  return result(makesIt && pourIntoNew(source.get(), to), L"append");
}

int ZoStdFileSystemImp::move(const ZoFileName& from, const ZoFileName& to) {
  if (from.isURL() != to.isURL()) return noUse(L"move");
  if (from.isURL()) {
    if (!zo::sameServer(from, to)) return noUse(L"move");
    return zo::onServer(from, L"ZoFileSystemMove", service_, [&](zo::FtpConnection& server) {
      return result(server.rename(zo::ftpPath(from), zo::ftpPath(to)), L"ZoFileSystemMove");
    });
  }
  if (zo::rename(from, to)) return ZoResult::ok;
  if (GetLastError() != ERROR_NOT_SAME_DEVICE) return report(L"move");
  const zo::SystemPath source(from.fullName());
  if (!zo::copyIntoPlace(from, to, true)) return report(L"move");
  if (zo::fileApi().removeFile(source)) return ZoResult::ok;
  report(L"move");
  return ZoResult::partial;
}
