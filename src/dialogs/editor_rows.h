// The rows that the editor shows of one container, or of a value that is none, and their texts.
#pragma once

#include <zo/dialogs/variant_edits.h>

#include <optional>
#include <span>
#include <vector>

#include "dialogs/edit_elements.h"
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

  // All elements, or those that differ; in front of these the whole value, where it differs itself.
  // Valid until the next edit of more than one value in its place, and as long as the differences
  // are there. Texts are made for what is asked for: of 100,000 elements only those on the screen
  // have any.
  EditorRows() = default;
  EditorRows(const ZoVariantEdits& edits, const ZoString& container,
             const EditorDifferences* differences);

  [[nodiscard]] int count() const noexcept;
  // None behind the last one.
  [[nodiscard]] std::optional<Row> at(int index) const;
  // -1 when no row has it.
  [[nodiscard]] int indexOf(const ZoString& path) const;
  // The first one from `from` on, and then from the beginning, whose name begins so; -1 for none.
  [[nodiscard]] int startingWith(std::wstring_view begin, int from) const;
  [[nodiscard]] ZoString text(int index, int column) const;

 private:
  // Null behind the elements that are there.
  [[nodiscard]] const SeenElement* seen(int index) const noexcept;
  [[nodiscard]] const ZoVariantChange* missing(int index) const noexcept;
  [[nodiscard]] ZoString nameOf(int index) const;  // there is such a row
  [[nodiscard]] bool isWhole() const noexcept;     // no container, and its own only row

  const ZoVariant* root_ = nullptr;
  const ZoVariant* chosen_ = nullptr;
  ZoString container_;
  const EditorDifferences* differences_ = nullptr;
  std::vector<SeenElement> elements_;  // and the chosen one itself, where it has a row
  std::span<const ZoVariantChange* const> missing_;
};

// "Constant Value, Parameter"; letters for bits without a name.
[[nodiscard]] ZoString textOfFlags(unsigned int flags);
// The name of a code for users, also of those that have none of their own.
[[nodiscard]] const wchar_t* nameOfCode(ZoTypeCode code) noexcept;
// The text of a value, or how many elements it has.
[[nodiscard]] ZoString shownText(const ZoVariant& value);

}  // namespace zo
