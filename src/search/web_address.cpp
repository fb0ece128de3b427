#include "search/web_address.h"

#include <algorithm>
#include <utility>

#include "text/code_units.h"
#include "text/utf8.h"

namespace zo {
namespace {

std::wstring lowered(std::wstring_view text) {
  std::wstring lower(text);
  std::ranges::transform(lower, lower.begin(), lowerAscii);
  return lower;
}

bool isControl(wchar_t c) noexcept { return c < L' ' || c == 0x7F; }

// The usual one where the text is empty; 0 where it is no port.
unsigned short toPort(std::wstring_view text, bool isSecure) {
  unsigned int port = 0;
  if (text.empty()) return isSecure ? 443 : 80;
  for (const wchar_t c : text) {
    if (!isDigit(c)) return 0;
    port = port * 10 + static_cast<unsigned int>(c - L'0');
    if (port > 0xFFFF) return 0;
  }
  return static_cast<unsigned short>(port);
}

bool isHost(std::wstring_view host) {
  const bool isNumber6 = host.size() > 2 && host.front() == L'[' && host.back() == L']';
  if (isNumber6) host = host.substr(1, host.size() - 2);
  return !host.empty() && host.size() <= 253 && std::ranges::all_of(host, [&](wchar_t c) {
    if (isNumber6) return hexDigit(c) < 16 || c == L':' || c == L'.';
    return isLetter(c) || isDigit(c) || c == L'-' || c == L'.' || c == L'_';
  });
}

// %41 as A, and all of them together as UTF-8.
std::wstring withoutPercents(std::wstring_view text) {
  std::string bytes(utf8Size(text), '\0');
  utf16ToUtf8(text, bytes.data());
  std::size_t used = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto digit = [&](std::size_t at) {
      return at < bytes.size() ? hexDigit(static_cast<unsigned char>(bytes[at])) : 16U;
    };
    const bool isCoded = bytes[i] == '%' && digit(i + 1) < 16 && digit(i + 2) < 16;
    bytes[used++] = isCoded ? static_cast<char>(digit(i + 1) * 16 + digit(i + 2)) : bytes[i];
    if (isCoded) i += 2;
  }
  bytes.resize(used);
  std::wstring plain(utf16Size(bytes), L'\0');
  utf8ToUtf16(bytes, plain.data());
  return plain;
}

void appendPercents(std::wstring_view character, std::wstring& out) {
  char bytes[8];
  const std::size_t count = utf8Size(character);
  utf16ToUtf8(character, bytes);
  for (std::size_t i = 0; i < count; ++i) {
    wchar_t digits[2];
    writeHex(digits, static_cast<unsigned char>(bytes[i]), 2);
    (out += L'%').append(digits, 2);
  }
}

std::wstring pathOf(std::wstring_view text) {
  std::wstring path;
  text = text.substr(0, text.find(L'#'));
  if (text.empty() || text.front() == L'?') path = L'/';
  for (std::size_t i = 0; i < text.size();) {
    const std::wstring_view character = firstCharacter(text.substr(i));
    i += character.size();
    if (character[0] > L' ' && character[0] < 0x7F)
      path += character[0] == L'\\' ? L'/' : character[0];
    else
      appendPercents(character, path);
  }
  return path;
}

// A backslash or a second sign in the authority would be read in another way by others.
bool parseAuthority(std::wstring_view text, WebAddress& address) {
  if (text.find(L'\\') != std::wstring_view::npos) return false;
  if (const std::size_t at = text.rfind(L'@'); at != std::wstring_view::npos) {
    const std::wstring_view login = text.substr(0, at);
    const std::size_t colon = std::min(login.find(L':'), login.size());
    address.user = withoutPercents(login.substr(0, colon));
    address.password = withoutPercents(login.substr(std::min(colon + 1, login.size())));
    text.remove_prefix(at + 1);
  }
  const std::size_t bracket = text.rfind(L']');
  const std::size_t colon = text.find(L':', bracket == std::wstring_view::npos ? 0 : bracket);
  address.host = lowered(text.substr(0, colon));
  const std::wstring_view port = text.substr(std::min(colon, text.size() - 1) + 1);
  address.port = toPort(colon == std::wstring_view::npos ? L"" : port, address.isSecure);
  return isHost(address.host) && address.port != 0;
}

bool isSameServer(const WebAddress& a, const WebAddress& b) {
  return a.isSecure == b.isSecure && a.host == b.host && a.port == b.port;
}

}  // namespace

