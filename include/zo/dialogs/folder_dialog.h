// Choosing a folder, through the host toolkit's dialog or the stand-in for it.
//
// Errors, Threads: as ZoDialog has it.
#pragma once

#include <zo/dialogs/dialog.h>
#include <zo/names/file_name.h>

class ZO_COM_API ZoFolderDialog : public ZoDialog {
 public:
  ZoFolderDialog() = default;
  explicit ZoFolderDialog(const ZoFileName& folder) { setFolder(folder); }
  template <std::same_as<std::nullptr_t> T>
  explicit ZoFolderDialog(T) = delete;  // the folder; show(owner)

  // The folder that is chosen at first, empty for none, and the one that was taken, as a directory
  // with its final delimiter. One that is not there is not chosen at first.
  void setFolder(const ZoFileName& folder);
  void setFolder(std::same_as<std::nullptr_t> auto) = delete;  // ZoFileName(): no folder
  [[nodiscard]] const ZoFileName& folder() const noexcept { return folder_; }
  // Keeps what was taken in the setting "dialogs@KEY@folder" and begins there, unless a folder is
  // set; shared with a ZoFileDialog of the same key.
  void remember(zo::TextParameter key) { key_ = key; }

 protected:
  int run(HWND__* owner) override;
  [[nodiscard]] bool hasValue() const noexcept override { return !folder_.isEmpty(); }

 private:
  ZoFileName folder_;
  ZoString key_;
};
