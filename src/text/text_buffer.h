// Where the library collects a long text before it makes the string, once: appending to a ZoString
// piece by piece is quadratic by its capacity rule.
#pragma once

#include <zo/text/string.h>

#include <algorithm>
#include <string_view>

#include "platform/growing_memory.h"

namespace zo {

class TextBuffer {
 public:
  // Room for n more characters; what was written there becomes part of the text by advance().
  [[nodiscard]] wchar_t* room(size_t n) {
    if (n > capacity_ - size_) grow(n);
    return text_ + size_;
  }
  void advance(size_t n) noexcept { size_ += n; }

  TextBuffer& operator<<(std::wstring_view text) {
    text.copy(room(text.size()), text.size());
    advance(text.size());
    return *this;
  }
  TextBuffer& operator<<(wchar_t c) {
    *room(1) = c;
    advance(1);
    return *this;
  }
  TextBuffer& append(wchar_t c, size_t count) {
    std::fill_n(room(count), count, c);
    advance(count);
    return *this;
  }

  [[nodiscard]] std::wstring_view view() const noexcept { return {text_, size_}; }
  [[nodiscard]] ZoString toString() const { return ZoString(view()); }

 private:
  void grow(size_t n) {
    memory_.grow(size_ * sizeof(wchar_t), (size_ + n) * sizeof(wchar_t));
    text_ = reinterpret_cast<wchar_t*>(memory_.data());
    capacity_ = memory_.capacity() / sizeof(wchar_t);
  }

  GrowingMemory memory_;
  wchar_t* text_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace zo
