#include "search/download.h"

#include <wininet.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <utility>

#include "files/keep_reason.h"
#include "platform/clock.h"
#include "platform/time_value.h"
#include "platform/write_all.h"
#include "text/code_units.h"

namespace zo {
namespace {

constexpr int kMostRedirects = 5;
constexpr DWORD kPiece = 64 * 1024;

bool isRedirect(DWORD status) noexcept {
  return (status >= 301 && status <= 303) || status == 307 || status == 308;
}

// What is no ASCII becomes a character that no mark has.
std::string narrow(std::wstring_view text) {
  std::string bytes;
  for (const wchar_t c : text) bytes += c < 0x80 ? static_cast<char>(c) : '\x7F';
  return bytes;
}

std::wstring widened(const std::string& text) { return {text.begin(), text.end()}; }

std::string markOf(const HttpRequest& request, DWORD which) {
  const std::string mark = narrow(request.header(which));
  return isMark(mark) ? mark : std::string();
}

// Whatever a server sends is an answer 200 to some platforms, after the oldest form of the
// protocol; but a head that is one has lines.
bool hasHead(const HttpRequest& request) {
  const std::wstring head = request.header(HTTP_QUERY_RAW_HEADERS_CRLF);
  const std::size_t first = head.find(L"\r\n");
  return first != std::wstring::npos && head.find(L':', first) != std::wstring::npos;
}

// Of all the lines of that name, without regard to case: false when they do not say the same.
bool fieldOf(const HttpRequest& request, std::string_view name, std::string& value) {
  const std::string head = narrow(request.header(HTTP_QUERY_RAW_HEADERS_CRLF));
  bool isThere = false;
  for (std::size_t i = 0, end = 0; i < head.size(); i = end + 1) {
    end = std::min(head.find('\n', i), head.size());
    std::string_view line = std::string_view(head).substr(i, end - i);
    const std::size_t colon = std::min(line.find(':'), line.size());
    const bool isOne = std::ranges::equal(line.substr(0, colon), name, [](char a, char b) {
      return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b;
    });
    if (!isOne || colon == line.size()) continue;
    line.remove_prefix(colon + 1);
    const std::size_t first = std::min(line.find_first_not_of(" \t\r"), line.size());
    line = line.substr(first, line.find_last_not_of(" \t\r") + 1 - first);
    if (isThere && line != value) return false;
    isThere = true;
    value = line;
  }
  return true;
}

// -1 without a length, -2 for one that is none, or several.
std::int64_t lengthOf(const HttpRequest& request) {
  std::string text;
  if (!fieldOf(request, "content-length", text)) return -2;
  if (text.empty()) return -1;
  std::int64_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  const bool isNumber = error == std::errc() && end == text.data() + text.size() && length >= 0;
  return isNumber ? length : -2;
}

// Nobody asked for a coded body, and nobody here could read it.
bool isCoded(const HttpRequest& request) {
  std::string coding;
  return !fieldOf(request, "content-encoding", coding) || !(coding.empty() || coding == "identity");
}

// An answer that is a page for people, where a file was wanted: what servers send for errors, and
// networks that want a login first.
bool isStrayPage(const HttpRequest& request, const WebAddress& address) {
  std::wstring type = request.header(HTTP_QUERY_CONTENT_TYPE);
  for (wchar_t& c : type) c = lowerAscii(c);
  const std::wstring extension = extensionOf(address);
  const bool isPage = type.starts_with(L"text/html") || type.starts_with(L"application/xhtml");
  return isPage && !extension.empty() && extension.find(L"htm") == std::wstring::npos &&
         extension != L".php" && extension != L".asp" && extension != L".aspx";
}

std::wstring conditions(const CacheMark* known) {
  std::wstring lines;
  if (known && !known->etag.empty()) lines += L"If-None-Match: " + widened(known->etag) + L"\r\n";
  if (known && !known->modified.empty())
    lines += L"If-Modified-Since: " + widened(known->modified) + L"\r\n";
  return lines;
}

}  // namespace

std::uint64_t timeNow() noexcept {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  return timeValue(now);
}

Download::Download(const ZoDownloadOptions& options, std::wstring hosts, const ZoFileName& url,
                   const ZoDownloadCache::Watcher& watcher)
    : options_(options),
      hosts_(std::move(hosts)),
      url_(url),
      watcher_(watcher),
      begun_(millisecondsNow()) {}

Download::Answer Download::fail(int code, DWORD error) {
  code_ = keepReason(L"download", error, code);
  return kFailed;
}

Download::Answer Download::away(DWORD error) {
  code_ = keepReason(L"download", error);
  return kAway;
}

// Milliseconds; 0 when it is over.
std::uint64_t Download::timeLeft() const noexcept {
  const std::uint64_t most = std::uint64_t{options_.longest} * 1000;
  return most - std::min(most, millisecondsNow() - begun_);
}

DWORD Download::timeOut() const noexcept {
  constexpr std::uint64_t kDay = 86'400'000;
  const std::uint64_t most = std::clamp<std::uint64_t>(timeLeft(), 1, kDay);
  return static_cast<DWORD>(options_.timeOut ? std::min<std::uint64_t>(options_.timeOut, most)
                                             : most);
}

// The platform has no words for a wait that was given up, and no reason.
Download::Answer Download::gaveUp() {
  const DWORD error = GetLastError();
  if (error != ERROR_CANCELLED) return away(error);
  return timeLeft() > 0 ? fail(ZoResult::cancelled, ERROR_CANCELLED) : away(ERROR_INTERNET_TIMEOUT);
}

bool Download::goesOn() const {
  return !watcher_ ||
         watcher_(
             {.url = url_, .bytesDone = static_cast<std::int64_t>(mark_.size), .bytes = length_});
}

void Download::keepMarks(const HttpRequest& request) {
  mark_.etag = markOf(request, HTTP_QUERY_ETAG);
  mark_.modified = markOf(request, HTTP_QUERY_LAST_MODIFIED);
  mark_.checked = timeNow();
}

Download::Answer Download::run(WebAddress address, const CacheMark* known,
                               const std::wstring& stem) {
  const std::wstring lines = conditions(known);
  const std::string url = narrow(printWebAddress(address));
  for (int redirects = 0; redirects <= kMostRedirects; ++redirects) {
    if (!isHostListed(hosts_, address))
      return fail(ZoResult::hostNotAllowed, ERROR_ACCESS_DISABLED_BY_POLICY);
    HttpRequest request([this] { return timeLeft() > 0 && goesOn(); });
    if (!goesOn()) return fail(ZoResult::cancelled, ERROR_CANCELLED);
    if (timeLeft() == 0) return away(ERROR_INTERNET_TIMEOUT);
    if (!HttpRequest::mayBegin()) return away(ERROR_CONNECTION_COUNT_LIMIT);
    wasSent_ = true;
    if (!request.send(address, lines, timeOut())) return gaveUp();
    isReached_ = true;
    const DWORD status = request.status();
    if (status == 304 && !lines.empty()) {
      mark_ = *known;
      mark_.checked = timeNow();
      return kUnchanged;
    }
    mark_.url = url;
    if (!isRedirect(status)) return take(request, address, stem);
    if (!followRedirect(address, request.header(HTTP_QUERY_LOCATION), address)) break;
  }
  return fail(ZoResult::serverRefused, ERROR_HTTP_REDIRECT_FAILED);
}

Download::Answer Download::take(HttpRequest& request, const WebAddress& from,
                                const std::wstring& stem) {
  const DWORD status = request.status();
  const bool isNone = status == 408 || status == 429 || status >= 500;
  if (isNone || !hasHead(request)) return away(ERROR_HTTP_INVALID_SERVER_RESPONSE);
  if (status != 200) return fail(ZoResult::serverRefused, ERROR_INTERNET_ITEM_NOT_FOUND);
  length_ = lengthOf(request);
  if (length_ < -1 || isCoded(request) || isStrayPage(request, from))
    return fail(ZoResult::serverRefused, ERROR_HTTP_INVALID_SERVER_RESPONSE);
  if (length_ > 0 && static_cast<std::uint64_t>(length_) > options_.largest)
    return fail(ZoResult::tooLarge, ERROR_FILE_TOO_LARGE);
  keepMarks(request);
  FreshFile& fresh =
      file_.emplace(createFresh(stem, kEndingBeside, GENERIC_WRITE, 0, FILE_FLAG_SEQUENTIAL_SCAN));
  if (!fresh.file) return fail(ZoResult::refused, GetLastError());
  return takeBody(request, fresh.file);
}

Download::Answer Download::takeBody(HttpRequest& request, OpenFile& file) {
  const auto piece = std::make_unique_for_overwrite<char[]>(kPiece);
  Sha256 hash;
  if (!hash.start()) return fail(ZoResult::refused, GetLastError());
  for (DWORD got = 1; got > 0; mark_.size += got) {
    if (!goesOn()) return fail(ZoResult::cancelled, ERROR_CANCELLED);
    if (timeLeft() == 0) return away(ERROR_INTERNET_TIMEOUT);
    // Some platforms give what comes behind the length, too.
    const std::uint64_t left =
        length_ < 0 ? kPiece : static_cast<std::uint64_t>(length_) - mark_.size;
    const auto most = static_cast<DWORD>(std::min<std::uint64_t>(left, kPiece));
    got = 0;
    if (most > 0 && !request.read(piece.get(), most, got)) return gaveUp();
    if (got > options_.largest - mark_.size) return fail(ZoResult::tooLarge, ERROR_FILE_TOO_LARGE);
    if (writeAll(file.get(), piece.get(), got) < got || !hash.add(piece.get(), got))
      return fail(ZoResult::refused, GetLastError());
  }
  if (length_ >= 0 && mark_.size != static_cast<std::uint64_t>(length_))
    return away(ERROR_INTERNET_CONNECTION_ABORTED);
  if (!file.close() || !hash.finish(mark_.sum)) return fail(ZoResult::refused, GetLastError());
  return kComplete;
}

}  // namespace zo
