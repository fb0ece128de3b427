#include <windows.h>
#include <zo/names/file_name.h>
#include <zo/system/execute.h>

#include <shellapi.h>

#include "system/service_scope.h"

int ZoExecute::convertErr(int result) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  if (result > 32) return ZoResult::ok;
  switch (result) {
    case SE_ERR_FNF:
      return kFileNotFound;
    case SE_ERR_PNF:
      return kPathNotFound;
    case SE_ERR_ACCESSDENIED:
      return kAccessDenied;
    case SE_ERR_OOM:
      return kOutOfMemory;
    case ERROR_BAD_FORMAT:  // 11
      return kBadFormat;
    case SE_ERR_SHARE:
      return kSharingViolation;
    case SE_ERR_ASSOCINCOMPLETE:
      return kAssociationIncomplete;
    case SE_ERR_DDETIMEOUT:
      return kDdeTimeOut;
    case SE_ERR_DDEFAIL:
      return kDdeFailed;
    case SE_ERR_DDEBUSY:
      return kDdeBusy;
    case SE_ERR_NOASSOC:
      return kNoAssociation;
    case SE_ERR_DLLNOTFOUND:
      return kLibraryNotFound;
    default:
      return ZoResult::refused;
  }
}

int ZoStdExecute::release(const wchar_t*) { return ZoResult::refused; }

int ZoStdExecute::automatic(const ZoFileName& file, const wchar_t* arguments, int show,
                            bool option) {
  if (process(file, arguments, show, option) == ZoResult::ok) return ZoResult::ok;
  return shell(file, arguments, show);
}

int ZoStdExecute::process(const ZoFileName&, const wchar_t*, int, bool) {
  return ZoResult::refused;
}

int ZoStdExecute::shell(const ZoFileName& file, const wchar_t* arguments, int show) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  auto* const result = ShellExecuteW(GetActiveWindow(), L"open", file.fullName(), arguments,
                                     nullptr, show == 0 ? SW_SHOWNORMAL : show);
  return convertErr(static_cast<int>(reinterpret_cast<INT_PTR>(result)));
}
