#include "dialogs/editor_rows.h"

#include <algorithm>

#include "dialogs/dialog_texts.h"
#include "dialogs/edit_paths.h"
#include "variant/code_names.h"
#include "variant/type_texts.h"

zo::EditorRows::EditorRows(const ZoVariantEdits& edits, const ZoString& container,
                           const EditorDifferences* differences) {
  const ZoVariant* const chosen = edits.value().find(container.view());
  if (!chosen) return;
  if (!chosen->asDict() && !chosen->asSequence()) {
    rows_.push_back({container, dialogText(DialogText::wholeValue), chosen,
                     differences ? differences->other(container) : nullptr});
    return;
  }
  for (ZoVariantEdits::Element& element : edits.elements(container.view())) {
    if (differences && !differences->isShown(element.path)) continue;
    const ZoVariant* const other = differences ? differences->other(element.path) : nullptr;
    rows_.push_back({std::move(element.path), std::move(element.name), element.value, other});
  }
  if (!differences) return;
  for (const ZoVariantChange* const change : differences->missing(container))
    rows_.push_back({change->path, stepName(*chosen, lastStepOf(change->path.view())), nullptr,
                     &change->after});
}

const zo::EditorRows::Row* zo::EditorRows::at(int index) const noexcept {
  return index >= 0 && index < count() ? &rows_[static_cast<size_t>(index)] : nullptr;
}

int zo::EditorRows::indexOf(const ZoString& path) const noexcept {
  for (int i = 0; i < count(); ++i)
    if (at(i)->value && at(i)->path == path) return i;
  return -1;
}

int zo::EditorRows::startingWith(std::wstring_view begin, int from) const {
  const ZoString head(begin);
  for (int i = 0; i < count(); ++i) {
    const int index = (from + i) % count();
    const ZoString name(at(index)->name.view().substr(0, begin.size()));
    if (name.compareTo(head, ZoString::ignoreCase) == 0) return index;
  }
  return -1;
}

ZoString zo::EditorRows::text(int index, int column) const {
  const Row* const row = at(index);
  if (!row) return {};
  if (column == kName) return row->name;
  if (column == kOther) return row->other ? shownText(*row->other) : ZoString();
  if (!row->value) return {};
  if (column == kType) return ZoString(nameOfCode(row->value->code()));
  if (column == kFlags) return textOfFlags(row->value->flags());
  return shownText(*row->value);
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
