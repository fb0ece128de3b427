// One GET of a web server through the platform's internet functions: no cookies, no cache of the
// platform, no redirects and no questions to the user.
//
// Errors:  false leaves the platform's code (12000 and up) in the last error.
// Threads: one.
#pragma once

#include <windows.h>

#include <string>

#include "search/web_address.h"

namespace zo {

class HttpRequest {
 public:
  HttpRequest() = default;
  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;
  ~HttpRequest();

  // Sends the request, and waits for the head of the answer; once per object. `headers` are whole
  // lines. The time-out, in milliseconds, holds for each step.
  [[nodiscard]] bool send(const WebAddress& address, const std::wstring& headers, DWORD timeOut);
  [[nodiscard]] DWORD status() const;                    // 0 when there is none
  [[nodiscard]] std::wstring header(DWORD which) const;  // HTTP_QUERY_...; empty when there is none
  // What has come, at most `size` bytes; waits for the first. 0 bytes: the end.
  [[nodiscard]] bool read(void* buffer, DWORD size, DWORD& got);

 private:
  void* session_ = nullptr;
  void* server_ = nullptr;
  void* request_ = nullptr;
};

}  // namespace zo
