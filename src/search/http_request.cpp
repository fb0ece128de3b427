#include "search/http_request.h"

#include <algorithm>

#include "platform/internet.h"
#include "platform/open_file.h"

namespace zo {
namespace {

const wchar_t* orNull(const std::wstring& text) { return text.empty() ? nullptr : text.c_str(); }

void setNumber(void* handle, DWORD option, DWORD value) {
  internet().InternetSetOptionW(handle, option, &value, sizeof value);
}

constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                         INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI |
                         INTERNET_FLAG_NO_AUTO_REDIRECT;

}  // namespace

HttpRequest::~HttpRequest() {
  const KeptError kept;
  for (void* const handle : {request_, server_, session_})
    if (handle) internet().InternetCloseHandle(handle);
}

bool HttpRequest::send(const WebAddress& address, const std::wstring& headers, DWORD timeOut) {
  const Internet& net = internet();
  if (!net.library) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return false;
  }
  const DWORD way =
      isThisMachine(address) ? INTERNET_OPEN_TYPE_DIRECT : INTERNET_OPEN_TYPE_PRECONFIG;
  session_ = net.InternetOpenW(L"zo_com", way, nullptr, nullptr, 0);
  if (!session_) return false;
  setNumber(session_, INTERNET_OPTION_CONNECT_TIMEOUT, timeOut);
  setNumber(session_, INTERNET_OPTION_CONNECT_RETRIES, 1);
  server_ = net.InternetConnectW(session_, address.host.c_str(), address.port, orNull(address.user),
                                 orNull(address.password), INTERNET_SERVICE_HTTP, 0, 0);
  if (!server_) return false;
  request_ = net.HttpOpenRequestW(server_, L"GET", address.path.c_str(), nullptr, nullptr, nullptr,
                                  kFlags | (address.isSecure ? INTERNET_FLAG_SECURE : 0), 0);
  if (!request_) return false;
  // Set on the session, these would not count everywhere.
  setNumber(request_, INTERNET_OPTION_SEND_TIMEOUT, timeOut);
  setNumber(request_, INTERNET_OPTION_RECEIVE_TIMEOUT, timeOut);
  if (!headers.empty() &&
      !net.HttpAddRequestHeadersW(request_, headers.c_str(), static_cast<DWORD>(headers.size()),
                                  HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE)) {
    return false;
  }
  return net.HttpSendRequestW(request_, nullptr, 0, nullptr, 0) != FALSE;
}

DWORD HttpRequest::status() const {
  DWORD status = 0, size = sizeof status, index = 0;
  const BOOL done = internet().HttpQueryInfoW(
      request_, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, &index);
  return done ? status : 0;
}

std::wstring HttpRequest::header(DWORD which) const {
  std::wstring text(260, L'\0');
  for (;;) {
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    DWORD index = 0;
    if (internet().HttpQueryInfoW(request_, which, text.data(), &size, &index)) {
      text.resize(size / sizeof(wchar_t));
      return text;
    }
    constexpr DWORD kMost = 64 * 1024;
    const bool isLonger = GetLastError() == ERROR_INSUFFICIENT_BUFFER && size < kMost;
    if (!isLonger || size / sizeof(wchar_t) < text.size()) return {};
    text.resize(size / sizeof(wchar_t) + 1);
  }
}

bool HttpRequest::read(void* buffer, DWORD size, DWORD& got) {
  const Internet& net = internet();
  DWORD there = 0;
  got = 0;
  if (!net.InternetQueryDataAvailable(request_, &there, 0, 0)) return false;
  return net.InternetReadFile(request_, buffer, std::clamp<DWORD>(there, 1, size), &got) != FALSE;
}

}  // namespace zo
