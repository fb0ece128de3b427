// What dialogs keep in the configuration, below "dialogs@KEY@": an empty key keeps nothing. Each is
// one call of the service, which holds no guard when it comes back.
#pragma once

#include <zo/names/file_name.h>
#include <zo/platform_types.h>
#include <zo/text/string.h>

#include <span>
#include <string>
#include <vector>

namespace zo {

[[nodiscard]] ZoString settingOf(const ZoString& key, const wchar_t* what);

// An empty name where none is kept, or the folder is gone.
[[nodiscard]] ZoFileName keptFolder(const ZoString& key);
void keepFolder(const ZoString& key, const ZoFileName& folder);

// A window's place and size. What is kept is taken only where a screen shows it.
void keepPlace(const ZoString& key, HWND__* window);
void restorePlace(const ZoString& key, HWND__* window);

// Numbers from 0 to 32,767; those in front of the first that is no such number.
void keepNumbers(const ZoString& key, const wchar_t* what, std::span<const int> numbers);
[[nodiscard]] std::vector<int> keptNumbers(const ZoString& key, const wchar_t* what);

// The full path of a folder that is there, without a delimiter at its end but for a root; else
// empty.
[[nodiscard]] std::wstring folderThatIs(const ZoFileName& folder);

}  // namespace zo
