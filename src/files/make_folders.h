// Making a folder with those above it that are missing.
#pragma once

#include <string>

namespace zo {

class FtpConnection;

// All of them, or none: a failure removes what was made before it. What is there already is
// refused. false leaves the reason in the last error (for a server, files/ftp.h).
[[nodiscard]] bool makeFolders(const std::wstring& path);
[[nodiscard]] bool makeFolders(FtpConnection& server, const std::wstring& path);

}  // namespace zo
