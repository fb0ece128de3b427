#include <windows.h>
#include <zo/library/library.h>
#include <zo/search/std_file_search.h>
#include <zo/system/sys_disp.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "names/name_parser.h"
#include "platform/file_api.h"
#include "platform/system_path.h"
#include "search/file_search_imp.h"
#include "search/web_address.h"
#include "system/notice_data.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

std::atomic<int> reactorsAlive = 0;

std::wstring textOrEmpty(const wchar_t* text) { return text ? text : L""; }

// The full path of what a name stands for; empty for what is not on a disk.
std::wstring fullPath(const ZoFileName& name) {
  ZoFileName plain;
  if (zo::withoutMacro(name, plain) != ZoResult::ok || plain.isURL() || plain.isCD()) return {};
  return zo::platformText([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().fullPath(plain.fullName(), size, buffer);
  });
}

bool canBeServed(const ZoFileName& url) {
  zo::WebAddress address;
  return zo::parseWebAddress(url.view(), address) || zo::beginsWith(url.view(), L"ftp://");
}

}  // namespace

ZoStdFileSearch::ZoStdFileSearch() : imp_(std::make_unique<zo::FileSearchImp>()) {}
ZoStdFileSearch::~ZoStdFileSearch() = default;

void ZoStdFileSearch::onReactor(ZoSysNotice notice, const ZoVariant& data) {
  if (notice != ZoSysNotice::moduleLoaded || ZoFileSearchReactor::isAlive()) return;
  if (!zo::isThisLibrary(zo::moduleOf(data))) return;
  auto* const dispatcher = zo::serviceOrNull<ZoSysDisp>();
  if (!dispatcher) return;
  auto reactor = std::make_unique<ZoFileSearchReactor>();
  if (dispatcher->addReactor(reactor.get()) != ZoResult::ok) return;
  [[maybe_unused]] const auto* const owned = reactor.release();  // by the dispatcher
}

int ZoStdFileSearch::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

void ZoStdFileSearch::poolRelease(const wchar_t* module) {
  if (!module) return;
  const zo::Writing writing(*this);
  if (writing) imp_->finder().release(module);
}

// ---- Places ----

int ZoStdFileSearch::addPath(const ZoFileName& folder, const wchar_t* module) {
  return addFolder(folder, module, 0, false);
}

int ZoStdFileSearch::addFolder(const ZoFileName& folder, const wchar_t* module, int priority,
                               bool below) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  std::wstring path = fullPath(folder);
  if (path.empty() || !zo::isFolder(path)) return ZoResult::refused;
  if (path.back() != L'\\') path += L'\\';
  const auto kind = below ? zo::FilePlace::kTree : zo::FilePlace::kFolder;
  auto place = std::make_shared<zo::FilePlace>(kind, path, textOrEmpty(module), priority);
  return imp_->finder().add(std::move(place)) ? ZoResult::ok : ZoResult::refused;
}

int ZoStdFileSearch::addLibrary(const ZoFileName& library, const wchar_t* module, int priority) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  const std::wstring path = fullPath(library);
  ZoLibrary opened;
  if (path.empty() || opened.open(ZoFileName(path)) != ZoResult::ok || !opened.isLibrary())
    return ZoResult::refused;
  auto place =
      std::make_shared<zo::FilePlace>(zo::FilePlace::kLibrary, path, textOrEmpty(module), priority);
  return imp_->finder().add(std::move(place)) ? ZoResult::ok : ZoResult::refused;
}

int ZoStdFileSearch::addServer(const ZoFileName& url, const wchar_t* module, int priority) {
  const zo::Writing writing(*this);
  ZoFileName plain;
  if (!writing || zo::withoutMacro(url, plain) != ZoResult::ok) return ZoResult::refused;
  if (!plain.isURL()) return ZoResult::refused;
  if (!canBeServed(plain)) return ZoResult::invalid;
  std::wstring path(plain.view());
  if (path.back() != L'/') path += L'/';
  auto place =
      std::make_shared<zo::FilePlace>(zo::FilePlace::kServer, path, textOrEmpty(module), priority);
  return imp_->finder().add(std::move(place)) ? ZoResult::ok : ZoResult::refused;
}

int ZoStdFileSearch::setCacheFolder(const ZoFileName& folder, std::uint64_t limit,
                                    unsigned int maxAge) {
  const zo::Writing writing(*this);
  return writing ? imp_->setCache(folder, limit, maxAge) : ZoResult::refused;
}

int ZoStdFileSearch::refresh() {
  imp_->finder().forget();
  return ZoResult::ok;
}

// ---- Finding ----

int ZoStdFileSearch::find(const ZoFileName& name, ZoFileName& found) {
  zo::Located located;
  const int code = imp_->locate(name, located);
  if (located.place != ZoFound::kNowhere) found = located.name();
  return code;
}

int ZoStdFileSearch::locate(const ZoFileName& name, ZoFound& found) {
  zo::Located located;
  const int code = imp_->locate(name, located);
  if (located.place != ZoFound::kNowhere) found = located.found();
  return code;
}

int ZoStdFileSearch::findNames(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                               unsigned int kinds) {
  return imp_->findNames(pattern, names, kinds);
}

int ZoStdFileSearch::openFile(const ZoFileName& name, ZoFile& file, int access, int share) {
  return imp_->open(name, file, access, share);
}

int ZoStdFileSearch::toDisk(const ZoFileName& name, ZoFileName& file) {
  return imp_->toDisk(name, file);
}

int ZoStdFileSearch::explain(const ZoFileName& name, ZoString& report) {
  zo::SearchReport told;
  zo::Located found;
  static_cast<void>(imp_->locate(name, found, &told));
  report = std::wstring_view(told.text());
  return ZoResult::ok;
}

// ---- The reactor ----

ZoFileSearchReactor::ZoFileSearchReactor() noexcept { ++reactorsAlive; }
ZoFileSearchReactor::~ZoFileSearchReactor() { --reactorsAlive; }
bool ZoFileSearchReactor::isAlive() noexcept { return reactorsAlive > 0; }

double ZoFileSearchReactor::priority() { return 1.0; }

void ZoFileSearchReactor::onNotice(ZoSysNotice notice, const ZoVariant& data) {
  if (notice != ZoSysNotice::moduleReleased) return;
  if (auto* const search = zo::serviceOrNull<ZoFileSearch>())
    search->poolRelease(zo::moduleOf(data));
}

int ZoFileSearchReactor::release(const wchar_t* module) {
  return zo::releaseWithLibrary(this, module);
}
