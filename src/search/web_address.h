// URLs of web servers, taken apart. What comes of it holds nothing but printable ASCII, so that it
// can stand in a request.
#pragma once

#include <string>
#include <string_view>

namespace zo {

struct WebAddress {
  bool isSecure = false;
  std::wstring host;            // lower case; [::1] with its brackets
  std::wstring user, password;  // as they are, without percent signs
  std::wstring path;            // with the query, without a fragment
  unsigned short port = 0;      // never 0 after parsing
  [[nodiscard]] bool operator==(const WebAddress&) const = default;
};

// false for what is no http or https URL with a host; the address is then as it was. Blanks and
// characters beyond ASCII in the path are written with percent signs.
[[nodiscard]] bool parseWebAddress(std::wstring_view url, WebAddress& address);

// The one text for all spellings of an address, without the password.
[[nodiscard]] std::wstring printWebAddress(const WebAddress& address);

// Where a redirect leads. false for another scheme, from https to http, and for what is no URL. A
// login goes along to the same server only.
[[nodiscard]] bool followRedirect(const WebAddress& from, std::wstring_view location,
                                  WebAddress& to);

// The extension of the last component with its dot, in lower case: at most eight letters and
// digits; else empty.
[[nodiscard]] std::wstring extensionOf(const WebAddress& address);

// Whether a list as in zo/search/download_cache.h has the host.
[[nodiscard]] bool isHostListed(std::wstring_view list, const WebAddress& address);

[[nodiscard]] bool isThisMachine(const WebAddress& address);

}  // namespace zo
