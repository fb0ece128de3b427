// One file on its way from a web server onto the disk, through redirects and within limits.
#pragma once

#include <windows.h>
#include <zo/search/download_cache.h>

#include <optional>
#include <string>

#include "files/fresh_file.h"
#include "search/cache_mark.h"
#include "search/http_request.h"

namespace zo {

class Download {
 public:
  enum Answer {
    kComplete,   // file() and mark() have it
    kUnchanged,  // what is known is still right; mark() is that, as checked now
    kAway,       // nobody answered, or not to the end: an older copy may serve
    kFailed,     // code() says how; errorTxt() why in both cases
  };
  // The list of hosts as in zo/search/download_cache.h.
  Download(const ZoDownloadOptions& options, std::wstring hosts, const ZoFileName& url,
           const ZoDownloadCache::Watcher& watcher);

  // `known` is what is there already, null for nothing. The new file is called `stem` and some
  // digits. Once per object.
  [[nodiscard]] Answer run(WebAddress address, const CacheMark* known, const std::wstring& stem);

  // Without asking: for the reason that is given.
  Answer away(DWORD error);

  [[nodiscard]] int code() const noexcept { return code_; }
  // Whether the first server was asked, and has answered in some way.
  [[nodiscard]] bool wasSent() const noexcept { return wasSent_; }
  [[nodiscard]] bool isReached() const noexcept { return isReached_; }
  // Null when none was made.
  [[nodiscard]] FreshFile* file() noexcept { return file_ ? &*file_ : nullptr; }
  [[nodiscard]] CacheMark& mark() noexcept { return mark_; }

 private:
  Answer fail(int code, DWORD error);
  Answer take(HttpRequest& request, const WebAddress& from, const std::wstring& stem);
  Answer takeBody(HttpRequest& request, OpenFile& file);
  Answer gaveUp();
  [[nodiscard]] std::uint64_t timeLeft() const noexcept;
  [[nodiscard]] DWORD timeOut() const noexcept;
  [[nodiscard]] bool goesOn() const;
  void keepMarks(const HttpRequest& request);

  const ZoDownloadOptions& options_;
  std::wstring hosts_;
  const ZoFileName& url_;
  const ZoDownloadCache::Watcher& watcher_;
  ULONGLONG begun_;
  std::optional<FreshFile> file_;
  CacheMark mark_;
  std::int64_t length_ = -1;  // that the server told
  int code_ = ZoResult::ok;
  bool wasSent_ = false, isReached_ = false;
};

// 100 ns since 1601, by the machine's clock, which can be set back.
[[nodiscard]] std::uint64_t timeNow() noexcept;

}  // namespace zo
