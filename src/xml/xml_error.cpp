#include <zo/xml/xml_error.h>

#include <string>

ZoString ZoXMLError::message() const {
  if (code == ZoResult::ok) return {};
  if (line == 0) return reason;
  const std::wstring place =
      L"line " + std::to_wstring(line) + L", column " + std::to_wstring(column) + L": ";
  return ZoString(place).append(reason);
}
