// What a user of the editor does.
#include <zo/dialogs/message_box.h>
#include <zo/parse/reg_exp.h>
#include <zo/results.h>

#include <string>

#include "dialogs/edit_paths.h"
#include "dialogs/edit_texts.h"
#include "dialogs/editor.h"
#include "dialogs/editor_element.h"

namespace {

using enum zo::DialogText;

enum Modifier : unsigned int { kPlain = 0, kShift = 1, kControl = 2, kAlt = 4 };

struct Key {
  WPARAM key;
  unsigned int modifiers;
  zo::EditorControl command;
  bool isForTexts = false;  // also while a text is typed
};
constexpr Key kKeys[] = {
    {VK_F2, kPlain, zo::kEditorRename},
    {VK_INSERT, kPlain, zo::kEditorAdd},
    {VK_DELETE, kPlain, zo::kEditorRemove},
    {VK_RETURN, kAlt, zo::kEditorProperties},
    {VK_UP, kAlt, zo::kEditorUp},
    {VK_DOWN, kAlt, zo::kEditorDown},
    {VK_LEFT, kAlt, zo::kEditorNarrowTree},
    {VK_RIGHT, kAlt, zo::kEditorWidenTree},
    {VK_BACK, kPlain, zo::kEditorOuter},
    {'Z', kControl, zo::kEditorUndo},
    {'Y', kControl, zo::kEditorRedo},
    {'F', kControl, zo::kEditorFocusFind, true},
    {VK_F3, kPlain, zo::kEditorFindNext, true},
    {VK_F3, kShift, zo::kEditorFindPrevious, true},
};

unsigned int pressedModifiers() noexcept {
  const auto isDown = [](int key) { return GetKeyState(key) < 0; };
  return (isDown(VK_SHIFT) ? kShift : 0U) | (isDown(VK_CONTROL) ? kControl : 0U) |
         (isDown(VK_MENU) ? kAlt : 0U);
}

bool isContainer(const ZoVariant& value) noexcept { return value.asDict() || value.asSequence(); }

}  // namespace

// Enter and Escape do in field, list, tree and search what one expects there, and not what the
// dialog's buttons do.
bool zo::Editor::onKey(const MSG& message) {
  const unsigned int modifiers = pressedModifiers();
  const bool isInField = message.hwnd == field_.control();
  const bool isTyped = isInField || message.hwnd == item(kEditorFind);
  if (message.wParam == VK_ESCAPE && isInField) {
    field_.close();
    SetFocus(list_);
    sayPath();
    return true;
  }
  if (message.wParam == VK_RETURN && modifiers == kPlain) {
    if (isInField) return static_cast<void>(finish()), true;
    if (message.hwnd == list_) return perform(kEditorEdit), true;
    if (message.hwnd == tree_.control()) return tree_.toggle(), true;
    if (isTyped) return perform(kEditorFindNext), true;
    return false;
  }
  for (const Key& key : kKeys) {
    if (key.key != message.wParam || key.modifiers != modifiers) continue;
    if (isTyped && !key.isForTexts) return false;
    return perform(key.command), true;
  }
  return false;
}

void zo::Editor::onCommand(int id, int notice) {
  if (id == kEditorField) {
    if (notice == EN_KILLFOCUS) static_cast<void>(finish());
    return;
  }
  if (id == IDCANCEL) return cancel();
  if (id == IDOK && finish()) return take();
  if (id == kEditorOnlyDifferences) return compare(!differences_);
  if (id >= kEditorEdit) perform(id);
}

