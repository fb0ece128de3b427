// Texts of the C interface: what callers give, and the strings that they get back.
#pragma once

#include <zo/text/string.h>
#include <zo_c.h>

#include <string>
#include <string_view>

#include "c_interface/handles.h"

namespace zo::c {

// The end of a call for what its caller did wrong.
struct Refusal {
  int code;
};

// A string of its own, that shares nothing. Throws a Refusal for an encoding that is none, and for
// what is too long.
[[nodiscard]] ZoString textOf(const ZocText& text);

// Keeps the characters in both forms; the UTF-8 one is made when it is asked for.
class String final : public Object {
 public:
  static constexpr Kind kKind = Kind::string;
  static constexpr bool kIsShared = false;

  String() : Object(kKind) {}
  // A copy: storage that is shared with a string of the library would be for one thread.
  void set(std::wstring_view text);
  [[nodiscard]] const std::wstring& utf16() const noexcept { return utf16_; }
  [[nodiscard]] const std::string& utf8();
  [[nodiscard]] bool mayClose() noexcept override;

 private:
  std::wstring utf16_;
  std::string utf8_;
  bool hasUtf8_ = true;
};

// Whether no other thread is using it at the moment.
[[nodiscard]] bool isFree(Object& object) noexcept;

}  // namespace zo::c
