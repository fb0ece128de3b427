// The window in which members of a library are chosen: a list of the members of a folder, filters,
// and the way back to the files.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "dialogs/member_rows.h"
#include "platform/item_dialog.h"
#include "platform/modal_dialog.h"

namespace zo {

class MemberDialog final : public ModalDialog {
 public:
  // What ends it beside IDOK and IDCANCEL: back to the files.
  static constexpr int kBack = 100;
  static constexpr int kList = 101, kFilters = 102, kFolder = 103;

  // What is asked for must outlive it. Of several members one and more are taken.
  MemberDialog(MemberRows& rows, const ItemDialogRequest& request, std::wstring library);

  // As ModalDialog::ask() does. The row of this member is chosen first, if it is there.
  [[nodiscard]] int show(HWND owner, std::wstring_view member);
  [[nodiscard]] const std::vector<ZoFileName>& names() const noexcept { return names_; }
  [[nodiscard]] unsigned int filter() const noexcept { return filter_; }

 private:
  HWND onStart() override;
  void onCommand(int id, int notice) override;
  LRESULT onNotice(NMHDR& notice) override;

  [[nodiscard]] DialogTemplate form() const;
  void addColumns();
  void setFilter(unsigned int filter);
  void enter(std::wstring_view folder);
  void leave();
  void showRows(std::size_t chosen);
  void tell(NMLVDISPINFOW& asked);
  [[nodiscard]] LRESULT find(const NMLVFINDITEMW& asked) const;
  [[nodiscard]] bool take();

  MemberRows& rows_;
  const ItemDialogRequest& request_;
  std::wstring library_;  // its name, as it is shown
  std::wstring first_;
  unsigned int filter_;
  std::vector<ZoFileName> names_;
};

}  // namespace zo
