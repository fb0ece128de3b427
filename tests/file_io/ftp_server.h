// A real FTP server for a test, on a free port of the loopback; it ends with its object, or with
// the process. User "u", password "p".
#pragma once

#include <filesystem>
#include <string>

namespace zo::test {

class FtpServer {
 public:
  FtpServer();
  ~FtpServer();
  FtpServer(const FtpServer&) = delete;
  FtpServer& operator=(const FtpServer&) = delete;

  // Whether there is one: not where the server's package is not installed.
  [[nodiscard]] bool isRunning() const { return port_ != 0; }
  // The URL of a path on it.
  [[nodiscard]] std::wstring url(const std::wstring& path, const wchar_t* login = L"u:p@") const;
  // Where the server's files are.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

 private:
  unsigned long long control_;
  unsigned int port_ = 0;
  std::filesystem::path folder_;
};

}  // namespace zo::test
