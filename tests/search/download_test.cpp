// The download cache and a web server that lies.
#include <zo/files/file.h>
#include <zo/search/download_cache.h>
#include <zo/system/cfg.h>

#include <fstream>
#include <memory>
#include <thread>
#include <vector>

#include "files/file_fixture.h"
#include "platform/clock.h"
#include "search/cache_mark.h"
#include "search/download_folder.h"
#include "search/http_request.h"
#include "support/child_process.h"
#include "support/loopback_server.h"
#include "support/registry_base.h"

namespace zo::test {
namespace {

constexpr ZoDownloadOptions kAskAlways{
    .largest = 100'000, .maxAge = 0, .timeOut = 20'000, .retryAfter = 0};
constexpr ZoDownloadOptions kAskSeldom{.timeOut = 5000};

class Downloads : public FileTest {
 protected:
  ZoFileName url(const std::wstring& path, const std::wstring& login = L"") const {
    return ZoFileName((L"http://" + login + server_.host() + path).c_str());
  }
  void serve(const std::string& content, const wchar_t* file = L"part.dwg") {
    put(ZoFileName((server_.folder() / file).wstring().c_str()), content);
  }
  // What a new object gives; the code in brackets unless it is 0.
  std::string fetched(const ZoFileName& from, const ZoDownloadOptions& options = kAskAlways) {
    ZoDownloadCache cache;
    EXPECT_EQ(cache.open(name(L"cache"), options), 0);
    return fetchedBy(cache, from);
  }
  std::string fetchedBy(ZoDownloadCache& cache, const ZoFileName& from,
                        const ZoDownloadCache::Watcher& watcher = {}) {
    ZoFileName file = L"as it was";
    const int code = cache.get(from, file, watcher);
    const std::wstring reason(ZoString(fs().errorTxt()).view());
    EXPECT_TRUE(code == 0 || (reason.size() > 5 && !reason.starts_with(L"Error ")))
        << code << testing::PrintToString(reason);
    const bool isFilled = code == 0 || code == ZoResult::stale;
    EXPECT_EQ(file == L"as it was", !isFilled);
    const std::string mark = code ? "(" + std::to_string(code) + ")" : "";
    return isFilled ? mark + bytesOf(file) : mark;
  }
  std::string count() { return server_.ask("count"); }
  Names cached() const {
    Names all;
    for (const std::wstring& file : listing())
      if (file.starts_with(L"cache\\") && file.size() > 6) all.push_back(file.substr(6));
    return all;
  }
  std::filesystem::path only(CacheFile kind) const {
    for (const std::wstring& file : cached())
      if (cacheFileOf(file) == kind) return folder_.path() / L"cache" / file;
    return {};
  }

