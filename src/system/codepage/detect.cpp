#include "system/codepage/detect.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zo {
namespace {

unsigned int byteAt(std::string_view bytes, std::size_t i) noexcept {
  return static_cast<unsigned char>(bytes[i]);
}

// Whether all of it is well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF). The
// last character of one that goes on may be cut.
bool isUtf8(std::string_view bytes, bool goesOn) noexcept {
  for (std::size_t i = 0; i < bytes.size();) {
    const unsigned int lead = byteAt(bytes, i++);
    if (lead < 0x80) continue;
    if (lead < 0xC2 || lead > 0xF4) return false;
    const int following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    for (int k = 0; k < following; ++k, ++i) {
      if (i == bytes.size()) return goesOn;
      const unsigned int byte = byteAt(bytes, i);
      if ((byte & 0xC0) != 0x80) return false;
      if (k > 0) continue;
      if ((lead == 0xE0 && byte < 0xA0) || (lead == 0xED && byte > 0x9F) ||
          (lead == 0xF0 && byte < 0x90) || (lead == 0xF4 && byte > 0x8F))
        return false;
    }
  }
  return true;
}

}  // namespace

ByteForm markedForm(std::string_view bytes, unsigned int& markLength) noexcept {
  constexpr std::pair<std::string_view, ByteForm> kMarks[] = {
      {"\xEF\xBB\xBF", ByteForm::Utf8},
      {"\xFF\xFE", ByteForm::Utf16},
      {"\xFE\xFF", ByteForm::Utf16BigEndian},
  };
  for (const auto& [mark, form] : kMarks) {
    if (!bytes.starts_with(mark)) continue;
    markLength = static_cast<unsigned int>(mark.size());
    return form;
  }
  markLength = 0;
  return ByteForm::Other;
}

// Text in UTF-16 is told by its zero bytes: much of almost any text is Latin letters, blanks,
// digits or line ends, whose high bytes are 0, while no 8-bit text holds zeros.
ByteForm formOf(std::string_view bytes) noexcept {
  std::size_t zeros[2] = {};
  bool isAscii = true;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == 0) ++zeros[i % 2];
    isAscii &= byteAt(bytes, i) < 0x80;
  }
  const std::size_t pairs = bytes.size() / 2;
  if (zeros[0] + zeros[1] != 0) {
    if (zeros[0] == 0 && zeros[1] * 4 >= pairs) return ByteForm::Utf16;
    if (zeros[1] == 0 && zeros[0] * 4 >= pairs) return ByteForm::Utf16BigEndian;
    return ByteForm::Other;
  }
  if (isAscii) return ByteForm::Ascii;
  return isUtf8(bytes, true) ? ByteForm::Utf8 : ByteForm::Other;
}

ByteForm formOfWhole(std::string_view bytes) noexcept {
  const ByteForm form = bytes.size() % 2 == 0 ? formOf(bytes) : ByteForm::Other;
  if (form != ByteForm::Other && form != ByteForm::Utf8) return form;
  if (std::ranges::all_of(bytes, [](unsigned char byte) { return byte < 0x80; })) {
    return ByteForm::Ascii;
  }
  return isUtf8(bytes, false) ? ByteForm::Utf8 : ByteForm::Other;
}

}  // namespace zo
