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
    text_ += text;
    return *this;
  }
  TextBuffer& operator<<(wchar_t c) {
    text_ += c;
    return *this;
  }
  TextBuffer& append(wchar_t c, size_t count) {
    text_.append(count, c);
    return *this;
  }

  [[nodiscard]] size_t size() const noexcept { return text_.size(); }
  [[nodiscard]] std::wstring& text() noexcept { return text_; }
  [[nodiscard]] ZoString toString() const { return ZoString(std::wstring_view(text_)); }

 private:
  std::wstring text_;
};

}  // namespace zo
