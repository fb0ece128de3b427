#include <cstring>
#include <cwchar>

#include "c_interface/call.h"

namespace zo::c {

namespace {

std::size_t lengthOf(const ZocText& text) noexcept {
  if (text.length != ZOC_TERMINATED) return text.length;
  return text.encoding == ZOC_UTF8 ? std::strlen(static_cast<const char*>(text.units))
                                   : std::wcslen(static_cast<const wchar_t*>(text.units));
}

}  // namespace

ZoString textOf(const ZocText& text) {
  if (!text.units) return {};
  require(text.encoding == ZOC_UTF8 || text.encoding == ZOC_UTF16);
  const std::size_t length = lengthOf(text);
  require(length <= ZoString::maxLength());
  if (text.encoding == ZOC_UTF8)
    return ZoString::fromUtf8(std::string_view(static_cast<const char*>(text.units), length));
  return ZoString(std::wstring_view(static_cast<const wchar_t*>(text.units), length));
}

bool isFree(Object& object) noexcept {
  if (!object.enter()) return false;
  object.leave();
  return true;
}

void String::set(std::wstring_view text) {
  std::wstring copy(text);
  utf16_.swap(copy);
  utf8_.clear();
  hasUtf8_ = utf16_.empty();
}

const std::string& String::utf8() {
  if (!hasUtf8_) utf8_ = ZoString(utf16_).toUtf8();
  hasUtf8_ = true;
  return utf8_;
}

bool String::mayClose() noexcept { return isFree(*this); }

}  // namespace zo::c

using namespace zo::c;

int zocStringNew(ZocString* out) noexcept {
  return make<String>(out, [](String&) { return 0; });
}

const char* zocStringUtf8(ZocString text) noexcept {
  const char* characters = nullptr;
  (void)guarded([&] {
    characters = Use<String>(text)->utf8().c_str();
    return 0;
  });
  return characters;
}

const wchar_t* zocStringUtf16(ZocString text) noexcept {
  const wchar_t* characters = nullptr;
  (void)guarded([&] {
    characters = Use<String>(text)->utf16().c_str();
    return 0;
  });
  return characters;
}

int zocStringLength(ZocString text, size_t* utf8, size_t* utf16) noexcept {
  return call([&] {
    const Use<String> string(text);
    if (utf8) *utf8 = string->utf8().size();
    if (utf16) *utf16 = string->utf16().size();
    return 0;
  });
}
