// One GET of a web server through the platform's internet functions: no cookies, no cache of the
// platform, no redirects and no questions to the user.
//
// Waiting   The platform works by itself, and whoever waits for it is asked again and again whether
//          to go on: no server, however slow, holds it. What is given up then is left to the
//          platform, which ends it sooner or later. Until then it takes some 70 KB, and this DLL,
//          which is called back, stays loaded for good; so not many may be left so at a time.
// Errors:  false leaves the platform's code (12000 and up) in the last error; ERROR_CANCELLED when
//          the wait was given up.
// Threads: one.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "search/web_address.h"

namespace zo {

class HttpRequest {
 public:
  // Whether to wait on; called some twenty times a second, and may throw.
  using Patience = std::function<bool()>;
  static constexpr unsigned int kMostGivenUp = 16;

  // False while the platform has not let go of so many that were given up.
  [[nodiscard]] static bool mayBegin() noexcept;

  explicit HttpRequest(Patience patience) : patience_(std::move(patience)) {}
  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;
  ~HttpRequest();

  // Sends the request, and waits for the head of the answer; once per object. `headers` are whole
  // lines. The time-out, in milliseconds, holds for each step. A login goes along as it is (Basic),
  // so that the platform keeps none of it for later requests.
  [[nodiscard]] bool send(const WebAddress& address, std::wstring headers, DWORD timeOut);
  [[nodiscard]] DWORD status() const;                    // 0 when there is none
  [[nodiscard]] std::wstring header(DWORD which) const;  // HTTP_QUERY_...; empty when there is none
  // What has come, at most `size` bytes; waits for the first. 0 bytes: the end.
  [[nodiscard]] bool read(void* buffer, DWORD size, DWORD& got);

 private:
  struct Shared;
  [[nodiscard]] bool open(const WebAddress& address, const std::wstring& headers, DWORD timeOut);
  // Of a call that may go on by itself.
  [[nodiscard]] bool finish(BOOL isDone, std::uint64_t most);

  Patience patience_;
  Shared* shared_ = nullptr;
  void* session_ = nullptr;
  void* server_ = nullptr;
  void* request_ = nullptr;
  DWORD timeOut_ = 0;
};

}  // namespace zo
