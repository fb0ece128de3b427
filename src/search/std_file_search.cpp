#include <windows.h>
#include <zo/search/std_file_search.h>
#include <zo/system/sys_disp.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "platform/file_api.h"
#include "platform/system_path.h"
#include "system/notice_data.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

std::atomic<int> reactorsAlive = 0;

// 0 for what is not there.
DWORD attributesOf(const ZoFileName& name) {
  const DWORD attributes = zo::fileApi().attributes(zo::SystemPath(name.fullName()));
  return attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
}

bool isFolder(const ZoFileName& name) { return attributesOf(name) & FILE_ATTRIBUTE_DIRECTORY; }
bool isFile(const ZoFileName& name) { return attributesOf(name) != 0 && !isFolder(name); }

// The name as seen from the current directory of its drive.
ZoFileName absolute(const ZoFileName& name) {
  return ZoFileName(std::wstring_view(zo::platformText([&](DWORD size, wchar_t* buffer) {
    return zo::fileApi().fullPath(name.fullName(), size, buffer);
  })));
}

}  // namespace

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
  if (!writing) return;
  for (unsigned int i = paths_.entries(); i-- > 0;)
    if (paths_[i].module.equals(module, ZoString::ignoreCase)) paths_.removeAt(i);
}

int ZoStdFileSearch::addPath(const ZoFileName& folder, const wchar_t* module) {
  const zo::Writing writing(*this);
  if (!writing || !isFolder(folder)) return ZoResult::refused;
  ZoFileName full;
  if (full.setFullName(absolute(folder).fullName(), false, true) != ZoResult::ok)
    return ZoResult::refused;
  for (const Path& path : paths_)
    if (path.folder == full) return ZoResult::refused;
  return paths_.append(Path{.folder = full.deepCopy(), .module = ZoString(module).copy()});
}

int ZoStdFileSearch::find(const ZoFileName& name, ZoFileName& found) {
  const zo::Reading reading(*this);
  if (!reading || name.isEmpty()) return ZoResult::refused;
  if (isFile(name)) {
    found = absolute(name);
    return ZoResult::ok;
  }
  if (!name.isRelativ()) return ZoResult::refused;
  for (const Path& path : paths_) {
    ZoFileName candidate = name.resolvedAgainst(path.folder);
    if (!isFile(candidate)) continue;
    found = std::move(candidate);
    return ZoResult::ok;
  }
  return ZoResult::refused;
}

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
