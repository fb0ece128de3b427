// The editor's tree: the containers of the variant. A branch is filled when it is opened, with so
// many containers at most; others are reached through the list, and get an item of their own then.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <zo/dialogs/variant_edits.h>

#include <unordered_map>
#include <vector>

namespace zo {

class EditorTree {
 public:
  static constexpr unsigned int kMostInBranch = 1'000;

  explicit EditorTree(const ZoVariantEdits& edits) noexcept : edits_(edits) {}

  // Fills the control with the whole value's item, opened.
  void start(HWND control);
  [[nodiscard]] HWND control() const noexcept { return control_; }

  // The container of an item; null for the one that stands for what is only in the list.
  [[nodiscard]] const ZoString* pathOf(HTREEITEM item) const;
  [[nodiscard]] HTREEITEM chosen() const noexcept;
  // Chooses a container, opening what is on the way. One that is not there changes nothing.
  void choose(const ZoString& path);
  // After an edit in the container: its branch is made anew, what was open in it stays so.
  void renew(const ZoString& path);
  // While it makes a branch anew, what it says to be chosen is not what the user chose.
  [[nodiscard]] bool isBusy() const noexcept { return isBusy_; }
  // Opens or closes the chosen branch.
  void toggle();

  // The control's notices.
  LRESULT onNotice(NMHDR& notice);

 private:
  struct Node {
    ZoString path;
    ZoString name;
    bool isFilled = false;
    bool isContainer = true;
  };
  void show(NMTVDISPINFOW& notice) const;
  void fill(HTREEITEM item);
  HTREEITEM add(HTREEITEM parent, Node node);
  [[nodiscard]] Node* nodeOf(HTREEITEM item);
  [[nodiscard]] const Node* nodeOf(HTREEITEM item) const;
  [[nodiscard]] HTREEITEM next(HTREEITEM item, WPARAM which) const noexcept;
  [[nodiscard]] HTREEITEM childNamed(HTREEITEM item, const ZoString& path);
  // The item of a container, filling what is on the way; null where there is none.
  [[nodiscard]] HTREEITEM reach(const ZoString& path);
  void collectOpen(HTREEITEM item, std::vector<ZoString>& paths) const;

  const ZoVariantEdits& edits_;
  HWND control_ = nullptr;
  std::unordered_map<LPARAM, Node> nodes_;  // by what the control keeps of each item
  LPARAM last_ = 0;
  bool isBusy_ = false;
};

}  // namespace zo
