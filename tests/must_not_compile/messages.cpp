// clang-format off
#include <zo/messages.h>
#include <zo/names/file_name.h>
#include <zo/text/containers/array.h>
#include <zo/variant/variant.h>

void service(ZoMessage& messages, ZoString& text, const ZoArray<ZoVariant>& arguments) {
  static_cast<void>(messages.load(L"parts"));                              // error: no matching function
  static_cast<void>(messages.format(L"parts", 1, L"bolt", text));          // error: cannot convert
  static_cast<void>(messages.format(L"parts", 1, arguments, L"default"));  // error: cannot bind
  static_cast<void>(messages.format(L"parts", true, {L"bolt"}, text));     // error: takes the number
  static_cast<void>(messages.getText(L"parts", true, text));               // error: takes the number
}

void copies(ZoStdMessage& messages) {
  ZoStdMessage copy(messages);                                             // error: deleted
}

void maps(ZoMessageMap& map, const ZoMessageMap& other) {
  static_cast<void>(other.find(true));                                     // error: write a number
  static_cast<void>(zoMessageMarks(std::wstring(L"%1")));                  // error: text with a name
  map.parse("@messages 1");                                                // error: nodiscard
  static_cast<void>(map.parse(L"@messages 1"));                            // error: cannot convert
  *const_cast<wchar_t*>(other.find(1)) = L'x', *other.find(1) = L'x';      // error: read-only
}
