// URLs of web servers, and the names and lines of a cache: what is read of both is anybody's.
#include "search/web_address.h"

#include <gtest/gtest.h>

#include <random>

#include "search/cache_mark.h"

namespace zo::test {
namespace {

std::wstring printed(const wchar_t* url) {
  WebAddress address;
  return parseWebAddress(url, address) ? printWebAddress(address) : L"(none)";
}

TEST(WebAddress, HasOneSpelling) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"HTTP://Example.ORG", L"http://example.org/"},
      {L"http://example.org:80/a?b#c", L"http://example.org/a?b"},
      {L"https://h:443?q", L"https://h/?q"},
      {L"https://h:80/", L"https://h:80/"},
      {L"http://u:p@h:8080/x", L"http://u@h:8080/x"},
      {L"http://a@b:c@h/", L"http://a%40b@h/"},
      {L"http://u%3Av:p@h/", L"http://u%3Av@h/"},
      {L"http://%c3%a4\U0001F600%ff%4@h/", L"http://%C3%A4%F0%9F%98%80%EF%BF%BD%254@h/"},
      {L"http://h\u00E4/", L"(none)"},
      {L"http://h/a b\\\u00E4\U0001F600%20", L"http://h/a%20b/%C3%A4%F0%9F%98%80%20"},
      {L"http://[::1]:81/x", L"http://[::1]:81/x"},
      {L"http://[::1]", L"http://[::1]/"},
      {L"http://good\\@evil/", L"(none)"},
      {L"http://h/\r\nX: y", L"(none)"},
      {L"http://u\n@h/", L"(none)"},
      {L"http://@/", L"(none)"},
      {L"http://:80/", L"(none)"},
      {L"http://h:8x/", L"(none)"},
      {L"http://[::g]/", L"(none)"},
      {L"http://a b/", L"(none)"},
      {L"file:///x", L"(none)"},
      {L"h/x", L"(none)"},
  };
  for (const auto& [url, wanted] : cases) {
    EXPECT_EQ(printed(url), wanted);
    EXPECT_EQ(printed(wanted), wanted);
  }
}

TEST(WebAddress, RedirectsNeverLeadToLessNorTakeALoginAlong) {
  WebAddress from, to;
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"/x", L"https://u@h/x"},
      {L"x?y", L"https://u@h/a/x?y"},
      {L"?z", L"https://u@h/a/b?z"},
      {L"https://H:443/x", L"https://u@h/x"},
      {L"//k/x", L"https://k/x"},
      {L"https://v:w@k/x", L"https://k/x"},
      {L"https://h:444/", L"https://h:444/"},
      {L"http://h/x", L"(none)"},
      {L"ftp://h/x", L"(none)"},
      {L"file:///x", L"(none)"},
      {L"", L"(none)"},
      {L"/x\r\n", L"(none)"},
      {L"javascript:x", L"(none)"},
  };
  ASSERT_TRUE(parseWebAddress(L"https://u:p@h/a/b?c", from));
  for (const auto& [location, wanted] : cases) {
    const bool leads = followRedirect(from, location, to);
    EXPECT_EQ(leads ? printWebAddress(to) : L"(none)", wanted);
    const bool isSame = to.host == L"h" && to.port == 443;
    EXPECT_TRUE(!leads || to.password.empty() != isSame);
  }
  ASSERT_TRUE(parseWebAddress(L"http://h/", from));
  EXPECT_TRUE(followRedirect(from, L"https://h/", to)) << "but to more";
}

TEST(WebAddress, ExtensionsAndHosts) {
  const std::pair<const wchar_t*, const wchar_t*> extensions[] = {
      {L"http://h/a.DWG?x=.exe", L".dwg"},
      {L"http://h.org/a", L""},
      {L"http://h/a.b/c", L""},
      {L"http://h/a.", L""},
      {L"http://h/a.toolong12", L""},
      {L"http://h/a.b%2F", L""},
  };
  WebAddress address;
  for (const auto& [url, wanted] : extensions) {
    ASSERT_TRUE(parseWebAddress(url, address));
    EXPECT_EQ(extensionOf(address), wanted);
  }
  ASSERT_TRUE(parseWebAddress(L"http://a.Example.org:81/", address));
  for (const wchar_t* list : {L"*", L"x A.example.ORG", L"a.example.org:81", L"*.example.org",
                              L"*.org,", L";*.example.org:81"})
    EXPECT_TRUE(isHostListed(list, address));
  for (const wchar_t* list : {L"", L"example.org", L"a.example.org:80", L"*.a.example.org", L"*.",
                              L"*rg", L"a.example.orgs", L"*.example.org:80"})
    EXPECT_FALSE(isHostListed(list, address));
}

TEST(CacheMark, IsReadAsItWasPrintedAndNothingElseIs) {
  CacheMark mark{.url = "http://h/x",
                 .etag = "\"a b\"",
                 .modified = "",
                 .size = 1ULL << 40,
                 .checked = 5,
                 .sum = {1, 0xAB}};
  const std::string good = printCacheMark(mark);
  CacheMark read;
  ASSERT_TRUE(parseCacheMark(good, read));
  EXPECT_EQ(printCacheMark(read), good);
  std::mt19937 random(1);
  for (int i = 0; i < 20'000; ++i) {
    std::string changed = good;
    for (unsigned int n = random() % 3 + 1; n > 0; --n) {
      const size_t at = random() % changed.size();
      if (random() % 2)
        changed[at] = static_cast<char>(random());
      else
        changed.erase(at, random() % 9);
      if (changed.empty()) changed = "x";
    }
    // Digits and spellings apart, what is taken is what would be printed.
    if (parseCacheMark(changed, read)) {
      EXPECT_TRUE(isMark(read.etag) && isMark(read.modified) && isMark(read.url));
      EXPECT_EQ(printCacheMark(read).substr(0, 30), changed.substr(0, 30));
    }
  }
  for (size_t i = 0; i < good.size(); ++i) EXPECT_FALSE(parseCacheMark(good.substr(0, i), read));
  EXPECT_FALSE(isMark("a\r\nX: y") || isMark("\x80") || isMark(std::string(2001, 'x')));
}

TEST(CacheMark, FilesOfOthersAreNotTheCaches) {
  const std::wstring key(32, L'0');
  const std::pair<std::wstring, CacheFile> cases[] = {
      {key + L".info", CacheFile::mark},
      {key + L"-0123456789abcdef", CacheFile::copy},
      {key + L"-0123456789abcdef.dwg", CacheFile::copy},
      {key + L"~0123abcd.tmp", CacheFile::unfinished},
      {key + L"-0123456789abcdef.DWG", CacheFile::other},
      {key + L"-0123456789abcdef.", CacheFile::other},
      {key + L"-0123456789abcdef.a.b", CacheFile::other},
      {key + L"-0123456789ABCDEF", CacheFile::other},
      {key + L"~0123abcd.tmp2", CacheFile::other},
      {key, CacheFile::other},
      {L"A" + key + L".info", CacheFile::other},
      {key.substr(1) + L".info", CacheFile::other},
      {L"", CacheFile::other},
  };
  for (const auto& [name, kind] : cases) EXPECT_EQ(cacheFileOf(name), kind);
}

}  // namespace
}  // namespace zo::test
