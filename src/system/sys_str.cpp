#include <zo/system/sys_str.h>

#include <cwchar>
#include <ostream>

wchar_t* ZoSysStr::copyOf(const wchar_t* text) {
  if (!text) return nullptr;
  const std::size_t size = std::wcslen(text) + 1;
  return std::wmemcpy(new wchar_t[size], text, size);
}

std::wostream& operator<<(std::wostream& out, const ZoSysStr& text) {
  return out << (text.text_ ? text.text_ : L"");
}
