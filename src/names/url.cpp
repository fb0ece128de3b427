#include "names/url.h"

#include <algorithm>

#include "names/name_parser.h"

namespace zo {
namespace {

constexpr size_t npos = std::wstring_view::npos;

int protocolOf(std::wstring_view name) noexcept {
  if (beginsWith(name, L"ftp")) return 0;
  if (beginsWith(name, L"http")) return 1;
  return beginsWith(name, L"gopher") ? 2 : UrlParts::kOther;
}

}  // namespace

UrlParts splitUrl(std::wstring_view name) noexcept {
  UrlParts url;
  url.protocol = protocolOf(name);
  const size_t colon = name.find(L':');
  if (colon == npos) return url;
  const std::wstring_view rest = name.substr(std::min(colon + 3, name.size()));
  const size_t slash = std::min(rest.find(L'/'), rest.size());
  url.path = rest.substr(slash);
  url.host = rest.substr(0, slash);

  const size_t second = url.host.find(L':');
  if (second == npos) return url;
  url.user = url.host.substr(0, second);
  const size_t at = url.host.find(L'@', second);
  // A port without a user: the host is taken for the user and keeps its port. Not to be mended.
  if (at == npos) return url;
  url.password = url.host.substr(second + 1, at - second - 1);
  url.host = url.host.substr(at + 1);
  url.host = url.host.substr(0, url.host.find(L':', 1));
  return url;
}

}  // namespace zo
