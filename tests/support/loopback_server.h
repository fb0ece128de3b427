// A real server for a test, on a free port of the loopback; it ends with its object, or with the
// process. Throws std::runtime_error where there is none.
//
// A Python script that is started with a port, connects to it, and says there "PORT FOLDER" in one
// line; then each line that it is sent is a question to the script itself, which it answers with a
// line.
#pragma once

#include <filesystem>
#include <string>

namespace zo::test {

class LoopbackServer {
 public:
  explicit LoopbackServer(const std::filesystem::path& script);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // Where the server's files are, and what leads there: "127.0.0.1:PORT".
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  [[nodiscard]] const std::wstring& host() const { return host_; }
  std::string ask(const std::string& question);

 private:
  std::string hear();

  unsigned long long control_;
  std::wstring host_;
  std::filesystem::path folder_;
};

}  // namespace zo::test