bool parseWebAddress(std::wstring_view url, WebAddress& address) {
  WebAddress parsed;
  const std::size_t colon = url.find(L"://");
  if (colon == std::wstring_view::npos || std::ranges::any_of(url, isControl)) return false;
  const std::wstring scheme = lowered(url.substr(0, colon));
  if (scheme != L"http" && scheme != L"https") return false;
  parsed.isSecure = scheme == L"https";
  url.remove_prefix(colon + 3);
  const std::size_t end = std::min(url.find_first_of(L"/?#"), url.size());
  if (end == 0 || !parseAuthority(url.substr(0, end), parsed)) return false;
  parsed.path = pathOf(url.substr(end));
  address = std::move(parsed);
  return true;
}

std::wstring printWebAddress(const WebAddress& address) {
  std::wstring text = address.isSecure ? L"https://" : L"http://";
  for (std::wstring_view left = address.user; !left.empty();) {
    const std::wstring_view character = firstCharacter(left);
    left.remove_prefix(character.size());
    if (isLetter(character[0]) || isDigit(character[0]))
      text += character;
    else
      appendPercents(character, text);
  }
  if (!address.user.empty()) text += L'@';
  text += address.host;
  if (address.port != (address.isSecure ? 443 : 80)) text += L':' + std::to_wstring(address.port);
  return text + address.path;
}

bool followRedirect(const WebAddress& from, std::wstring_view location, WebAddress& to) {
  WebAddress next = from;
  const std::size_t name = std::min(location.find_first_of(L":/?#"), location.size());
  if (location.empty() || std::ranges::any_of(location, isControl)) return false;
  if (name < location.size() && location[name] == L':') {
    if (!parseWebAddress(location, next)) return false;
  } else if (location.starts_with(L"//")) {
    const std::wstring whole = (from.isSecure ? L"https:" : L"http:") + std::wstring(location);
    if (!parseWebAddress(whole, next)) return false;
  } else if (location.front() == L'/') {
    next.path = pathOf(location);
  } else {
    const std::wstring_view own = std::wstring_view(from.path).substr(0, from.path.find(L'?'));
    const bool isQuery = location.front() == L'?';
    const std::size_t kept = isQuery ? own.size() : own.rfind(L'/') + 1;
    next.path = pathOf(std::wstring(own.substr(0, kept)).append(location));
  }
  if (from.isSecure && !next.isSecure) return false;
  const bool isSame = isSameServer(from, next);
  next.user = isSame ? from.user : std::wstring();
  next.password = isSame ? from.password : std::wstring();
  to = std::move(next);
  return true;
}

std::wstring extensionOf(const WebAddress& address) {
  std::wstring_view name = std::wstring_view(address.path).substr(0, address.path.find(L'?'));
  name.remove_prefix(name.rfind(L'/') + 1);
  const std::size_t dot = name.rfind(L'.');
  if (dot == std::wstring_view::npos || name.size() - dot < 2 || name.size() - dot > 9) return {};
  const auto isPlain = [](wchar_t c) { return isLetter(c) || isDigit(c); };
  return std::ranges::all_of(name.substr(dot + 1), isPlain) ? lowered(name.substr(dot))
                                                            : std::wstring();
}

bool isHostListed(std::wstring_view list, const WebAddress& address) {
  const std::wstring withPort = address.host + L':' + std::to_wstring(address.port);
  for (std::size_t i = 0; i < list.size();) {
    const std::size_t end = std::min(list.find_first_of(L" \t\r\n,;", i), list.size());
    const std::wstring entry = lowered(list.substr(i, end - i));
    i = end + 1;
    if (entry.empty()) continue;
    if (entry == L"*" || entry == address.host || entry == withPort) return true;
    const std::wstring_view below = std::wstring_view(entry).substr(1);
    const bool isBelow = entry.starts_with(L"*.") && below.size() > 1;
    if (isBelow && (address.host.ends_with(below) || withPort.ends_with(below))) return true;
  }
  return false;
}

bool isThisMachine(const WebAddress& address) {
  return address.host == L"localhost" || address.host == L"[::1]" ||
         address.host.starts_with(L"127.");
}

}  // namespace zo