  LoopbackServer server_{ZO_HTTP_SERVER_SCRIPT};
};

TEST_F(Downloads, AreFetchedOnceAndThenOnlyWhenTheyChanged) {
  const ZoFileName part = url(L"/file/part.dwg?size=8#there");
  serve("first");
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache\\below"), kAskSeldom), 0) << "the folder is made";
  ZoFileName file;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(cache.get(part, file), 0);
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(bytesOf(file), "first");
  EXPECT_EQ(std::wstring(file.extension()), L".dwg");
  serve("changed");
  EXPECT_EQ(fetchedBy(cache, part), "first") << "it is young";

  EXPECT_EQ(fetched(part), "changed");
  EXPECT_EQ(fetched(part), "changed");
  EXPECT_NE(server_.ask("last").find("If-None-Match"), std::string::npos);
  EXPECT_EQ(fetched(part, kAskSeldom), "changed");
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(cached().size(), 2U + 3U)
      << "one copy and its mark in each folder, and the folder below";
}

TEST_F(Downloads, ComeInEveryWayThatServersHave) {
  std::string content(70'000, '\0');
  for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7 + i / 256);
  for (const std::string& body : {content, std::string(), std::string("x")}) {
    serve(body);
    serve(body, L"a%20b%C3%A4.dwg");
    for (const wchar_t* way :
         {L"/file/part.dwg", L"/dated/part.dwg", L"/bare/part.dwg", L"/chunked/part.dwg",
          L"/close/part.dwg", L"/marks/part.dwg", L"/hops/5/part.dwg", L"/to/301//file/part.dwg",
          L"/to/307//file/part.dwg", L"/file/a b\u00E4.dwg"}) {
      EXPECT_TRUE(fetched(url(way)) == body) << testing::PrintToString(std::wstring(way));
      EXPECT_TRUE(fetched(url(way)) == body) << "with its marks";
    }
  }
  EXPECT_TRUE(fetched(url(L"/dated/part.dwg")) == "x");
  EXPECT_NE(server_.ask("last").find("If-Modified-Since"), std::string::npos);
}

struct Lie {
  const char* way;
  int code;       // without a copy
  bool mayServe;  // an older copy
};
constexpr Lie kLies[] = {
    {"short", 1, true},
    {"status/500", 1, true},
    {"status/503", 1, true},
    {"status/429", 1, true},
    {"halfhead", 1, true},
    {"noise", 1, true},
    {"status/404", ZoResult::serverRefused, false},
    {"status/206", ZoResult::serverRefused, false},
    {"status/401", ZoResult::serverRefused, false},
    {"page", ZoResult::serverRefused, false},
    {"same", ZoResult::serverRefused, false},
    {"loop", ZoResult::serverRefused, false},
    {"hops/6", ZoResult::serverRefused, false},
    {"nowhere", ZoResult::serverRefused, false},
    {"to/302/file%3A/", ZoResult::serverRefused, false},
    {"to/302/ftp%3A/", ZoResult::serverRefused, false},
    {"to/302/javascript%3A", ZoResult::serverRefused, false},
    {"length/99999999999999999999999", ZoResult::serverRefused, false},
    {"length/-5", ZoResult::serverRefused, false},
    {"length/1x", ZoResult::serverRefused, false},
    {"lengths", ZoResult::serverRefused, false},
    {"coded", ZoResult::serverRefused, false},
    {"length/1000000000000", ZoResult::tooLarge, false},
    {"endless", ZoResult::tooLarge, false},
};

TEST_F(Downloads, LiesGiveNothingAndSpoilNothing) {
  const ZoFileName part = url(L"/var/part.dwg");
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache"), kAskAlways), 0);
  for (const bool isThere : {false, true}) {
    serve("good");
    server_.ask("way file");
    ASSERT_EQ(isThere ? fetchedBy(cache, part) : "good", "good");
    const Names before = cached();
    serve("another");
    for (const auto& [way, code, mayServe] : kLies) {
      server_.ask(std::string("way ") + way);
      const std::string refused = "(" + std::to_string(code) + ")";
      // "The same" is right when there is something.
      const bool isRight = isThere && std::string_view(way) == "same";
      const std::string wanted = isRight ? "good" : isThere && mayServe ? "(1021)good" : refused;
      EXPECT_EQ(fetchedBy(cache, part), wanted) << way;
      EXPECT_EQ(cached(), before) << way;
    }
  }
  server_.ask("way long");
  EXPECT_EQ(fetchedBy(cache, part), "anot") << "as long as it says, and no longer";
}

TEST_F(Downloads, ServeStaleWithoutAServerAndAnewWithOne) {
  const ZoFileName part = url(L"/file/part.dwg"), other = url(L"/file/other.dwg");
  ZoFileName file = L"as it was";
  serve("old");
  EXPECT_EQ(fetched(part), "old");
  server_.ask("down");
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache"), kAskAlways), 0);
  EXPECT_EQ(fetchedBy(cache, part), "(1021)old");
  EXPECT_EQ(fetchedBy(cache, other), "(1)");
  EXPECT_EQ(cache.find(other, file), 1);
  EXPECT_EQ(cache.find(part, file), ZoResult::stale);
  EXPECT_EQ(bytesOf(file), "old");
  ZoDownloadCache patient;
  ASSERT_EQ(patient.open(name(L"cache"), {.maxAge = 0}), 0);
  EXPECT_EQ(fetchedBy(patient, part), "(1021)old");
  server_.ask("up");
  serve("new");
  EXPECT_EQ(fetchedBy(patient, other) + fetchedBy(patient, part), "(1)(1021)old")
      << "it is not asked again so soon";
  EXPECT_EQ(fetchedBy(cache, part), "new");
}

TEST_F(Downloads, AnEntryThatNobodyCanHoldIsRefusedAtOnce) {
  const ZoFileName part = url(L"/file/part.dwg");
  serve("x");
  ASSERT_EQ(fetched(part), "x");
  const std::wstring mutex =
      EntryLock::nameOf(std::wstring(name(L"cache\\").view()),
                        only(CacheFile::mark).filename().wstring().substr(0, kKeyDigits));
  const HANDLE squatter = CreateEventW(nullptr, TRUE, FALSE, mutex.c_str());
  EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_EQ(fetched(part), "(1)");
  expectError(ERROR_INVALID_HANDLE);
  CloseHandle(squatter);
  EXPECT_EQ(fetched(part), "x");
}

TEST_F(Downloads, ServersThatHangOrDripEndWithTheirTime) {
  EXPECT_EQ(fetched(url(L"/hang/part.dwg"), {.maxAge = 0, .timeOut = 300}), "(1)");
  const ZoFileName drip = url(L"/drip/part.dwg");
  EXPECT_EQ(fetched(drip, {.maxAge = 0, .timeOut = 60'000, .longest = 1}), "(1)");
  const std::uint64_t begun = millisecondsNow();
  for (const unsigned int timeOut : {0U, 1U << 31, 0xFFFFFFFFU}) {
    for (const wchar_t* way : {L"/slowhead/part.dwg", L"/hang/part.dwg"})
      EXPECT_EQ(fetched(url(way), {.timeOut = timeOut, .longest = 1}), "(1)");
  }
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache")), 0);
  int calls = 0;
  const auto cancel = [&](const auto&) { return ++calls < 4; };
  EXPECT_EQ(fetchedBy(cache, url(L"/slowhead/part.dwg"), cancel), "(1020)");
  EXPECT_LT(millisecondsNow() - begun, 30'000U) << "7 waits, and the platform's time to let go";
}

TEST_F(Downloads, AskNobodyWhileThePlatformHasTooManyThatWereGivenUp) {
  const auto giveUp = [&](unsigned int i) {
    ZoDownloadCache cache;
    ZoFileName file;
    const ZoFileName part = url(L"/slowhead/" + std::to_wstring(i));
    if (cache.open(name(L"cache"))) return;
    static_cast<void>(
        cache.get(part, file, [calls = 0](const auto&) mutable { return ++calls < 4; }));
  };
  const ZoFileName part = url(L"/file/part.dwg");
  serve("content");
  {
    std::vector<std::jthread> threads;
    for (unsigned int i = 0; i < HttpRequest::kMostGivenUp; ++i) threads.emplace_back(giveUp, i);
  }
  count();
  EXPECT_EQ(fetched(part), "(1)");
  EXPECT_EQ(count(), "0");
  server_.ask("release");
  while (fetched(part) != "content") {
  }
}

TEST_F(Downloads, AskListedHostsOnly) {
  const RegistryBase base;
  ASSERT_EQ(ZoSystem::cfg().init(base.path().c_str(), nullptr), 0);
  const ZoFileName part = url(L"/file/part.dwg");
  const ZoFileName away = url(L"/to/302/http%3A//localhost" +
                              server_.host().substr(server_.host().find(L':')) + L"/file/part.dwg");
  serve("x");
  EXPECT_EQ(fetched(part) + fetched(away), "xx") << "without a setting";
  count();
  for (const wchar_t* list : {L"", L"example.org", L"127.0.0.1:1", L"*.0.0.1x", L"*."}) {
    ASSERT_EQ(ZoSystem::cfg().put(L"download@hosts", ZoString(list)), 0);
    EXPECT_EQ(fetched(part), "(1022)");
    EXPECT_EQ(fetched(part, kAskSeldom), "x") << "nobody is asked";
  }
  EXPECT_EQ(count(), "0");
  for (const std::wstring& list : {std::wstring(L"a.b, 127.0.0.1"), L"x;" + server_.host()}) {
    ASSERT_EQ(ZoSystem::cfg().put(L"download@hosts", ZoString(list.c_str())), 0);
    EXPECT_EQ(fetched(part) + fetched(away), "x(1022)") << "nor is it by a redirect";
  }
}

TEST_F(Downloads, PasswordsGoToTheirServerOnly) {
  const ZoFileName part = url(L"/login/part.dwg", L"u:p%3A%40p@");
  serve("secret");
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache")), 0);
  EXPECT_EQ(fetchedBy(cache, part), "secret");
  EXPECT_EQ(fetchedBy(cache, url(L"/login/part.dwg?another")), "(1024)") << "without a password";
  EXPECT_EQ(fetched(url(L"/login/part.dwg", L"u:wrong@")), "(1024)");
  EXPECT_EQ(ZoString(fs().errorTxt()).index(L"wrong"), ZoString::npos);
  EXPECT_EQ(fetched(url(L"/login/part.dwg")), "(1024)") << "another entry";
  const std::string mark = bytesOf(ZoFileName(only(CacheFile::mark).wstring().c_str()));
  EXPECT_NE(mark.find("//u@127"), std::string::npos);
  EXPECT_EQ(mark.find("p:"), mark.find("http:") + 3);
  EXPECT_EQ(mark.find("%40"), std::string::npos);
}

TEST_F(Downloads, DamagedEntriesAreFetchedAnew) {
  const ZoFileName part = url(L"/file/part.dwg");
  serve("content");
  ASSERT_EQ(fetched(part), "content");
  for (const CacheFile kind : {CacheFile::mark, CacheFile::copy}) {
    const ZoFileName file(only(kind).wstring().c_str());
    const std::string good = bytesOf(file);
    for (size_t i = 0; i <= good.size(); i += kind == CacheFile::mark ? 7 : 1) {
      std::string changed = good;
      if (i < good.size()) changed[i] = static_cast<char>(changed[i] ^ 1);
      put(file, changed);
      EXPECT_EQ(fetched(part, kAskSeldom), "content") << i;
      put(file, i % 2 ? good.substr(0, i) : good + "x");
      EXPECT_EQ(fetched(part, kAskSeldom), "content") << i;
    }
  }
  ZoDownloadCache running;
  ASSERT_EQ(running.open(name(L"cache"), kAskSeldom), 0);
  EXPECT_EQ(fetchedBy(running, part), "content");
  put(ZoFileName(only(CacheFile::copy).wstring().c_str()), "cut");
  EXPECT_EQ(fetchedBy(running, part), "content") << "it looks another way than it did";
  std::filesystem::remove(only(CacheFile::copy));
  EXPECT_EQ(fetchedBy(running, part), "content");
}

TEST_F(Downloads, ACopyOfTheFutureIsAskedFor) {
  const ZoFileName part = url(L"/file/part.dwg");
  serve("content");
  ASSERT_EQ(fetched(part), "content");
  const ZoFileName file(only(CacheFile::mark).wstring().c_str());
  CacheMark mark;
  ASSERT_TRUE(parseCacheMark(bytesOf(file), mark));
  for (const std::uint64_t ahead : {36'000'000'000ULL, 1ULL << 63}) {
    CacheMark later = mark;
    later.checked += ahead;  // the clock was set back
    put(file, printCacheMark(later));
    count();
    EXPECT_EQ(fetched(part, kAskSeldom), "content");
    EXPECT_EQ(count(), "1");
  }
}

TEST_F(Downloads, TheOneUsedLongestAgoGoesFirst) {
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache"), {.limit = 1000}), 0);
  const auto part = [&](int i) { return url(L"/file/" + std::to_wstring(i)); };
  ZoFileName file;
  for (int i = 0; i < 4; ++i)
    serve(std::string(400, static_cast<char>('a' + i)), std::to_wstring(i).c_str());
  put(name(L"cache\\mine.txt"), "mine");
  ASSERT_EQ(cache.get(part(0), file) + cache.get(part(1), file), 0);
  for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / L"cache")) {
    // Number 0 was used later than number 1.
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    if (entry.path().extension() != L".info") continue;
    in.close();
    const bool isFirst = text.find("/file/0") != std::string::npos;
    std::filesystem::last_write_time(
        entry, std::filesystem::file_time_type::clock::now() - std::chrono::hours(isFirst ? 1 : 2));
  }
  put(name(L"cache\\" + std::wstring(32, L'a') + L"~01234567.tmp"), "a killed process left it");
  EXPECT_EQ(cache.get(part(2), file), 0);
  EXPECT_EQ(
      cache.find(part(0), file) * 100 + cache.find(part(1), file) * 10 + cache.find(part(2), file),
      10);
  EXPECT_EQ(cached().size(), 5U) << "two entries and what is not the cache's";
  ZoFile reader;
  for (const auto share : {ZoFile::kShareRead, ZoFile::kShareRead | ZoFile::kShareDelete}) {
    ASSERT_EQ(cache.get(part(0), file), 0);
    ASSERT_EQ(reader.open(file, ZoFile::kRead, ZoFile::kOpenExisting, share), 0);
    EXPECT_EQ(cache.get(part(3), file) + cache.get(part(2), file), 0);
    EXPECT_EQ(cache.find(part(0), file), 0) << "it is open";
    EXPECT_EQ(cache.get(part(0), file), 0);
  }
  EXPECT_EQ(cache.get(part(3), file), 0);
  EXPECT_EQ(cache.clear(), 1);
  EXPECT_EQ(reader.close() + cache.remove(part(3)) + cache.clear(), 0);
  EXPECT_EQ(cached(), Names{L"mine.txt"});
  serve(std::string(1001, 'x'), L"0");
  EXPECT_EQ(fetchedBy(cache, part(0)), "(1023)");
}

TEST_F(Downloads, LeaveWhatIsNotTheirs) {
  const ZoFileName part = url(L"/file/part.dwg");
  serve("x");
  ASSERT_EQ(fetched(part), "x");
  const std::wstring copy = only(CacheFile::copy).filename().wstring();
  const std::wstring foreign = std::wstring(32, L'1') + L".info";
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache")), 0);
  put(name(L"cache\\" + foreign), "somebody else's");
  EXPECT_EQ(cache.clear(), 0);
  EXPECT_EQ(cached(), Names{foreign});
  std::filesystem::create_directory(folder_.path() / L"cache" / copy);
  EXPECT_EQ(fetched(part), "(1)");
  EXPECT_EQ(cache.clear(), 1) << "what keeps it out is told";
  std::filesystem::remove(folder_.path() / L"cache" / copy);
  EXPECT_EQ(fetched(part), "x");
}

TEST_F(Downloads, TellHowFarTheyAreAndCanBeCancelled) {
  const ZoFileName part = url(L"/file/part.dwg");
  serve("old");
  ASSERT_EQ(fetched(part), "old");
  const std::string content(300'000, 'n');
  serve(content);
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache"), {.maxAge = 0}), 0);
  for (int stop = 0; stop < 4; ++stop) {
    int calls = 0;
    EXPECT_EQ(fetchedBy(cache, part, [&](const auto&) { return calls++ < stop; }), "(1020)");
    EXPECT_THROW(fetchedBy(cache, part, [&](const auto&) -> bool { throw stop; }), int);
  }
  EXPECT_EQ(cached().size(), 2U);
  std::int64_t last = -1, size = -1;
  const auto watch = [&](const ZoDownloadCache::Progress& progress) {
    EXPECT_GE(progress.bytesDone, last);
    EXPECT_TRUE(progress.url == part);
    last = progress.bytesDone;
    size = progress.bytes;
    return true;
  };
  EXPECT_TRUE(fetchedBy(cache, part, watch) == content);
  EXPECT_EQ(last, size);
  EXPECT_EQ(last, 300'000);
}

TEST_F(Downloads, RefuseWhatIsNoWebAddressAndAnObjectThatIsNotOpen) {
  ZoDownloadCache cache;
  ZoFileName file;
  EXPECT_EQ(cache.get(url(L"/file/x"), file), 1);
  EXPECT_EQ(cache.find(url(L"/file/x"), file) + cache.clear() + cache.remove(url(L"/x")), 3);
  EXPECT_EQ(cache.open(L"http://host/folder"), 3);
  put(name(L"plain file"), "");
  EXPECT_EQ(cache.open(name(L"plain file\\cache")), 1);
  for (const ZoFileName& none : {name(L"plain file"), ZoFileName(L"$m'x"), ZoFileName()})
    EXPECT_EQ(cache.open(none), 1) << testing::PrintToString(none.view());
  EXPECT_FALSE(cache.isOpen());
  ASSERT_EQ(cache.open(name(L"cache")), 0);
  for (const wchar_t* other : {L"C:\\f", L"ftp://h/f", L"http://", L"https:///f", L"http://h:0/f",
                               L"http://h:99999/", L"", L"mailto:x@y", L"\\\\server\\share\\f"}) {
    EXPECT_EQ(cache.get(ZoFileName(other), file), 3);
  }
}

// ---- What goes wrong here ----

TEST_F(Downloads, AFailureOfAnyCallLeavesTheOldOrTheNewCopy) {
  const ZoFileName part = url(L"/file/part.dwg");
  bool met = true;
  for (int nth = 1; met; ++nth) {
    std::filesystem::remove_all(folder_.path() / L"cache");
    serve("old");
    ASSERT_EQ(fetched(part), "old");
    serve("new");
    {
      FaultyFiles files;
      files.arm({.fault = Fault::fail, .nth = nth, .error = ERROR_DISK_FULL});
      ZoDownloadCache cache;
      ZoFileName file;
      const int code = cache.open(name(L"cache"), kAskAlways) || cache.get(part, file);
      met = files.met();
      EXPECT_EQ(code == 0 ? bytesOf(file) : "new", "new") << nth;
    }
    server_.ask("down");
    const std::string left = fetched(part, kAskSeldom);
    EXPECT_TRUE(left == "old" || left == "new" || left == "(1021)old") << nth << left;
    server_.ask("up");
    EXPECT_EQ(fetched(part), "new") << nth;
    ASSERT_LT(nth, 200);
  }
}

// Downloads URL (argument 1) into a folder (0) until its nth call (2) ends it.
ZO_TEST_CHILD(downloader) {
  const Attached attached;
  FaultyFiles files;
  files.arm({.fault = Fault::stop, .nth = std::stoi(parent.argument(2))});
  ZoDownloadCache cache;
  ZoFileName file;
  bool isFirst = true;
  if (cache.open(parent.argument(0).c_str(), kAskAlways)) return 1;
  return cache.get(parent.argument(1).c_str(), file, [&](const auto&) {
    if (isFirst) parent.say("asking");
    isFirst = false;
    return true;
  });
}

TEST_F(Downloads, AKilledProcessLeavesTheOldOrTheNewCopy) {
  const ZoFileName part = url(L"/file/part.dwg");
  int ended = kStopped;
  for (int nth = 1; ended == kStopped; nth += nth < 8 ? 3 : 1) {
    std::filesystem::remove_all(folder_.path() / L"cache");
    serve("old");
    ASSERT_EQ(fetched(part), "old");
    serve("new");
    ChildProcess child(L"downloader", {std::wstring(name(L"cache").view()),
                                       std::wstring(part.view()), std::to_wstring(nth)});
    while (child.hear()) {
    }
    ended = child.wait();
    ZoDownloadCache cache;
    ZoFileName file;
    ASSERT_EQ(cache.open(name(L"cache"), kAskSeldom), 0);
    EXPECT_EQ(cache.find(part, file), 0) << nth;
    EXPECT_TRUE(bytesOf(file) == "old" || bytesOf(file) == "new") << nth;
    EXPECT_EQ(fetched(part), "new") << nth;
    serve("x", L"other.dwg");
    EXPECT_EQ(fetched(url(L"/file/other.dwg")), "x");
    EXPECT_EQ(cached().size(), 4U) << nth << ": what was left goes with the next download";
    ASSERT_LT(nth, 200);
  }
  EXPECT_EQ(ended, 0);
}

TEST_F(Downloads, TwoProcessesFetchOneFileOnce) {
  const ZoFileName part = url(L"/wait/part.dwg");
  serve("content");
  ChildProcess child(L"downloader",
                     {std::wstring(name(L"cache").view()), std::wstring(part.view()), L"1000"});
  ASSERT_EQ(child.hear(), "asking");
  ZoDownloadCache cache;
  ASSERT_EQ(cache.open(name(L"cache"), kAskSeldom), 0);
  int waited = 0;
  EXPECT_EQ(fetchedBy(cache, part, [&](const auto&) { return ++waited < 3; }), "(1020)");
  EXPECT_EQ(fetchedBy(cache, part,
                      [&](const auto& progress) {
                        EXPECT_EQ(progress.bytesDone, 0);
                        return server_.ask("release") == "done";
                      }),
            "content");
  EXPECT_EQ(child.wait(), 0);
  EXPECT_EQ(count(), "1");
}

}  // namespace
}  // namespace zo::test
