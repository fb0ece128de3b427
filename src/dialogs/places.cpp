#include "dialogs/places.h"

#include <windows.h>
#include <zo/system/cfg.h>

#include <sstream>

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

// "left top width height", and "max" behind them where it fills the screen.
void zo::keepPlace(const ZoString& key, HWND__* window) {
  auto* const settings = serviceOrNull<ZoCfg>();
  WINDOWPLACEMENT place = {};
  place.length = sizeof place;
  if (key.isEmpty() || !settings || !GetWindowPlacement(window, &place)) return;
  const RECT& box = place.rcNormalPosition;
  std::wostringstream text;
  text << box.left << L' ' << box.top << L' ' << box.right - box.left << L' '
       << box.bottom - box.top << (IsZoomed(window) ? L" max" : L"");
  static_cast<void>(settings->put(settingOf(key, L"place"), ZoString(text.str())));
}

void zo::restorePlace(const ZoString& key, HWND__* window) {
  auto* const settings = serviceOrNull<ZoCfg>();
  if (key.isEmpty() || !settings) return;
  std::wistringstream text(settings->get(settingOf(key, L"place"), ZoString()).data());
  short left = 0, top = 0, width = 0, height = 0;  // too large numbers are none
  std::wstring state;
  if (!(text >> left >> top >> width >> height) || width <= 0 || height <= 0) return;
  const RECT box{left, top, left + width, top + height};
  if (!MonitorFromRect(&box, MONITOR_DEFAULTTONULL)) return;
  SetWindowPos(window, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
  if (text >> state && state == L"max") PostMessageW(window, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
}

void zo::keepNumbers(const ZoString& key, const wchar_t* what, std::span<const int> numbers) {
  auto* const settings = serviceOrNull<ZoCfg>();
  if (key.isEmpty() || !settings) return;
  std::wstring text;
  for (const int number : numbers) text += (text.empty() ? L"" : L" ") + std::to_wstring(number);
  static_cast<void>(settings->put(settingOf(key, what), ZoString(text)));
}

std::vector<int> zo::keptNumbers(const ZoString& key, const wchar_t* what) {
  auto* const settings = serviceOrNull<ZoCfg>();
  if (key.isEmpty() || !settings) return {};
  std::wistringstream text(settings->get(settingOf(key, what), ZoString()).data());
  std::vector<int> numbers;
  for (short number = 0; text >> number && number >= 0;) numbers.push_back(number);
  return numbers;
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
