#include <windows.h>
#include <zo/files/file.h>
#include <zo/search/std_file_open.h>
#include <zo/system/file_search.h>
#include <zo/system/file_system.h>

#include <map>
#include <string>
#include <utility>

#include "files/keep_reason.h"
#include "search/file_look.h"
#include "search/media.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

bool askByBox(const ZoString& label, unsigned int) {
  const std::wstring text =
      L"Please insert the disc \"" + std::wstring(label.view()) + L"\" into a drive.";
  return MessageBoxW(GetActiveWindow(), text.c_str(), L"Disc", MB_OKCANCEL | MB_ICONINFORMATION) ==
         IDOK;
}

// What tells one disc in a drive from the next one.
struct Insertion {
  unsigned int serial = 0;
  zo::FileLook manifest;
  [[nodiscard]] bool operator==(const Insertion&) const = default;
};

Insertion insertionAt(const ZoFileName& root) {
  Insertion now;
  unsigned int longest = 0, flags = 0;
  ZoString label, system;
  auto* const files = zo::serviceOrNull<ZoFileSystem>();
  if (!files || files->getVolumeInformation(now.serial, longest, flags, root, label, system))
    now.serial = 0;
  if (!zo::lookAt(zo::Media(root, {}, {}).manifestName(), now.manifest)) now.manifest = {};
  return now;
}

}  // namespace

struct ZoStdFileOpen::Imp {
  std::string key;
  ZoMediaPrompt prompt;
  std::map<std::wstring, Insertion> checked;  // by root: what was right
};

ZoStdFileOpen::ZoStdFileOpen() : imp_(std::make_unique<Imp>()) {}
ZoStdFileOpen::~ZoStdFileOpen() = default;
int ZoStdFileOpen::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }
int ZoStdFileOpen::openDocument(const ZoFileName&) { return ZoResult::refused; }

int ZoStdFileOpen::setMediaKey(const void* key, std::size_t size) {
  const zo::Writing writing(*this);
  if (!writing || (!key && size > 0)) return ZoResult::refused;
  imp_->key = size > 0 ? std::string(static_cast<const char*>(key), size) : std::string();
  imp_->checked.clear();
  return ZoResult::ok;
}

int ZoStdFileOpen::setMediaPrompt(ZoMediaPrompt prompt) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  imp_->prompt.swap(prompt);
  return ZoResult::ok;
}

// A disc by its label, which the user may be asked for, becomes the place where it is.
int ZoStdFileOpen::place(ZoFileName& root) {
  if (!root.isCD()) return ZoResult::ok;
  ZoString volume, rest;
  ZoFileName disc;
  static_cast<void>(root.parseCD(volume, rest));                                  // as it is one
  if (const int code = requestMedia(ZoString(volume.mid(5)), disc)) return code;  // behind "cd://"
  return zo::serviceOrNull<ZoFileSystem>()->getAbsolutePath(root);
}

int ZoStdFileOpen::checkMedia(const ZoFileName& root, ZoMediaReport* report,
                              const ZoMediaWatcher& watcher) {
  std::string key;
  {
    const zo::Reading reading(*this);
    if (!reading) return ZoResult::refused;
    key = imp_->key;
  }
  ZoFileName real(root);
  if (const int code = place(real)) return code;
  return zo::Media(real, key, watcher).check(report);
}

int ZoStdFileOpen::writeManifest(const ZoFileName& root, const ZoString& label,
                                 const ZoMediaWatcher& watcher) {
  std::string key;
  {
    const zo::Reading reading(*this);
    if (!reading) return ZoResult::refused;
    key = imp_->key;
  }
  ZoFileName real(root);
  if (const int code = place(real)) return code;
  return zo::Media(real, key, watcher).write(label);
}

int ZoStdFileOpen::requestMedia(const ZoString& label, ZoFileName& root) {
  ZoMediaPrompt prompt;
  auto* const files = zo::serviceOrNull<ZoFileSystem>();
  const std::wstring_view text = label.view();
  {
    const zo::Reading reading(*this);
    if (!zo::canBeLabel(text)) return zo::keepReason(L"requestMedia", ERROR_INVALID_NAME);
    if (!reading || !files) return ZoResult::refused;
    prompt = imp_->prompt ? imp_->prompt : askByBox;
  }
  for (unsigned int attempt = 0;; ++attempt) {
    ZoFileName disc{std::wstring_view(L"cd://" + std::wstring(text) + L"/")};
    if (files->getAbsolutePath(disc) == ZoResult::ok) {
      root = std::move(disc);
      return ZoResult::ok;
    }
    if (!prompt(label, attempt))
      return zo::keepReason(L"requestMedia", ERROR_CANCELLED, ZoResult::cancelled);
  }
}

// 0 also for a disc without a manifest.
int ZoStdFileOpen::checkOnce(const ZoFileName& root) {
  const Insertion before = insertionAt(root);
  const std::wstring key(root.view());
  {
    const zo::Reading reading(*this);
    if (!reading) return ZoResult::refused;
    const auto found = imp_->checked.find(key);
    if (found != imp_->checked.end() && found->second == before) return ZoResult::ok;
  }
  const int code = checkMedia(root, nullptr, {});
  if (code == ZoResult::noManifest) return ZoResult::ok;
  if (code) return code;
  // Another disc may have come meanwhile.
  if (insertionAt(root) != before)
    return zo::keepReason(L"open", ERROR_MEDIA_CHANGED, ZoResult::mediaDiffers);
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  imp_->checked[key] = before;
  return ZoResult::ok;
}

int ZoStdFileOpen::openFile(const ZoFileName& name, ZoFile& file, int access, int share) {
  if (!name.isCD()) return ZoFileOpen::openFile(name, file, access, share);
  ZoString volume, rest;
  ZoFileName root;
  static_cast<void>(name.parseCD(volume, rest));                                  // as it is one
  if (const int code = requestMedia(ZoString(volume.mid(5)), root)) return code;  // behind "cd://"
  if (const int code = checkOnce(root)) return code;
  const Insertion checked = insertionAt(root);
  ZoFileName real(name);
  ZoFile opened;
  if (zo::serviceOrNull<ZoFileSystem>()->getAbsolutePath(real)) return ZoResult::refused;
  if (const int code = ZoFileOpen::openFile(real, opened, access, share)) return code;
  if (insertionAt(root) != checked)
    return zo::keepReason(L"open", ERROR_MEDIA_CHANGED, ZoResult::mediaDiffers);
  file.swap(opened);
  return ZoResult::ok;
}
