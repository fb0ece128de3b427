// Where the library collects a long text before it makes the string, once: appending to a ZoString
// piece by piece is quadratic by its capacity rule.
#pragma once

#include <zo/text/string.h>

#include <string>
#include <string_view>

namespace zo {

class TextBuffer {
 public:
  TextBuffer& operator<<(std::wstring_view text) {
    m_text += text;
    return *this;
  }
  TextBuffer& operator<<(wchar_t c) {
    m_text += c;
    return *this;
  }
  TextBuffer& append(wchar_t c, size_t count) {
    m_text.append(count, c);
    return *this;
  }

  [[nodiscard]] size_t size() const noexcept { return m_text.size(); }
  [[nodiscard]] std::wstring& text() noexcept { return m_text; }
  [[nodiscard]] ZoString toString() const { return ZoString(std::wstring_view(m_text)); }

 private:
  std::wstring m_text;
};

}  // namespace zo
