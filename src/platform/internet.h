// The functions of the platform's internet library.
#pragma once

#include <windows.h>

#include <wininet.h>

#include "platform/system_library.h"

namespace zo {

struct Internet {
  SystemLibrary library{L"wininet.dll"};
  ZO_FUNCTION_OF(library, InternetOpenW);
  ZO_FUNCTION_OF(library, InternetConnectW);
  ZO_FUNCTION_OF(library, InternetCloseHandle);
  ZO_FUNCTION_OF(library, InternetSetOptionW);
  ZO_FUNCTION_OF(library, InternetSetStatusCallbackW);
  ZO_FUNCTION_OF(library, InternetReadFile);
  ZO_FUNCTION_OF(library, InternetQueryDataAvailable);
  ZO_FUNCTION_OF(library, InternetFindNextFileW);
  ZO_FUNCTION_OF(library, InternetGetLastResponseInfoW);
  ZO_FUNCTION_OF(library, HttpOpenRequestW);
  ZO_FUNCTION_OF(library, HttpAddRequestHeadersW);
  ZO_FUNCTION_OF(library, HttpSendRequestW);
  ZO_FUNCTION_OF(library, HttpQueryInfoW);
  ZO_FUNCTION_OF(library, FtpCreateDirectoryW);
  ZO_FUNCTION_OF(library, FtpRemoveDirectoryW);
  ZO_FUNCTION_OF(library, FtpDeleteFileW);
  ZO_FUNCTION_OF(library, FtpRenameFileW);
  ZO_FUNCTION_OF(library, FtpGetFileW);
  ZO_FUNCTION_OF(library, FtpPutFileW);
  ZO_FUNCTION_OF(library, FtpFindFirstFileW);
  ZO_FUNCTION_OF(library, FtpSetCurrentDirectoryW);
};

[[nodiscard]] inline const Internet& internet() noexcept {
  static const Internet functions;
  return functions;
}

}  // namespace zo
