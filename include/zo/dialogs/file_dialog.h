// Choosing files to open or one to save to.
//
// The first folder shown is that of the file that was set; else the one remembered, if it is still
// there; else the start folder, if it is there; else the platform's choice. The process's current
// folder is never changed, and a relative start folder is seen from it.
//
// Errors:  as ZoDialog has it.
// Threads: as ZoDialog has it. On a thread of COM's multithreaded kind the platform's older dialog
//          is shown.
#pragma once

#include <zo/dialogs/dialog.h>
#include <zo/names/file_name.h>

#include <vector>

namespace zo {
struct ItemDialogRequest;
}

class ZO_COM_API ZoFileDialog : public ZoDialog {
 public:
  enum Kind : int {
    kOpen,         // a file that is there
    kOpenSeveral,  // one and more of one folder
    kSave,         // any name; asks before a file is replaced
  };
  struct Filter {
    ZoString name;
    ZoString patterns;  // "*.val;*.mdb"
  };

  explicit ZoFileDialog(Kind kind = kOpen) noexcept : kind_(kind) {}
  [[nodiscard]] Kind kind() const noexcept { return kind_; }

  // Which files are shown; none: all. Patterns stand between semicolons, blanks around them do not
  // count; refused when there is none or a zero character in them. An empty name is the patterns.
  [[nodiscard]] int addFilter(zo::TextParameter name, zo::TextParameter patterns);
  int addFilter(std::same_as<std::nullptr_t> auto, zo::TextParameter) = delete;  // L"": no name
  // By the extensions of a kind, which are all that counts here; kAnyFile is all files.
  void addFilter(ZoFileName::FileKind kind);
  [[nodiscard]] const std::vector<Filter>& filters() const& noexcept { return filters_; }
  [[nodiscard]] std::vector<Filter> filters() && noexcept { return std::move(filters_); }
  // The filter in use, from 0: at first, and as the user left it. Refused when there is no such
  // filter. A name to save that is typed without an extension gets that of the filter's first
  // pattern, unless it has a wildcard.
  [[nodiscard]] int setFilter(zo::NotNegative<unsigned int> index) noexcept;
  [[nodiscard]] unsigned int filter() const noexcept { return filter_; }

  void setFolder(const ZoFileName& folder) { folder_ = folder; }
  void setFolder(std::same_as<std::nullptr_t> auto) = delete;  // ZoFileName(): no folder
  [[nodiscard]] const ZoFileName& folder() const noexcept { return folder_; }
  // Keeps the folder of what was taken in the setting "dialogs@KEY@folder", one for each purpose.
  void remember(zo::TextParameter key) { key_ = key; }

  // Libraries, files of names that fit one of these patterns, are then opened rather than taken: a
  // second window shows their members by folders and filters, and what is taken there is
  // LIBRARY|MEMBER (zo/names/member_name.h) as the file search service finds it; "back" leads to
  // the files again. The patterns are added to the filters of files. What only looks like a library
  // is a file as any other. For opening; to save, libraries are files. Empty ends it. Refused with
  // a zero character.
  [[nodiscard]] int browseLibraries(zo::TextParameter patterns);
  [[nodiscard]] const ZoString& libraries() const noexcept { return libraries_; }

  // The name that stands in the dialog at first; afterwards what was taken. file() is empty where
  // there is none.
  void setFile(const ZoFileName& file);
  void setFile(std::same_as<std::nullptr_t> auto) = delete;  // ZoFileName(): no file
  void setFiles(std::vector<ZoFileName> files) { files_ = std::move(files); }
  [[nodiscard]] const std::vector<ZoFileName>& files() const& noexcept { return files_; }
  [[nodiscard]] std::vector<ZoFileName> files() && noexcept { return std::move(files_); }
  [[nodiscard]] ZoFileName file() const { return files_.empty() ? ZoFileName() : files_.front(); }

 protected:
  int run(HWND__* owner) override;
  [[nodiscard]] bool hasValue() const noexcept override {
    return !files_.empty() && !files_.front().isEmpty();
  }

 private:
  [[nodiscard]] int ask(zo::ItemDialogRequest& request, std::vector<ZoFileName>& files,
                        HWND__* owner);

  Kind kind_;
  unsigned int filter_ = 0;
  std::vector<Filter> filters_;
  std::vector<ZoFileName> files_;
  ZoFileName folder_;
  ZoString key_;
  ZoString libraries_;  // patterns; empty: they are not browsed
};
