#include "xml/value_form.h"

#include "variant/kinds.h"

namespace zo {

std::wstring_view TypeTexts::of(const ZoVariant& value) {
  constexpr unsigned int kReference = 0x20;
  const auto code = static_cast<unsigned int>(value.code());
  const unsigned int word = value.typeWord() & ~kReference;
  Row& row = rows_[(code ^ word * 37) % kRows];
  if (row.code != code || row.word != word || row.text.empty()) {
    row.text = value.printType().view();
    row.text += value.printFlags().view();
    row.code = code;
    row.word = word;
  }
  return row.text;
}

bool isPlainType(const ZoVariant& value) noexcept {
  return value.flags() == 0 && value.code() == kKinds[value.type()].code;
}

}  // namespace zo
