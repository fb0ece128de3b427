#include "dialogs/editor_rows.h"

#include <algorithm>

#include "dialogs/dialog_texts.h"
#include "variant/code_names.h"
#include "variant/type_texts.h"

zo::EditorRows::EditorRows(const ZoVariantEdits& edits, const ZoString& container,
                           const EditorDifferences* differences)
    : root_(&edits.value()),
      chosen_(root_->find(container.view())),
      container_(container),
      differences_(differences) {
  if (!chosen_) return;
  if (!isWhole()) {
    elements_ = seenElements(*chosen_, [&](const SeenElement& element) {
      return !differences || differences->isShown(element.path(container));
    });
    if (differences) missing_ = differences->missing(container);
  }
  if (isWhole() || (container.isEmpty() && differences && differences->isWholeChanged()))
    elements_.insert(elements_.begin(), {{}, chosen_, 0, false});
}

bool zo::EditorRows::isWhole() const noexcept {
  return chosen_ && !chosen_->asDict() && !chosen_->asSequence();
}

int zo::EditorRows::count() const noexcept {
  return static_cast<int>(elements_.size() + missing_.size());
}

const zo::SeenElement* zo::EditorRows::seen(int index) const noexcept {
  const auto i = static_cast<size_t>(index);
  return index >= 0 && i < elements_.size() ? &elements_[i] : nullptr;
}

const ZoVariantChange* zo::EditorRows::missing(int index) const noexcept {
  const size_t i = static_cast<size_t>(index) - elements_.size();
  return index >= 0 && i < missing_.size() ? missing_[i] : nullptr;
}

std::optional<zo::EditorRows::Row> zo::EditorRows::at(int index) const {
  if (const SeenElement* const element = seen(index)) {
    ZoString path = element->value == chosen_ ? container_ : element->path(container_);
    const ZoVariant* const other = differences_ ? differences_->other(path) : nullptr;
    return Row{std::move(path), nameOf(index), element->value, other};
  }
  const ZoVariantChange* const change = missing(index);
  if (!change) return std::nullopt;
  return Row{change->path, nameOf(index), nullptr, &change->after};
}

ZoString zo::EditorRows::nameOf(int index) const {
  if (const SeenElement* const element = seen(index))
    return element->value == chosen_ ? ZoString(dialogText(DialogText::wholeValue))
                                     : element->name();
  return stepName(*chosen_, lastStepOf(missing(index)->path.view()));
}

int zo::EditorRows::indexOf(const ZoString& path) const {
  const ZoVariant* const wanted = root_ ? root_->find(path.view()) : nullptr;
  const auto found = std::ranges::find(elements_, wanted, &SeenElement::value);
  return found == elements_.end() ? -1 : static_cast<int>(found - elements_.begin());
}

int zo::EditorRows::startingWith(std::wstring_view begin, int from) const {
  const ZoString head(begin);
  for (int i = 0; i < count(); ++i) {
    const int index = (from + i) % count();
    const ZoString name(nameOf(index).view().substr(0, begin.size()));
    if (name.compareTo(head, ZoString::ignoreCase) == 0) return index;
  }
  return -1;
}

ZoString zo::EditorRows::text(int index, int column) const {
  if (index < 0 || index >= count()) return {};
  if (column == kName) return nameOf(index);
  if (column == kOther) {
    const std::optional<Row> row = at(index);
    return row && row->other ? shownText(*row->other) : ZoString();
  }
  const SeenElement* const element = seen(index);
  if (!element) return {};
  if (column == kType) return ZoString(nameOfCode(element->value->code()));
  if (column == kFlags) return textOfFlags(element->value->flags());
  return shownText(*element->value);
}

ZoString zo::textOfFlags(unsigned int flags) {
  ZoString text;
  const auto add = [&text](const wchar_t* name) {
    if (!text.isEmpty()) text += L", ";
    text += name;
  };
  for (const FlagText& flag : flagTexts()) {
    if (flag.number >= kFirstWithoutFlag || !(flags & flag.number)) continue;
    add(ZoType::flagToMessage(flag.number));
    flags &= ~flag.number;
  }
  ZoString letters;
  if (flags) add(ZoType::flagsToString(flags, letters));
  return text;
}

const wchar_t* zo::nameOfCode(ZoTypeCode code) noexcept {
  const CodeNames* const names = findCode(code);
  return names && !names->userName ? names->name : ZoType::codeToLocString(code);
}

ZoString zo::shownText(const ZoVariant& value) {
  if (!value.asDict() && !value.asSequence()) return ZoVariantEdits::textOf(value);
  return dialogText(DialogText::elementCount, {ZoVariant(value.entries())});
}
