#include <windows.h>
#include <wininet.h>
#include <zo/search/download_cache.h>
#include <zo/system/cfg.h>

#include <algorithm>
#include <map>
#include <utility>

#include "files/folder_search.h"
#include "files/keep_reason.h"
#include "files/make_folders.h"
#include "files/replace_file.h"
#include "platform/clock.h"
#include "search/download.h"
#include "search/download_folder.h"
#include "search/text_lines.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

constexpr const wchar_t* kHostsSetting = L"download@hosts";
constexpr std::uint64_t kTicksPerSecond = 10'000'000;
constexpr std::uint64_t kTouchEvery = 1000;  // milliseconds

int failed(DWORD error, int code = ZoResult::refused) {
  return zo::keepReason(L"download", error, code);
}

// Nobody is asked while the list cannot be read: it may forbid it.
std::wstring allowedHosts() {
  auto* const settings = zo::serviceOrNull<ZoCfg>();
  if (!settings) return L"*";
  const zo::Writing held(*settings);  // get() tells no wait that failed from a setting that is none
  if (!held) return {};
  return std::wstring(settings->get(kHostsSetting, ZoString(L"*")).view());
}

// A URL as the folder knows it.
struct Wanted {
  zo::WebAddress address;
  std::string url;
  std::wstring server, key, extension;
};

int understand(const ZoFileName& name, Wanted& wanted) {
  if (!zo::parseWebAddress(name.view(), wanted.address))
    return failed(ERROR_NOT_SUPPORTED, ZoResult::invalid);
  const std::wstring text = zo::printWebAddress(wanted.address);
  wanted.url.assign(text.begin(), text.end());
  zo::Sha256Sum sum;
  if (!zo::sha256Of(wanted.url, sum)) return failed(GetLastError());
  const std::string digits = zo::hexOf(sum).substr(0, zo::kKeyDigits);
  wanted.key.assign(digits.begin(), digits.end());
  wanted.extension = zo::extensionOf(wanted.address);
  wanted.server = wanted.address.host + L':' + std::to_wstring(wanted.address.port);
  return ZoResult::ok;
}

}  // namespace

class ZoDownloadCache::Imp {
 public:
  Imp(std::wstring folder, const ZoDownloadOptions& options)
      : folder_(std::move(folder)), options_(options) {
    InitializeSRWLock(&lock_);
  }
  Imp(const Imp&) = delete;
  Imp& operator=(const Imp&) = delete;

  int get(const ZoFileName& url, ZoFileName& file, const Watcher& watcher);
  int find(const ZoFileName& url, ZoFileName& file);
  int remove(const ZoFileName& url);
  int clear() { return folder_.clear() ? ZoResult::ok : failed(ERROR_BUSY); }

 private:
  // A copy that was tested, as it looked then.
  struct Tested {
    std::wstring copy;
    zo::FileLook look;
    std::uint64_t checked = 0, touched = 0;
  };
  class Held;

  [[nodiscard]] bool isYoung(std::uint64_t checked) const;
  bool remembered(const Wanted& wanted, Tested& tested);
  void remember(const Wanted& wanted, const zo::CacheMark& mark, const zo::FileLook& look);
  int await(zo::EntryLock& lock, const ZoFileName& url, const Watcher& watcher) const;
  bool isUnreached(const Wanted& wanted);
  void noteReached(const Wanted& wanted, bool isReached);
  int fetch(const Wanted& wanted, const ZoFileName& url, const Watcher& watcher, ZoFileName& file);
  int accept(const Wanted& wanted, const zo::CacheMark* known, zo::Download& download);

  zo::DownloadFolder folder_;
  ZoDownloadOptions options_;
  SRWLOCK lock_{};
  std::map<std::wstring, Tested> tested_;
  std::map<std::wstring, std::uint64_t> unreached_;  // servers, and when they were asked in vain
};

class ZoDownloadCache::Imp::Held {
 public:
  explicit Held(SRWLOCK& lock) noexcept : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() { ReleaseSRWLockExclusive(&lock_); }

 private:
  SRWLOCK& lock_;
};

// A time in the future was written before the clock was set back, and says nothing.
bool ZoDownloadCache::Imp::isYoung(std::uint64_t checked) const {
  const std::uint64_t now = zo::timeNow();
  return checked <= now && now - checked < options_.maxAge * kTicksPerSecond;
}

