#include <zo/results.h>
#include <zo/variant/guid.h>

#include <cstring>
#include <cwchar>

#include "text/code_units.h"

namespace {

// Reads the group that stands between two delimiters; group 0 stands in front of the first dash.
bool readGroup(const wchar_t* text, int group, _GUID& guid) noexcept {
  unsigned short pair = 0;
  unsigned short bytes[6] = {};
  switch (group) {
    case 0:
      return std::swscanf(text, L"%08lX", &guid.Data1) == 1;
    case 1:
      return std::swscanf(text, L"%04hX", &guid.Data2) == 1;
    case 2:
      return std::swscanf(text, L"%04hx", &guid.Data3) == 1;
    case 3:
      if (std::swscanf(text, L"%04hX", &pair) != 1) return false;
      guid.Data4[0] = static_cast<unsigned char>(pair >> 8);
      guid.Data4[1] = static_cast<unsigned char>(pair);
      return true;
    default:
      if (std::swscanf(text, L"%02hX%02hX%02hX%02hX%02hX%02hX", &bytes[0], &bytes[1], &bytes[2],
                       &bytes[3], &bytes[4], &bytes[5]) != 6)
        return false;
      for (int i = 0; i < 6; ++i) guid.Data4[2 + i] = static_cast<unsigned char>(bytes[i]);
      return true;
  }
}

}  // namespace

void ZoGuid2String(const _GUID& guid, wchar_t* buffer, bool braces) noexcept {
  if (braces) *buffer++ = L'{';
  buffer = zo::writeHex(buffer, guid.Data1, 8);
  *buffer++ = L'-';
  buffer = zo::writeHex(buffer, guid.Data2, 4);
  *buffer++ = L'-';
  buffer = zo::writeHex(buffer, guid.Data3, 4, zo::kLowerHexDigits);
  for (int i = 0; i < 8; ++i) {
    if (i == 0 || i == 2) *buffer++ = L'-';
    buffer = zo::writeHex(buffer, guid.Data4[i], 2);
  }
  if (braces) *buffer++ = L'}';
  *buffer = 0;
}

ZoString& ZoGuid2String(const _GUID& guid, ZoString& out, bool braces) {
  wchar_t buffer[ZoGuidTextSize];
  ZoGuid2String(guid, buffer, braces);
  return out = static_cast<const wchar_t*>(buffer);
}

int ZoString2Guid(const ZoString& text, _GUID& guid) noexcept {
  _GUID read = {};
  const wchar_t* at = text.data();
  int group = -1;  // nothing is read in front of the brace
  for (const wchar_t delimiter : {L'{', L'-', L'-', L'-', L'-', L'}'}) {
    const wchar_t* const found = std::wcschr(at, delimiter);
    if (!found) return ZoResult::refused;
    if (group >= 0 && !readGroup(at, group, read)) return ZoResult::refused;
    at = found + 1;
    ++group;
  }
  guid = read;
  return ZoResult::ok;
}

void ZoSetNullGuid(_GUID& guid) noexcept { std::memset(&guid, 0, sizeof guid); }
