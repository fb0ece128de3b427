#include "support/loopback_server.h"

#include <windows.h>
#include <winsock2.h>

#include <stdexcept>

namespace zo::test {

namespace {

// Programs of the building machine stand on the drive Z: there, and take their own paths.
bool underWine() { return GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version"); }

void startScript(const std::wstring& script, unsigned int port) {
  std::wstring line = (underWine() ? L"/usr/bin/python3 \"" : L"python \"") + script + L"\" " +
                      std::to_wstring(port);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(underWine() ? L"Z:\\usr\\bin\\python3" : nullptr, line.data(), nullptr,
                      nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
    throw std::runtime_error("cannot start the server");
  }
  if (process.hProcess) CloseHandle(process.hProcess);
  if (process.hThread) CloseHandle(process.hThread);
}

}  // namespace

LoopbackServer::LoopbackServer(const std::filesystem::path& script) {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  const SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof address;
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener, plain, size) || listen(listener, 1) || getsockname(listener, plain, &size))
    throw std::runtime_error("cannot listen on the loopback");
  startScript(script.wstring(), ntohs(address.sin_port));
  control_ = accept(listener, nullptr, nullptr);
  closesocket(listener);
  const std::string line = hear();
  if (line.empty()) throw std::runtime_error("no server here: " + script.string());
  const size_t blank = line.find(' ');
  host_ = L"127.0.0.1:" + std::to_wstring(std::stoul(line));
  folder_ = (underWine() ? "Z:" : "") + line.substr(blank + 1);
}

LoopbackServer::~LoopbackServer() {
  closesocket(control_);
  WSACleanup();
}

std::string LoopbackServer::hear() {
  std::string line;
  for (char c; recv(control_, &c, 1, 0) == 1 && c != '\n';) line += c;
  return line;
}

std::string LoopbackServer::ask(const std::string& question) {
  const std::string line = question + '\n';
  send(control_, line.data(), static_cast<int>(line.size()), 0);
  return hear();
}

}  // namespace zo::test