void zo::Editor::perform(int command) {
  if (!finish()) return SetFocus(field_.control()), void();
  switch (command) {
    case kEditorEdit:
      return edit();
    case kEditorRename:
      return rename();
    case kEditorAdd:
      return add();
    case kEditorRemove:
      return remove();
    case kEditorProperties:
      return showProperties();
    case kEditorUp:
      return move(-1);
    case kEditorDown:
      return move(1);
    case kEditorUndo:
      return travel(&ZoVariantEdits::undo);
    case kEditorRedo:
      return travel(&ZoVariantEdits::redo);
    case kEditorFocusFind:
      SetFocus(item(kEditorFind));
      SendMessageW(item(kEditorFind), EM_SETSEL, 0, -1);
      return;
    case kEditorFindNext:
      return find(1);
    case kEditorFindPrevious:
      return find(-1);
    case kEditorOuter:
      if (!chosen_.isEmpty()) show(ZoString(chosen_));
      return;
    case kEditorNarrowTree:
      return moveSplit(split_.edge() - 4 * split_.bar);
    case kEditorWidenTree:
      return moveSplit(split_.edge() + 4 * split_.bar);
    default:
      return;
  }
}

// The row that a command is meant for: the selected one, or where the tree has the focus that of
// the container chosen there, which is shown first. None where there is none, as for the whole
// value in the tree, or no path leads to it: in the value itself an empty key has the path of the
// whole.
std::optional<zo::EditorRows::Row> zo::Editor::target() {
  if (GetFocus() == tree_.control()) {
    if (chosen_.isEmpty()) return std::nullopt;
    reveal(ZoString(chosen_));
  }
  const std::optional<EditorRows::Row> row = rows_.at(selected());
  if (!row || !row->value) return std::nullopt;
  return row->value == edits_.value().find(row->path.view()) ? row : std::nullopt;
}

// ---- Values and names ----

void zo::Editor::edit() {
  const std::optional<EditorRows::Row> row = target();
  if (!row) return;
  if (isContainer(*row->value)) return open(ZoString(row->path));
  if (!edits_.isEditable(row->path.view())) return showProperties();
  openField(EditorField::kValue, row->path);
}

// What has no name is edited instead.
void zo::Editor::rename() {
  const std::optional<EditorRows::Row> row = target();
  if (!row || edits_.isReadOnly()) return;
  const ZoVariant* const container = edits_.value().find(chosen_.view());
  if (row->path.isEmpty() || !container || !container->asDict()) return edit();
  if (!edits_.isEditable(chosen_.view()) || row->value->isFlagged(ZoFlagConstant))
    return say(notEditable);
  openField(EditorField::kName, row->path);
}