bool ZoDownloadCache::Imp::remembered(const Wanted& wanted, Tested& tested) {
  bool touches = false;
  {
    const Held held(lock_);
    const auto found = tested_.find(wanted.key);
    if (found == tested_.end()) return false;
    const std::uint64_t now = zo::millisecondsNow();
    touches = now - found->second.touched >= kTouchEvery;
    if (touches) found->second.touched = now;
    tested = found->second;
  }
  zo::FileLook look;
  if (!zo::lookAt(tested.copy, look) || look != tested.look) return false;
  if (touches) folder_.touch(wanted.key);
  return true;
}

void ZoDownloadCache::Imp::remember(const Wanted& wanted, const zo::CacheMark& mark,
                                    const zo::FileLook& look) {
  const Held held(lock_);
  tested_[wanted.key] = {.copy = folder_.copyName(wanted.key, mark.sum, wanted.extension),
                         .look = look,
                         .checked = mark.checked,
                         .touched = 0};
}

int ZoDownloadCache::Imp::await(zo::EntryLock& lock, const ZoFileName& url,
                                const Watcher& watcher) const {
  constexpr DWORD kSlice = 50;
  const std::uint64_t begun = zo::millisecondsNow();
  const std::uint64_t most = std::uint64_t{options_.longest} * 1000;
  if (!lock.isThere()) return failed(GetLastError());
  while (!lock.wait(kSlice)) {
    if (watcher && !watcher({.url = url, .bytesDone = 0, .bytes = -1}))
      return failed(ERROR_CANCELLED, ZoResult::cancelled);
    if (zo::millisecondsNow() - begun > most) return failed(ERROR_TIMEOUT);
  }
  return ZoResult::ok;
}

int ZoDownloadCache::Imp::get(const ZoFileName& url, ZoFileName& file, const Watcher& watcher) {
  Wanted wanted;
  Tested tested;
  if (const int code = understand(url, wanted)) return code;
  if (remembered(wanted, tested) && isYoung(tested.checked)) {
    file = std::wstring_view(tested.copy);
    return ZoResult::ok;
  }
  zo::EntryLock lock(folder_.path(), wanted.key);
  if (const int code = await(lock, url, watcher)) return code;
  return fetch(wanted, url, watcher, file);
}

// Else a search for many files would wait for each of them.
bool ZoDownloadCache::Imp::isUnreached(const Wanted& wanted) {
  const Held held(lock_);
  const auto found = unreached_.find(wanted.server);
  return found != unreached_.end() &&
         zo::millisecondsNow() - found->second < std::uint64_t{options_.retryAfter} * 1000;
}

void ZoDownloadCache::Imp::noteReached(const Wanted& wanted, bool isReached) {
  const Held held(lock_);
  if (isReached)
    unreached_.erase(wanted.server);
  else
    unreached_[wanted.server] = zo::millisecondsNow();
}

int ZoDownloadCache::Imp::fetch(const Wanted& wanted, const ZoFileName& url, const Watcher& watcher,
                                ZoFileName& file) {
  zo::CacheMark known;
  zo::FileLook look;
  const bool isThere = folder_.load(wanted.key, wanted.url, wanted.extension, known, look);
  int code = ZoResult::ok;
  if (!isThere || !isYoung(known.checked)) {
    zo::Download download(options_, allowedHosts(), url, watcher);
    const auto answer = isUnreached(wanted)
                            ? download.away(ERROR_INTERNET_CANNOT_CONNECT)
                            : download.run(wanted.address, isThere ? &known : nullptr,
                                           folder_.path() + wanted.key + L'~');
    if (download.wasSent()) noteReached(wanted, download.isReached());
    const bool isNew = answer == zo::Download::kComplete || answer == zo::Download::kUnchanged;
    if (!isNew && (answer == zo::Download::kFailed || !isThere)) return download.code();
    code = isNew ? accept(wanted, isThere ? &known : nullptr, download) : ZoResult::stale;
    if (isNew) known = download.mark();
    if (code != ZoResult::ok && code != ZoResult::stale) return code;
  }
  const std::wstring copy = folder_.copyName(wanted.key, known.sum, wanted.extension);
  if (!zo::lookAt(copy, look)) return failed(GetLastError());
  remember(wanted, known, look);
  folder_.touch(wanted.key);
  file = std::wstring_view(copy);
  return code;
}

