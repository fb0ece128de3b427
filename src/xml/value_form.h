// The types of values as XML and JSON write them: "Length:AP", as in text forms.
#pragma once

#include <zo/variant/variant.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zo {

// Remembers those that it made: trees have few of them.
class TypeTexts {
 public:
  // With code, kind where the code does not say it, and flags. Valid until the next call.
  [[nodiscard]] std::wstring_view of(const ZoVariant& value);

 private:
  struct Row {
    unsigned int code = 0, word = 0;
    std::wstring text;
  };
  static constexpr std::size_t kRows = 64;
  Row rows_[kRows];
};

// The type that is not written, because the kind alone says it.
[[nodiscard]] bool isPlainType(const ZoVariant& value) noexcept;

}  // namespace zo