void zo::Editor::openField(EditorField::What what, const ZoString& path) {
  const bool isName = what == EditorField::kName;
  const int index = rows_.indexOf(path);
  const std::optional<EditorRows::Row> row = rows_.at(index);
  if (!row || !row->value) return;
  ZoString text = row->name;
  if (!isName && printText(*row->value, text) == ZoResult::timeOut) return say(unitsInUse);
  SendMessageW(list_, LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
  if (field_.open(cellOf(index, what), path, what, text)) return;
  if (isName) return say(notEditableHere);
  showProperties();
}

bool zo::Editor::finish() {
  if (!field_.isOpen()) return true;
  const bool isName = field_.what() == EditorField::kName;
  const ZoString path = field_.path(), text = field_.text();
  int code = ZoResult::ok;
  if (field_.isChanged())
    code =
        isName ? edits_.rename(path.view(), text.view()) : edits_.setText(path.view(), text.view());
  if (code != ZoResult::ok) {
    say(reasonOf(field_, code));
    MessageBeep(MB_ICONWARNING);
    return false;
  }
  const bool hadFocus = GetFocus() == field_.control();
  field_.close();
  if (hadFocus) SetFocus(list_);
  if (isBehind())
    follow(isName ? kManyValues : kOneValue);
  else
    sayPath();
  return true;
}

ZoString zo::Editor::reasonOf(const EditorField& field, int code) const {
  if (code == ZoResult::timeOut) return ZoString(dialogText(unitsInUse));
  const ZoString text = field.text();
  const ZoVariant* const value = edits_.value().find(field.path().view());
  if (field.what() == EditorField::kName) {
    if (text.isEmpty()) return ZoString(dialogText(nameNeeded));
    const ZoVariant* const outer = edits_.value().find(outerOf(field.path().view()));
    const bool isTaken = outer && outer->at(text.view());
    return isTaken ? dialogText(nameTaken, {ZoVariant(text)}) : ZoString(dialogText(notEditable));
  }
  if (!value || !edits_.isEditable(field.path().view())) return ZoString(dialogText(notEditable));
  return dialogText(noSuchValue, {ZoVariant(text), ZoVariant(nameOfCode(value->code()))});
}

void zo::Editor::showProperties() {
  const bool isWhole = GetFocus() == tree_.control() && chosen_.isEmpty();
  const std::optional<EditorRows::Row> row = isWhole ? std::nullopt : target();
  if (!isWhole && !row) return;
  const ZoString path = row ? row->path : ZoString();
  ElementDialog::Request request;
  request.name = row ? row->name : ZoString(dialogText(wholeValue));
  request.value = *edits_.value().find(path.view());
  request.isReadOnly = !edits_.isEditable(path.view());
  ElementDialog dialog(std::move(request), [&](const ZoString&, ZoVariant value) {
    if (value == *edits_.value().find(path.view())) return ZoString();
    return outcome(edits_.setValue(path.view(), std::move(value)));
  });
  static_cast<void>(dialog.show(window()));
  if (isBehind()) follow(kManyValues);
}

// ---- Elements ----

void zo::Editor::add() {
  if (edits_.isReadOnly()) return;
  if (!edits_.isEditable(chosen_.view())) return say(notEditable);
  const ZoVariant* const container = edits_.value().find(chosen_.view());
  const std::optional<EditorRows::Row> row = rows_.at(selected());
  const bool isLike = row && row->value && !isContainer(*row->value) && !row->value->isEmpty() &&
                      !row->value->isTypeOf(ZoVariant::kPointer);
  ElementDialog::Request request;
  request.isNamed = !container->asSequence();
  request.isNew = true;
  request.value =
      isLike ? ZoVariant(row->value->type(), row->value->code()) : ZoVariant(ZoVariant::kString);
  ElementDialog dialog(std::move(request), [this](const ZoString& name, ZoVariant value) {
    return takeNew(name, std::move(value));
  });
  static_cast<void>(dialog.show(window()));
  if (isBehind()) follow(kManyValues);
}

ZoString zo::Editor::outcome(int code) {
  if (code != ZoResult::ok) return ZoString(dialogText(notPossible));
  rows_ = EditorRows();
  return {};
}

// Into a sequence behind the selected element.
ZoString zo::Editor::takeNew(const ZoString& name, ZoVariant value) {
  const ZoVariant& container = *edits_.value().find(chosen_.view());
  if (container.asSequence()) {
    const std::optional<EditorRows::Row> row = rows_.at(selected());
    const unsigned int position = row && row->value && !row->path.isEmpty()
                                      ? std::stoul(std::wstring(lastStepOf(row->path.view()))) + 1
                                      : container.entries();
    return outcome(edits_.insert(chosen_.view(), position, std::move(value)));
  }
  if (name.isEmpty()) return ZoString(dialogText(nameNeeded));
  if (container.at(name.view())) return dialogText(nameTaken, {ZoVariant(name)});
  return outcome(edits_.add(chosen_.view(), name.view(), std::move(value)));
}

void zo::Editor::remove() {
  const std::optional<EditorRows::Row> row = target();
  if (!row || row->path.isEmpty()) return;
  if (edits_.remove(row->path.view()) != ZoResult::ok) return say(notEditable);
  follow(kManyValues);
}

void zo::Editor::move(int by) {
  const std::optional<EditorRows::Row> row = target();
  const ZoVariant* const container = edits_.value().find(chosen_.view());
  if (!row || row->path.isEmpty() || !container || !container->asSequence()) return;
  const auto position = std::stoul(std::wstring(lastStepOf(row->path.view())));
  if (edits_.move(row->path.view(), static_cast<unsigned int>(position) +
                                        static_cast<unsigned int>(by)) == ZoResult::ok)
    follow(kManyValues);
}

void zo::Editor::travel(int (ZoVariantEdits::*way)()) {
  if ((edits_.*way)() == ZoResult::ok) follow(kManyValues);
}

// The place of the edit is shown, or the rows as far down as before. Where more than one value has
// changed the rows are of no use from the edit on: they go first, so that none is left when there
// is no memory for others.
void zo::Editor::follow(What what) {
  if (what == kManyValues) rows_ = EditorRows();
  const int index = selected();
  const ZoString place = edits_.place(), outer(outerOf(place.view()));
  const bool keepsRows = what == kOneValue && !differences_ && outer == chosen_;
  if (!keepsRows) rows_ = EditorRows();
  matches_.clear();
  if (differences_) differences_.emplace(edits_.value(), *other_);
  const auto isThere = [this] {
    const ZoVariant* const found = edits_.value().find(chosen_.view());
    return found && isContainer(*found);
  };
  while (!chosen_.isEmpty() && !isThere()) chosen_ = ZoString(outerOf(chosen_.view()));
  if (place != chosen_ && outer != chosen_) chosen_ = outer;
  if (what == kManyValues) tree_.renew(place == chosen_ ? place : outer);
  if (keepsRows)
    InvalidateRect(list_, nullptr, FALSE);
  else
    reload();
  const int row = place == chosen_ ? -1 : rows_.indexOf(place);
  select(row >= 0 ? row : std::max(index, 0));
  tree_.choose(chosen_);
  followed_ = edits_.undoCount();
}

// Also when what follows an edit was begun already. While the field is open nothing was.
void zo::Editor::showAnew() {
  if (isBehind()) return follow(kManyValues);
  if (field_.isOpen()) return;
  reload();
  select(std::max(selected(), 0));
}

// ---- Looking ----

void zo::Editor::find(int by) {
  const ZoString pattern = windowText(item(kEditorFind));
  if (pattern.isEmpty()) {
    matches_.clear();
    sayPath();
    return perform(kEditorFocusFind);
  }
  if (matches_.empty() || pattern != pattern_) {
    const ZoRegExp expression(pattern, ZoRegExp::kIgnoreCase);
    if (!expression.isValid()) return say(expression.errorText());
    matches_ = edits_.find(expression);
    pattern_ = pattern;
    match_ = by > 0 ? matches_.size() - 1 : 0;
  }
  if (matches_.empty()) return say(notFound);
  match_ = (match_ + matches_.size() + static_cast<size_t>(by)) % matches_.size();
  reveal(ZoString(matches_[match_]));
  say(dialogText(foundAt, {ZoVariant(static_cast<int>(match_ + 1)),
                           ZoVariant(static_cast<int>(matches_.size()))}));
}

void zo::Editor::compare(bool isOn) {
  if (!other_ || !finish()) return;
  CheckDlgButton(window(), kEditorOnlyDifferences, isOn ? BST_CHECKED : BST_UNCHECKED);
  rows_ = EditorRows();  // of the differences that were shown
  differences_.reset();
  if (isOn) differences_.emplace(edits_.value(), *other_);
  columns_.showOther(isOn);
  reload();
  select(0);
}

// Where the value cannot be taken the user goes on.
void zo::Editor::take() {
  const ZoString reason = take_ ? take_(edits_.value()) : ZoString();
  if (reason.isEmpty()) return end(IDOK);
  ZoMessageBox box(reason, ZoMessageBox::kOk, ZoMessageBox::kError);
  box.setTitle(windowText(window()));
  static_cast<void>(box.show(window()));
}

// What is typed counts, also what would be refused.
void zo::Editor::cancel() {
  if (edits_.isChanged() || (field_.isOpen() && field_.isChanged())) {
    ZoMessageBox box(ZoString(dialogText(discardChanges)), ZoMessageBox::kYesNo,
                     ZoMessageBox::kQuestion);
    box.setTitle(windowText(window()));
    static_cast<void>(box.setDefault(ZoMessageBox::kNo));
    if (box.show(window()) != ZoResult::ok || box.button() != ZoMessageBox::kYes) return;
  }
  field_.close();
  end(IDCANCEL);
}
