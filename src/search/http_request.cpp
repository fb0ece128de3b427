#include "search/http_request.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>

#include "platform/clock.h"
#include "platform/handle.h"
#include "platform/internet.h"
#include "platform/open_file.h"
#include "text/utf8.h"

namespace zo {
namespace {

void setNumber(void* handle, DWORD option, DWORD value) {
  internet().InternetSetOptionW(handle, option, &value, sizeof value);
}

constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                         INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI |
                         INTERNET_FLAG_NO_AUTO_REDIRECT;
constexpr DWORD kSlice = 50;          // milliseconds between two looks at the patience
constexpr DWORD kClosingTime = 1000;  // and for the platform to let go
constexpr DWORD kPiece = 64 * 1024;

std::wstring base64(std::string_view bytes) {
  constexpr std::wstring_view kDigits =
      L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::wstring text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned int three = 0;
    for (std::size_t j = i; j < i + 3; ++j)
      three = three << 8 | (j < bytes.size() ? static_cast<unsigned char>(bytes[j]) : 0U);
    for (std::size_t j = 0; j < 4; ++j)
      text += i + j > bytes.size() ? L'=' : kDigits[three >> (18 - 6 * j) & 63];
  }
  return text;
}

std::wstring loginLine(const WebAddress& address) {
  if (address.user.empty() && address.password.empty()) return {};
  const std::wstring login = address.user + L':' + address.password;
  std::string bytes(utf8Size(login), '\0');
  utf16ToUtf8(login, bytes.data());
  return L"Authorization: Basic " + base64(bytes) + L"\r\n";
}

}  // namespace

// What the platform writes to while it works: it may come back after the request was given up, so
// this lives until both have let go.
struct HttpRequest::Shared {
  Handle done{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
  Handle closed{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::atomic<int> owners{2};
  std::atomic<DWORD> error{ERROR_SUCCESS};
  DWORD there = 0, got = 0;
  char piece[kPiece];

  // Those that were given up, until the platform has let go of them, too.
  static inline std::array<std::atomic<Shared*>, kMostGivenUp> s_givenUp;

  void letGo() noexcept {
    if (--owners > 0) return;
    for (auto& place : s_givenUp) {
      Shared* self = this;
      place.compare_exchange_strong(self, nullptr);
    }
    delete this;
  }
  void giveUp() noexcept {
    for (auto& place : s_givenUp) {
      Shared* none = nullptr;
      if (place.compare_exchange_strong(none, this)) break;
    }
    letGo();
  }
  static void CALLBACK told(HINTERNET, DWORD_PTR context, DWORD status, void* what, DWORD) {
    auto* const shared = reinterpret_cast<Shared*>(context);
    if (!shared) return;
    if (status == INTERNET_STATUS_REQUEST_COMPLETE) {
      const auto* const result = static_cast<const INTERNET_ASYNC_RESULT*>(what);
      shared->error = result->dwResult ? ERROR_SUCCESS : result->dwError;
      SetEvent(shared->done.get());
    } else if (status == INTERNET_STATUS_HANDLE_CLOSING) {
      SetEvent(shared->closed.get());
      shared->letGo();
    }
  }
};

HttpRequest::~HttpRequest() {
  const KeptError kept;
  for (void* const handle : {request_, server_, session_})
    if (handle) internet().InternetCloseHandle(handle);
  if (!shared_) return;
  // The platform calls back later than that only into code that is still there.
  if (request_ && WaitForSingleObject(shared_->closed.get(), kClosingTime) != WAIT_OBJECT_0) {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&Shared::told), &self);
    shared_->giveUp();
    return;
  }
  if (!request_) shared_->letGo();
  shared_->letGo();
}

bool HttpRequest::mayBegin() noexcept {
  return std::ranges::any_of(Shared::s_givenUp, [](const auto& place) { return !place.load(); });
}

bool HttpRequest::open(const WebAddress& address, const std::wstring& headers, DWORD timeOut) {
  const Internet& net = internet();
  const DWORD way =
      isThisMachine(address) ? INTERNET_OPEN_TYPE_DIRECT : INTERNET_OPEN_TYPE_PRECONFIG;
  session_ = net.InternetOpenW(L"zo_com", way, nullptr, nullptr, INTERNET_FLAG_ASYNC);
  if (!session_) return false;
  setNumber(session_, INTERNET_OPTION_CONNECT_TIMEOUT, timeOut);
  setNumber(session_, INTERNET_OPTION_CONNECT_RETRIES, 1);
  server_ = net.InternetConnectW(session_, address.host.c_str(), address.port, nullptr, nullptr,
                                 INTERNET_SERVICE_HTTP, 0, 0);
  if (!server_) return false;
  shared_ = new Shared;
  request_ = net.HttpOpenRequestW(server_, L"GET", address.path.c_str(), nullptr, nullptr, nullptr,
                                  kFlags | (address.isSecure ? INTERNET_FLAG_SECURE : 0),
                                  reinterpret_cast<DWORD_PTR>(shared_));
  if (!request_) return false;
  net.InternetSetStatusCallbackW(request_, &Shared::told);
  // Set on the session, these would not count everywhere.
  setNumber(request_, INTERNET_OPTION_SEND_TIMEOUT, timeOut);
  setNumber(request_, INTERNET_OPTION_RECEIVE_TIMEOUT, timeOut);
  return headers.empty() ||
         net.HttpAddRequestHeadersW(request_, headers.c_str(), static_cast<DWORD>(headers.size()),
                                    HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE);
}

bool HttpRequest::finish(BOOL isDone, std::uint64_t most) {
  if (isDone) return true;
  if (GetLastError() != ERROR_IO_PENDING) return false;
  const std::uint64_t begun = millisecondsNow();
  while (WaitForSingleObject(shared_->done.get(), kSlice) != WAIT_OBJECT_0) {
    const bool isLate = millisecondsNow() - begun > most;
    if (!isLate && patience_()) continue;
    SetLastError(isLate ? ERROR_INTERNET_TIMEOUT : ERROR_CANCELLED);
    return false;
  }
  SetLastError(shared_->error);
  return shared_->error == ERROR_SUCCESS;
}

bool HttpRequest::send(const WebAddress& address, std::wstring headers, DWORD timeOut) {
  const Internet& net = internet();
  if (!net.library) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return false;
  }
  timeOut_ = timeOut;
  headers += loginLine(address);
  return open(address, headers, timeOut) &&
         finish(net.HttpSendRequestW(request_, nullptr, 0, nullptr, 0), UINT64_MAX);
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
  got = 0;
  shared_->there = shared_->got = 0;
  if (!finish(net.InternetQueryDataAvailable(request_, &shared_->there, 0, 0), timeOut_))
    return false;
  const DWORD most = std::clamp<DWORD>(shared_->there, 1, std::min(size, kPiece));
  if (!finish(net.InternetReadFile(request_, shared_->piece, most, &shared_->got), timeOut_))
    return false;
  got = std::min(shared_->got, most);
  std::memcpy(buffer, shared_->piece, got);
  return true;
}

}  // namespace zo
