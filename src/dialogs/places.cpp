#include "dialogs/places.h"

#include <windows.h>
#include <zo/system/cfg.h>

#include "platform/system_path.h"
#include "system/service_or_null.h"

ZoString zo::settingOf(const ZoString& key, const wchar_t* what) {
  return ZoString(L"dialogs@") + key + L"@" + what;
}

ZoFileName zo::keptFolder(const ZoString& key) {
  auto* const settings = serviceOrNull<ZoCfg>();
  if (key.isEmpty() || !settings) return {};
  const ZoFileName folder(settings->get(settingOf(key, L"folder"), ZoString()));
  return folderThatIs(folder).empty() ? ZoFileName() : folder;
}

// Refused, it is only not remembered.
void zo::keepFolder(const ZoString& key, const ZoFileName& folder) {
  auto* const settings = serviceOrNull<ZoCfg>();
  if (key.isEmpty() || !settings) return;
  static_cast<void>(settings->put(settingOf(key, L"folder"), ZoString(folder)));
}

std::wstring zo::folderThatIs(const ZoFileName& folder) {
  if (folder.isEmpty() || folder.isURL()) return {};
  const DWORD attributes = GetFileAttributesW(SystemPath(folder.fullName()));
  if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY)) return {};
  std::wstring full = platformText([&](DWORD size, wchar_t* buffer) {
    return GetFullPathNameW(folder.fullName(), size, buffer, nullptr);
  });
  if (full.size() > 3 && full.ends_with(L'\\')) full.pop_back();
  return full;
}
