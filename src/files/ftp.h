// One connection to an FTP server, through the platform's internet functions, which are loaded when
// they are needed first: most programs never do.
//
// Paths are the server's, absolute. File names travel in the ANSI code page.
//
// Errors:  operations answer false and leave the reason in the last error: a code of the platform's
//          internet functions (12000 and up) where it is theirs. What the server said to a refusal
//          is kept for the whole process, until it refuses something else.
// Threads: one per connection.
#pragma once

#include <windows.h>
#include <zo/system/file_system.h>

#include <string>
#include <vector>

#include "files/keep_reason.h"

namespace zo {

// What a name of the form ftp://[user[:password]@]host[:port]/path says. Other names have no host.
struct FtpAddress {
  std::wstring host, user, password, path;
  unsigned short port = 0;  // 0: the usual one
};
[[nodiscard]] FtpAddress ftpAddress(const ZoFileName& name);
[[nodiscard]] std::wstring ftpPath(const ZoFileName& name);
// Whether both are FTP names of one server and user.
[[nodiscard]] bool sameServer(const ZoFileName& a, const ZoFileName& b);

// What the server said, for an error that is its refusal; else empty.
[[nodiscard]] std::wstring serverWords(DWORD error);
// Our own words for the usual errors of the internet functions, where the platform has none.
[[nodiscard]] std::wstring internetMessage(DWORD error);

// Keeps the last error and the server's words over what is cleaned up after a failure.
class KeptReason {
 public:
  KeptReason();
  KeptReason(const KeptReason&) = delete;
  KeptReason& operator=(const KeptReason&) = delete;
  ~KeptReason();

 private:
  DWORD error_;
  std::wstring words_;
};

class FtpConnection {
 public:
  // Connects; the agent is how the connection calls itself.
  FtpConnection(const FtpAddress& address, const wchar_t* agent);
  FtpConnection(const FtpConnection&) = delete;
  FtpConnection& operator=(const FtpConnection&) = delete;
  ~FtpConnection();
  [[nodiscard]] bool isOpen() const { return server_ != nullptr; }

  bool createFolder(const std::wstring& path);
  bool removeFolder(const std::wstring& path);
  bool removeFile(const std::wstring& path);
  bool rename(const std::wstring& from, const std::wstring& to);
  // The local file is made anew.
  bool get(const std::wstring& path, const wchar_t* local);
  bool put(const wchar_t* local, const std::wstring& path);
  bool isFolder(const std::wstring& path);
  // All that is in a folder, "." and ".." where the server tells them.
  bool list(const std::wstring& folder, std::vector<WIN32_FIND_DATAW>& entries);

 private:
  void* session_ = nullptr;
  void* server_ = nullptr;
};

// Runs an operation on the server of a name: 3 when it is no FTP name, 1 when it does not answer,
// else what the operation answers.
template <class Operation>
int onServer(const ZoFileName& name, const wchar_t* agent, ZoFileSystem& service,
             Operation operation) {
  const FtpAddress address = ftpAddress(name);
  if (address.host.empty())
    return keepReason(agent, ERROR_NOT_SUPPORTED, ZoResult::invalid, &service);
  FtpConnection server(address, agent);
  if (server.isOpen()) return operation(server);
  return keepReason(agent, &service);
}

}  // namespace zo
