// Splitting a URL into what a connection needs. The rules stand in zo/names/file_name.h.
#pragma once

#include <string_view>

namespace zo {

struct UrlParts {
  static constexpr int kOther = -1;
  int protocol = kOther;  // 0 ftp, 1 http, 2 gopher
  std::wstring_view host, path, user, password;
};

// name is the whole name of a URL: two delimiters follow its first colon. Any other text is safe,
// and gives some stretches of it.
[[nodiscard]] UrlParts splitUrl(std::wstring_view name) noexcept;

}  // namespace zo
