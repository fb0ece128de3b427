// The rows that the editor shows of one container, or of a value that is none, and their texts.
#pragma once

#include <zo/dialogs/variant_edits.h>

#include <optional>
#include <vector>

#include "dialogs/editor_differences.h"

namespace zo {

class EditorRows {
 public:
  enum Column : int { kName, kType, kValue, kFlags, kOther, kColumns };
  struct Row {
    ZoString path;
    ZoString name;           // the key, or "[3]"
    const ZoVariant* value;  // null for what only the other variant has
    const ZoVariant* other;  // null for what only the edited one has
  };

  // All elements, or those that differ. Valid until the next edit.
  EditorRows() = default;
  EditorRows(const ZoVariantEdits& edits, const ZoString& container,
             const EditorDifferences* differences);

  [[nodiscard]] int count() const noexcept { return static_cast<int>(rows_.size()); }
  // Null where there is none.
  [[nodiscard]] const Row* at(int index) const noexcept;
  // -1 when no row has it.
  [[nodiscard]] int indexOf(const ZoString& path) const noexcept;
  // The first one from `from` on, and then from the beginning, whose name begins so; -1 for none.
  [[nodiscard]] int startingWith(std::wstring_view begin, int from) const;
  [[nodiscard]] ZoString text(int index, int column) const;

 private:
  std::vector<Row> rows_;
};

// "Constant Value, Parameter"; letters for bits without a name.
[[nodiscard]] ZoString textOfFlags(unsigned int flags);
// The name of a code for users, also of those that have none of their own.
[[nodiscard]] const wchar_t* nameOfCode(ZoTypeCode code) noexcept;
// The text of a value, or how many elements it has.
[[nodiscard]] ZoString shownText(const ZoVariant& value);

}  // namespace zo
