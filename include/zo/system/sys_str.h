// A text that crosses module borders without ZoString: one owned pointer to a zero-terminated copy,
// or null. Null and the empty text are two different values.
//
// Errors:  nothing throws but std::bad_alloc; an assignment that throws leaves its target null,
//          because the old text is freed before the new one is copied.
// Threads: one at a time per object.
// Cost:    a copy copies the text.
#pragma once

#include <zo/config.h>

#include <iosfwd>
#include <utility>

class ZO_COM_API ZoSysStr {
 public:
  ZoSysStr() = default;
  ZoSysStr(const wchar_t* text) : text_(copyOf(text)) {}
  ZoSysStr(const ZoSysStr& other) : text_(copyOf(other.text_)) {}
  ZoSysStr(ZoSysStr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  ~ZoSysStr() { delete[] text_; }

  ZoSysStr& operator=(const ZoSysStr& other) {
    if (this == &other) return *this;
    delete[] std::exchange(text_, nullptr);
    text_ = copyOf(other.text_);
    return *this;
  }
  ZoSysStr& operator=(ZoSysStr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }

  // Valid until the text is assigned to or destroyed.
  operator const wchar_t*() const noexcept { return text_; }

  // Null prints nothing.
  friend ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoSysStr& text);

 private:
  static wchar_t* copyOf(const wchar_t* text);

  wchar_t* text_ = nullptr;
};

static_assert(sizeof(ZoSysStr) == sizeof(wchar_t*));
