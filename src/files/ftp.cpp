#include "files/ftp.h"

#include <cwchar>
#include <string_view>
#include <utility>

#include "names/name_compare.h"
#include "platform/internet.h"
#include "platform/open_file.h"

namespace zo {
namespace {

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

// What a server said to its last refusal.
struct Words {
  SRWLOCK lock = SRWLOCK_INIT;  // a std::mutex would need memory for its first lock
  std::wstring text;
};

Words& words() {
  static Words kept;
  return kept;
}

class WordsLock {
 public:
  WordsLock() noexcept { AcquireSRWLockExclusive(&words().lock); }
  WordsLock(const WordsLock&) = delete;
  WordsLock& operator=(const WordsLock&) = delete;
  ~WordsLock() { ReleaseSRWLockExclusive(&words().lock); }
};

std::wstring exchangeWords(std::wstring text) {
  const WordsLock lock;
  return std::exchange(words().text, std::move(text));
}

// Whether an error is the server's refusal; others leave what it said before.
bool isRefusal(DWORD error) {
  return error == ERROR_INTERNET_EXTENDED_ERROR || error == ERROR_INTERNET_LOGIN_FAILURE ||
         error == ERROR_INTERNET_INCORRECT_PASSWORD || error == ERROR_INTERNET_INCORRECT_USER_NAME;
}

// Of this thread's last operation; without line ends behind them.
std::wstring lastResponse() {
  std::wstring text(256, L'\0');
  DWORD number = 0, length = static_cast<DWORD>(text.size());
  while (!internet().InternetGetLastResponseInfoW(&number, text.data(), &length)) {
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || length < text.size()) return {};
    text.resize(std::size_t{length} + 1);
    length = static_cast<DWORD>(text.size());
  }
  text.resize(std::wcslen(text.c_str()));
  text.resize(text.find_last_not_of(L" \r\n") + 1);
  return text;
}

// Ends an operation: what the server says to a refusal is to be had only now.
bool ended(BOOL done) {
  if (done) return true;
  const KeptError kept;
  if (isRefusal(GetLastError())) exchangeWords(lastResponse());
  return false;
}

struct Message {
  DWORD error;
  const wchar_t* text;
};
// For what the library says itself, and for platforms that have no messages for their internet
// functions.
constexpr Message kMessages[] = {
    {kOldCopy, L"The copy is older than it may be."},
    {ERROR_ACCESS_DISABLED_BY_POLICY, L"The settings do not allow this."},
    {ERROR_FILE_TOO_LARGE, L"The file is too large."},
    {ERROR_MEDIA_CHANGED, L"Another disc was put into the drive."},
    {WSAETIMEDOUT, L"The server did not answer in time."},
    {WSAECONNRESET, L"The server closed the connection."},
    {WSAECONNREFUSED, L"The server cannot be reached."},
    {ERROR_INTERNET_SEC_CERT_DATE_INVALID, L"The server's certificate is out of date."},
    {ERROR_INTERNET_SEC_CERT_CN_INVALID, L"The server's certificate is another server's."},
    {ERROR_INTERNET_INVALID_CA, L"Nobody who is trusted has signed the server's certificate."},
    {ERROR_INTERNET_SEC_CERT_ERRORS, L"The server's certificate is not valid."},
    {ERROR_INTERNET_SEC_CERT_NO_REV, L"The server's certificate cannot be checked."},
    {ERROR_INTERNET_SEC_INVALID_CERT, L"The server's certificate is not valid."},
    {ERROR_INTERNET_SEC_CERT_REVOKED, L"The server's certificate was revoked."},
    {ERROR_INTERNET_SECURITY_CHANNEL_ERROR, L"There is no secure connection to the server."},
    {ERROR_INTERNET_TIMEOUT, L"The server did not answer in time."},
    {ERROR_INTERNET_EXTENDED_ERROR, L"The server refused the operation."},
    {ERROR_INTERNET_NAME_NOT_RESOLVED, L"There is no server of this name."},
    {ERROR_INTERNET_INCORRECT_USER_NAME, L"The server does not know the user."},
    {ERROR_INTERNET_INCORRECT_PASSWORD, L"The server refused the password."},
    {ERROR_INTERNET_LOGIN_FAILURE, L"The server refused the user or the password."},
    {ERROR_INTERNET_CANNOT_CONNECT, L"The server cannot be reached."},
    {ERROR_INTERNET_CONNECTION_ABORTED, L"The connection to the server broke off."},
    {ERROR_INTERNET_CONNECTION_RESET, L"The server closed the connection."},
    {ERROR_INTERNET_ITEM_NOT_FOUND, L"The server has no such file."},
    {ERROR_HTTP_INVALID_SERVER_RESPONSE, L"The server's answer is no file."},
    {ERROR_HTTP_REDIRECT_FAILED, L"The server leads to where nothing is fetched from."},
    {ERROR_FTP_TRANSFER_IN_PROGRESS, L"The connection to the server is busy."},
    {ERROR_FTP_DROPPED, L"The server ended the transfer."},
    {ERROR_FTP_NO_PASSIVE_MODE, L"The server has no passive mode."},
};

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

KeptReason::KeptReason() : error_(GetLastError()) {
  const WordsLock lock;
  words_ = words().text;
}

KeptReason::~KeptReason() {
  exchangeWords(std::move(words_));
  SetLastError(error_);
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
  ended(server_ != nullptr);
}

FtpConnection::~FtpConnection() {
  const KeptError kept;
  if (server_) internet().InternetCloseHandle(server_);
  if (session_) internet().InternetCloseHandle(session_);
}

bool FtpConnection::createFolder(const std::wstring& path) {
  return ended(internet().FtpCreateDirectoryW(server_, path.c_str()));
}

bool FtpConnection::removeFolder(const std::wstring& path) {
  return ended(internet().FtpRemoveDirectoryW(server_, path.c_str()));
}

bool FtpConnection::removeFile(const std::wstring& path) {
  return ended(internet().FtpDeleteFileW(server_, path.c_str()));
}

bool FtpConnection::rename(const std::wstring& from, const std::wstring& to) {
  return ended(internet().FtpRenameFileW(server_, from.c_str(), to.c_str()));
}

bool FtpConnection::get(const std::wstring& path, const wchar_t* local) {
  return ended(internet().FtpGetFileW(server_, path.c_str(), local, FALSE, FILE_ATTRIBUTE_NORMAL,
                                      kTransfer, 0));
}

bool FtpConnection::put(const wchar_t* local, const std::wstring& path) {
  return ended(internet().FtpPutFileW(server_, local, path.c_str(), FTP_TRANSFER_TYPE_BINARY, 0));
}

bool FtpConnection::isFolder(const std::wstring& path) {
  return ended(internet().FtpSetCurrentDirectoryW(server_, path.c_str()));
}

// What may stand in a path is not what may stand in a pattern: so the folder is entered first.
bool FtpConnection::list(const std::wstring& folder, std::vector<WIN32_FIND_DATAW>& entries) {
  const Internet& net = internet();
  if (!isFolder(folder)) return false;
  WIN32_FIND_DATAW found;
  SetLastError(ERROR_SUCCESS);
  HINTERNET search = net.FtpFindFirstFileW(server_, nullptr, &found,
                                           INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE, 0);
  for (bool more = search != nullptr; more; more = net.InternetFindNextFileW(search, &found))
    entries.push_back(found);
  const DWORD error = GetLastError();
  // An empty folder is told in several ways.
  const bool done = ended(error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND ||
                          error == ERROR_SUCCESS);
  if (search) net.InternetCloseHandle(search);
  SetLastError(error);
  return done;
}

std::wstring serverWords(DWORD error) {
  if (!isRefusal(error)) return {};
  const WordsLock lock;
  return words().text;
}

std::wstring internetMessage(DWORD error) {
  for (const Message& message : kMessages)
    if (message.error == error) return message.text;
  return {};
}

}  // namespace zo
