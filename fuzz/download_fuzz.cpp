// Any text as a URL, a redirect, what a download cache knows of a copy, and a manifest of media:
// what is taken is printed in one way that is taken again, holds nothing that could end a line of a
// request, and never leads from https to http.
#include <algorithm>
#include <string>

#include "fuzz.h"
#include "search/cache_mark.h"
#include "search/manifest.h"
#include "search/web_address.h"

using namespace zo;

namespace {

bool isPlain(const std::wstring& text) {
  return std::ranges::all_of(text, [](wchar_t c) { return c > L' ' && c < 0x7F; });
}

void checkAddress(const WebAddress& address) {
  const std::wstring printed = printWebAddress(address);
  WebAddress again;
  ZO_FUZZ_CHECK(isPlain(printed) && isPlain(address.path) && address.path[0] == L'/');
  ZO_FUZZ_CHECK(parseWebAddress(printed, again) && printWebAddress(again) == printed);
  ZO_FUZZ_CHECK(again.host == address.host && again.path == address.path);
  ZO_FUZZ_CHECK(isHostListed(address.host, address) && isHostListed(L"*", address));
  const std::wstring extension = extensionOf(address);
  ZO_FUZZ_CHECK(cacheFileOf(std::wstring(kKeyDigits, L'0') + L"-" +
                            std::wstring(kCopyDigits, L'0') + extension) == CacheFile::copy);
}

void checkMark(const std::string& text) {
  CacheMark mark, again;
  if (!parseCacheMark(text, mark)) return;
  ZO_FUZZ_CHECK(isMark(mark.etag) && isMark(mark.modified));
  ZO_FUZZ_CHECK(parseCacheMark(printCacheMark(mark), again));
  ZO_FUZZ_CHECK(printCacheMark(again) == printCacheMark(mark));
}

void checkManifest(const std::string& text) {
  Manifest manifest, again;
  if (!parseManifest(text, manifest)) return;
  ZO_FUZZ_CHECK(canBeLabel(manifest.label));
  const std::string printed = printManifest(manifest);
  ZO_FUZZ_CHECK(parseManifest(printed, again) && printManifest(again) == printed);
  const std::string whole = withSum(printed, {1, 2});
  std::string_view rest = whole;
  Sha256Sum sum;
  ZO_FUZZ_CHECK(takeSum(rest, sum) && rest == printed && sum[1] == 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string bytes(data, data + size);
  std::wstring text;
  for (const unsigned char c : bytes) text += static_cast<wchar_t>(c < 0x80 ? c : c * 0x101);
  const std::size_t cut = std::min(text.find(L'\n'), text.size());
  for (const wchar_t* scheme : {L"http://", L"https://", L""}) {
    WebAddress address, to;
    if (!parseWebAddress(scheme + text.substr(0, cut), address)) continue;
    checkAddress(address);
    if (!followRedirect(address, text.substr(std::min(cut + 1, text.size())), to)) continue;
    checkAddress(to);
    ZO_FUZZ_CHECK(to.isSecure || !address.isSecure);
    ZO_FUZZ_CHECK(to.host == address.host || to.password.empty());
  }
  checkMark(bytes);
  checkMark("zo download 1\n" + bytes);
  checkManifest("zo media 1\nlabel " + bytes);
  return 0;
}
