#include "files/ftp.h"

#include <wininet.h>

#include <bit>
#include <string_view>
#include <utility>

#include "files/name_compare.h"
#include "platform/open_file.h"

namespace zo {
namespace {

// The functions of the platform's internet library.
struct Internet {
  HMODULE library = LoadLibraryExW(L"wininet.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);

  template <class Function>
  Function find(const char* name) const {
    const FARPROC address = library ? GetProcAddress(library, name) : nullptr;
    return std::bit_cast<Function>(address);
  }

// NOLINTNEXTLINE(bugprone-macro-parentheses): the name of a member cannot stand in them
#define ZO_INTERNET(name) decltype(&::name) name = find<decltype(&::name)>(#name)
  ZO_INTERNET(InternetOpenW);
  ZO_INTERNET(InternetConnectW);
  ZO_INTERNET(InternetCloseHandle);
  ZO_INTERNET(InternetFindNextFileW);
  ZO_INTERNET(FtpCreateDirectoryW);
  ZO_INTERNET(FtpRemoveDirectoryW);
  ZO_INTERNET(FtpDeleteFileW);
  ZO_INTERNET(FtpRenameFileW);
  ZO_INTERNET(FtpGetFileW);
  ZO_INTERNET(FtpPutFileW);
  ZO_INTERNET(FtpFindFirstFileW);
  ZO_INTERNET(FtpSetCurrentDirectoryW);
#undef ZO_INTERNET
};

const Internet& internet() {
  static const Internet functions;
  return functions;
}

constexpr DWORD kTransfer =
    FTP_TRANSFER_TYPE_BINARY | INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;

// 0 where the text is no port.
unsigned short toPort(std::wstring_view text) {
  unsigned int port = 0;
  for (const wchar_t c : text) {
    if (c < L'0' || c > L'9') return 0;
    port = port * 10 + static_cast<unsigned int>(c - L'0');
    if (port > 0xFFFF) return 0;
  }
  return static_cast<unsigned short>(port);
}

const wchar_t* orNull(const std::wstring& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

FtpAddress ftpAddress(const ZoFileName& name) {
  constexpr std::wstring_view kScheme = L"ftp://";
  FtpAddress address;
  const std::wstring_view text = name.view();
  if (!name.isURL() || !equalNames(text.substr(0, kScheme.size()), kScheme)) return address;
  std::wstring_view authority = text.substr(kScheme.size());
  const size_t slash = authority.find(L'/');
  address.path = slash == std::wstring_view::npos ? L"/" : authority.substr(slash);
  authority = authority.substr(0, slash);
  if (const size_t at = authority.rfind(L'@'); at != std::wstring_view::npos) {
    const std::wstring_view login = authority.substr(0, at);
    const size_t colon = login.find(L':');
    address.user = login.substr(0, colon);
    if (colon != std::wstring_view::npos) address.password = login.substr(colon + 1);
    authority = authority.substr(at + 1);
  }
  const size_t colon = authority.find(L':');
  address.host = authority.substr(0, colon);
  if (colon != std::wstring_view::npos) address.port = toPort(authority.substr(colon + 1));
  return address;
}

std::wstring ftpPath(const ZoFileName& name) { return ftpAddress(name).path; }

bool sameServer(const ZoFileName& a, const ZoFileName& b) {
  const FtpAddress one = ftpAddress(a), other = ftpAddress(b);
  return !one.host.empty() && equalNames(one.host, other.host) && one.port == other.port &&
         one.user == other.user;
}

FtpConnection::FtpConnection(const FtpAddress& address, const wchar_t* agent) {
  const Internet& net = internet();
  if (!net.library) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return;
  }
  session_ = net.InternetOpenW(agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  if (!session_) return;
  server_ = net.InternetConnectW(session_, address.host.c_str(),
                                 address.port ? address.port : INTERNET_DEFAULT_FTP_PORT,
                                 orNull(address.user), orNull(address.password),
                                 INTERNET_SERVICE_FTP, INTERNET_FLAG_PASSIVE, 0);
}

FtpConnection::~FtpConnection() {
  const KeptError kept;
  if (server_) internet().InternetCloseHandle(server_);
  if (session_) internet().InternetCloseHandle(session_);
}

bool FtpConnection::createFolder(const std::wstring& path) {
  return internet().FtpCreateDirectoryW(server_, path.c_str());
}

bool FtpConnection::removeFolder(const std::wstring& path) {
  return internet().FtpRemoveDirectoryW(server_, path.c_str());
}

bool FtpConnection::removeFile(const std::wstring& path) {
  return internet().FtpDeleteFileW(server_, path.c_str());
}

bool FtpConnection::rename(const std::wstring& from, const std::wstring& to) {
  return internet().FtpRenameFileW(server_, from.c_str(), to.c_str());
}

bool FtpConnection::get(const std::wstring& path, const wchar_t* local) {
  return internet().FtpGetFileW(server_, path.c_str(), local, FALSE, FILE_ATTRIBUTE_NORMAL,
                                kTransfer, 0);
}

bool FtpConnection::put(const wchar_t* local, const std::wstring& path) {
  return internet().FtpPutFileW(server_, local, path.c_str(), FTP_TRANSFER_TYPE_BINARY, 0);
}

bool FtpConnection::isFolder(const std::wstring& path) {
  return internet().FtpSetCurrentDirectoryW(server_, path.c_str());
}

// What may stand in a path is not what may stand in a pattern: so the folder is entered first.
bool FtpConnection::list(const std::wstring& folder, std::vector<WIN32_FIND_DATAW>& entries) {
  const Internet& net = internet();
  if (!net.FtpSetCurrentDirectoryW(server_, folder.c_str())) return false;
  WIN32_FIND_DATAW found;
  SetLastError(ERROR_SUCCESS);
  HINTERNET search = net.FtpFindFirstFileW(server_, nullptr, &found,
                                           INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE, 0);
  for (bool more = search != nullptr; more; more = net.InternetFindNextFileW(search, &found))
    entries.push_back(found);
  const DWORD error = GetLastError();
  if (search) net.InternetCloseHandle(search);
  SetLastError(error);
  // An empty folder is told in several ways.
  return error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND || error == ERROR_SUCCESS;
}

}  // namespace zo
