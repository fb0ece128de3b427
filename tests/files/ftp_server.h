// A real FTP server for a test, on a free port of the loopback; it ends with its object, or with
// the process. User "u", password "p". Throws std::runtime_error where there is none.
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

  // Where the server's files are, and what leads there: "127.0.0.1:PORT".
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  [[nodiscard]] const std::wstring& host() const { return host_; }

 private:
  unsigned long long control_;
  std::wstring host_;
  std::filesystem::path folder_;
};

}  // namespace zo::test
