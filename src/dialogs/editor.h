// The window in which a user edits a variant: tree and list over ZoVariantEdits, a field over the
// list's cells, commands by button, menu and key.
#pragma once

#include <windows.h>

#include <zo/dialogs/variant_edits.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "dialogs/dialog_texts.h"
#include "dialogs/editor_columns.h"
#include "dialogs/editor_differences.h"
#include "dialogs/editor_field.h"
#include "dialogs/editor_rows.h"
#include "dialogs/editor_split.h"
#include "dialogs/editor_tree.h"
#include "platform/modal_dialog.h"

namespace zo {

// Its controls and commands; the numbers hold for users of the window in tests and scripts.
enum EditorControl : int {
  kEditorTree = 100,
  kEditorList,
  kEditorField,
  kEditorFindLabel,
  kEditorFind,
  kEditorOnlyDifferences,
  kEditorStatus,

  kEditorEdit = 200,  // or opens a container
  kEditorRename,
  kEditorAdd,
  kEditorRemove,
  kEditorProperties,
  kEditorUp,
  kEditorDown,
  kEditorUndo,
  kEditorRedo,
  kEditorFocusFind,
  kEditorFindNext,
  kEditorFindPrevious,
  kEditorOuter,  // shows the container around
  kEditorNarrowTree,
  kEditorWidenTree,
};

class Editor final : public ModalDialog {
 public:
  struct Request {
    ZoVariant value;
    const ZoVariant* other = nullptr;  // to compare with
    bool isReadOnly = false;
    ZoString title;
    ZoString key;                                    // of the settings in which it keeps its place
    std::function<ZoString(const ZoVariant&)> take;  // or empty: ZoVariantDialog::takeBy
  };
  explicit Editor(Request request);

  [[nodiscard]] int show(HWND owner);
  [[nodiscard]] ZoVariant value() && noexcept { return std::move(edits_).value(); }

 private:
  HWND onStart() override;
  void onCommand(int id, int notice) override;
  LRESULT onNotice(NMHDR& notice) override;
  bool onMessage(UINT message, WPARAM w, LPARAM l) override;
  bool onKey(const MSG& message) override;
  bool survives() noexcept override;

  // What is shown: editor.cpp.
  void restoreWidths();
  void keepWidths() const;
  void layout();
  void layoutSplit();
  void moveSplit(LONG edge);
  void placeField();
  [[nodiscard]] RECT cellOf(int index, EditorField::What what) const;
  void limitSize(MINMAXINFO& limits) const;
  LRESULT onListNotice(NMHDR& notice);
  void onMenu(POINT at);
  bool onMouse(UINT message, POINT at);
  void open(const ZoString& container);
  void reload();
  void select(int index);
  void reveal(const ZoString& path);
  void show(const ZoString& path);
  void showCell(const LVITEMW& cell) const noexcept;
  void say(const ZoString& text);
  void say(DialogText text) { say(ZoString(dialogText(text))); }
  void sayPath();
  void enableCommands();
  [[nodiscard]] int selected() const noexcept;

  // What the user does: editor_commands.cpp.
  void perform(int command);
  [[nodiscard]] std::optional<EditorRows::Row> target();
  void edit();
  void rename();
  void add();
  void remove();
  void showProperties();
  void move(int by);
  void travel(int (ZoVariantEdits::*way)());
  void find(int by);
  void compare(bool isOn);
  void take();
  void cancel();
  // Takes what is typed in the open field. False when it is refused, and the field stays.
  [[nodiscard]] bool finish();
  [[nodiscard]] ZoString reasonOf(const EditorField& field, int code) const;
  void openField(EditorField::What what, const ZoString& path);
  [[nodiscard]] ZoString takeNew(const ZoString& name, ZoVariant value);
  // The reason why an edit was refused. After one that was not, the rows point at what may be gone.
  [[nodiscard]] ZoString outcome(int code);
  // What is shown follows an edit, if there was one; what only was begun is made again from the
  // edits as they are.
  enum What { kOneValue, kManyValues };
  [[nodiscard]] bool isBehind() const noexcept { return edits_.undoCount() != followed_; }
  void follow(What what);
  void showAnew();

  ZoVariantEdits edits_;
  unsigned int followed_ = 0;  // the count of edits that is shown; each edit makes another one
  const ZoVariant* other_;
  ZoString title_, key_;
  std::function<ZoString(const ZoVariant&)> take_;
  std::optional<EditorDifferences> differences_;  // while only these are shown
  EditorTree tree_;
  EditorColumns columns_;
  EditorSplit split_;
  EditorRows rows_;
  EditorField field_;
  ZoString chosen_;  // the container in the list
  HWND list_ = nullptr;
  std::vector<ZoString> matches_;  // of the last search
  ZoString pattern_;
  size_t match_ = 0;
  bool isMending_ = false;
};

}  // namespace zo