// Puts what was fetched in force. The same bytes as before stay the same file, which may be open.
int ZoDownloadCache::Imp::accept(const Wanted& wanted, const zo::CacheMark* known,
                                 zo::Download& download) {
  const zo::CacheMark& mark = download.mark();
  const std::wstring copy = folder_.copyName(wanted.key, mark.sum, wanted.extension);
  zo::FreshFile* const fresh = download.file();
  const bool isNew = fresh && (!known || known->sum != mark.sum);
  if (isNew && mark.size > options_.limit) return failed(ERROR_FILE_TOO_LARGE, ZoResult::tooLarge);
  if (isNew && !zo::putInPlace(*fresh, zo::SystemPath(copy.c_str()), false))
    return failed(GetLastError());
  if (!folder_.store(wanted.key, mark)) return failed(GetLastError());
  if (!isNew) return ZoResult::ok;
  static_cast<void>(folder_.removeAll(wanted.key, copy));  // what is open goes later
  folder_.trim(options_.limit, wanted.key);
  return ZoResult::ok;
}

int ZoDownloadCache::Imp::find(const ZoFileName& url, ZoFileName& file) {
  Wanted wanted;
  Tested tested;
  zo::CacheMark known;
  zo::FileLook look;
  if (const int code = understand(url, wanted)) return code;
  if (!remembered(wanted, tested)) {
    const auto load = [&] {
      return folder_.load(wanted.key, wanted.url, wanted.extension, known, look);
    };
    // Without its lock: the entry may be exchanged between two steps, but hardly twice.
    bool isThere = load();
    if (!isThere) isThere = load();
    if (!isThere) return failed(ERROR_FILE_NOT_FOUND);
    remember(wanted, known, look);
    tested = {.copy = folder_.copyName(wanted.key, known.sum, wanted.extension),
              .look = look,
              .checked = known.checked,
              .touched = 0};
  }
  file = std::wstring_view(tested.copy);
  return isYoung(tested.checked) ? ZoResult::ok : failed(zo::kOldCopy, ZoResult::stale);
}

int ZoDownloadCache::Imp::remove(const ZoFileName& url) {
  Wanted wanted;
  if (const int code = understand(url, wanted)) return code;
  zo::EntryLock lock(folder_.path(), wanted.key);
  if (const int code = await(lock, url, {})) return code;
  return folder_.removeAll(wanted.key) ? ZoResult::ok : failed(GetLastError());
}

ZoDownloadCache::ZoDownloadCache() = default;
ZoDownloadCache::~ZoDownloadCache() = default;
bool ZoDownloadCache::isOpen() const noexcept { return imp_ != nullptr; }

int ZoDownloadCache::open(const ZoFileName& folder, const ZoDownloadOptions& options) {
  if (folder.isURL()) return failed(ERROR_NOT_SUPPORTED, ZoResult::invalid);
  const bool isUnknown = folder.hasMacro() && folder.view().starts_with(L'$');
  if (folder.isEmpty() || isUnknown) return failed(ERROR_INVALID_NAME);
  std::wstring full = zo::platformText([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().fullPath(folder.fullName(), size, buffer);
  });
  if (full.empty()) return failed(GetLastError());
  if (full.back() != L'\\') full += L'\\';
  const bool isMade = zo::makeFolders(full);
  if (!isMade && GetLastError() != ERROR_ALREADY_EXISTS) return failed(GetLastError());
  const DWORD there = zo::fileApi().attributes(zo::SystemPath(full.c_str()));
  if (there == INVALID_FILE_ATTRIBUTES) return failed(GetLastError());
  if (!(there & FILE_ATTRIBUTE_DIRECTORY)) return failed(ERROR_DIRECTORY);
  imp_ = std::make_unique<Imp>(std::move(full), options);
  return ZoResult::ok;
}

int ZoDownloadCache::get(const ZoFileName& url, ZoFileName& file, const Watcher& watcher) {
  return imp_ ? imp_->get(url, file, watcher) : failed(ERROR_INVALID_HANDLE);
}

int ZoDownloadCache::find(const ZoFileName& url, ZoFileName& file) {
  return imp_ ? imp_->find(url, file) : failed(ERROR_INVALID_HANDLE);
}

int ZoDownloadCache::remove(const ZoFileName& url) {
  return imp_ ? imp_->remove(url) : failed(ERROR_INVALID_HANDLE);
}

int ZoDownloadCache::clear() { return imp_ ? imp_->clear() : failed(ERROR_INVALID_HANDLE); }
