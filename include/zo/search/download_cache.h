// Files of web servers by way of a folder that keeps copies of them: asked for once, and from then
// on again only when a copy is too old, and with the server's own marks, so that what did not
// change does not travel again. Without a network the old copy serves, and says so.
//
//   ZoDownloadCache cache;
//   if (cache.open(folder)) return report();
//   ZoFileName file;
//   const int code = cache.get(L"https://example.org/parts/bolt.dwg", file);
//   if (code && code != ZoResult::stale) return report();
//   read(file);
//
// What is a file    the body of an answer 200, of the length that the answer says, which is no web
//          page unless the URL's own extension (or none) lets one expect it. All else is refused.
//          Redirects are followed five times at most, and never from https to http.
// Who is asked    every host, or, once there is a setting "download@hosts", those that it lists,
//          separated by blanks: "example.org", "example.org:8080", "*.example.org" (all below it),
//          "*". Redirects lead to no other either. Copies that are young enough serve without it.
// Passwords    in URLs go to their server and nowhere else: not into the folder, a report or to
//          where a redirect leads; the basic form of login is the one that is used, and no URL
//          gains by the password of another one. URLs that differ in nothing but a password are
//          one file.
// Trust    nothing that is read from a server or from the folder is trusted: a copy that is not
//          what was stored (SHA-256) is fetched anew; no name in it leads out of the folder. A
//          running object looks at size and time of what it has tested once.
// Safety   a new copy is written beside and takes its place in one step: whatever fails, and if the
//          process is killed, the old copy is as it was. Processes and threads that want the same
//          file wait for the one that fetches it. Files in the folder that are not the cache's are
//          left alone.
//
// Errors:  0; 1 failed; 3 no URL that is served here (http and https are); and the codes of
//          open_results.h. After all but 0 errorTxt() says why, and a name that was to be filled is
//          as it was, but with `stale`. Nothing throws but std::bad_alloc and what a watcher
//          throws.
// Threads: any, but open() before all else.
// Cost:    a young copy costs a look at its file (and, once in an object's life, its checksum).
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/system/open_results.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

struct ZoDownloadOptions {
  std::uint64_t limit = std::uint64_t{1} << 30;  // bytes of all copies; the one used longest ago
                                                 // goes first
  std::uint64_t largest = std::uint64_t{256} << 20;  // bytes of one file
  unsigned int maxAge = 3600;     // seconds for which nobody is asked; 0 asks each time
  unsigned int timeOut = 30'000;  // milliseconds to wait for a connection, and for what comes
                                  // next; 0, and what is more: as long as `longest` says
  unsigned int longest = 600;     // seconds that one download may last, its waits included, and
                                  // also to wait for another process that fetches the file
  unsigned int retryAfter = 10;   // seconds for which a server that did not answer is not asked
};

class ZO_COM_API ZoDownloadCache {
 public:
  struct Progress {
    const ZoFileName& url;
    std::int64_t bytesDone, bytes;  // -1: the server does not say
  };
  // Called between the pieces of a file, and some twenty times a second while a server or another
  // process is waited for; false cancels.
  using Watcher = std::function<bool(const Progress&)>;
  // One that gives something else, such as a pointer, which would pass for true.
  template <class T>
  static constexpr bool isNoWatcher = requires(T& f, const Progress& progress) {
    f(progress);
    requires !std::same_as<decltype(f(progress)), bool>;
  };

  ZoDownloadCache();
  ZoDownloadCache(const ZoDownloadCache&) = delete;
  ZoDownloadCache& operator=(const ZoDownloadCache&) = delete;
  ~ZoDownloadCache();

  // The folder is made if it is missing; 1 where something else has its name, or a macro in it is
  // unknown. Several objects and processes may use one.
  [[nodiscard]] int open(const ZoFileName& folder, const ZoDownloadOptions& options = {});
  [[nodiscard]] bool isOpen() const noexcept;

  // The copy's name, with the URL's extension: to be read only. It may go when another is fetched,
  // unless it is open.
  [[nodiscard]] int get(const ZoFileName& url, ZoFileName& file, const Watcher& watcher = {});
  // What get gives without asking any server: 0, `stale`, or 1 when there is no copy.
  [[nodiscard]] int find(const ZoFileName& url, ZoFileName& file);
  // 0 also when there is none.
  [[nodiscard]] int remove(const ZoFileName& url);
  // 1 when a copy is in use and stays, or when a folder has the name of a copy, which is then never
  // one.
  [[nodiscard]] int clear();

  int open(std::nullptr_t, const ZoDownloadOptions& = {}) = delete;    // name a folder
  int get(std::nullptr_t, ZoFileName&, const Watcher& = {}) = delete;  // give a URL
  int find(std::nullptr_t, ZoFileName&) = delete;                      // give a URL
  int remove(std::nullptr_t) = delete;                                 // give a URL
  template <class T>
    requires isNoWatcher<T>
  int get(const ZoFileName&, ZoFileName&, const T&) = delete;  // a watcher returns bool

 private:
  class Imp;
  std::unique_ptr<Imp> imp_;
};
