// The members of a library as a dialog shows them: the folders of a folder, and those of its
// members that fit a filter. Levels are told by slashes of both kinds, and case does not count.
#pragma once

#include <zo/files/file_time.h>
#include <zo/names/file_name.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

class MemberRows {
 public:
  MemberRows() = default;
  MemberRows(const MemberRows&) = delete;  // rows point to members
  MemberRows& operator=(const MemberRows&) = delete;

  struct Member {
    std::wstring path;  // with slashes
    ZoFileName name;    // LIBRARY|MEMBER
    std::uint64_t size;
    ZoFileTime written;
  };
  struct Row {
    std::wstring_view name;  // the last level of it
    const Member* member;    // null: a folder
  };

  // False for what is no library, or cannot be read. Of members of one name the first counts; those
  // that no name in the notation stands for are left out.
  [[nodiscard]] bool read(const ZoFileName& library);
  // Patterns between semicolons; empty: all.
  void setFilter(std::wstring_view patterns);
  // A folder by its path, without a slash at its end; empty: the library itself.
  void enter(std::wstring_view folder);
  void enterOuter();

  [[nodiscard]] const std::wstring& folder() const noexcept { return folder_; }
  // Folders first. Valid until the next call that changes something.
  [[nodiscard]] const std::vector<Row>& rows() const noexcept { return rows_; }
  // Its place among them; their number for none.
  [[nodiscard]] std::size_t placeOf(std::wstring_view name) const noexcept;
  [[nodiscard]] std::wstring pathOf(const Row& row) const;

 private:
  void makeRows();

  std::vector<Member> members_;  // by path
  std::wstring folder_, filter_;
  std::vector<Row> rows_;
};

}  // namespace zo
