// The rows of a table of text once more, a unit at a time: what the reader is compared with.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zo::test {

struct ReferenceRow {
  std::vector<std::wstring> fields;
  std::size_t line = 0;
  char fault = 0;  // the first: 'o' open quote, 't' text behind one
  std::size_t faultAt = 0;
};

class ReferenceTable {
 public:
  ReferenceTable(std::wstring_view text, wchar_t separator, wchar_t quote)
      : text_(text), separator_(separator), quote_(quote) {
    std::size_t at = text.starts_with(L'\xFEFF') ? 1 : 0, line = 1;
    while (at < text.size()) {
      const std::size_t first = at;
      if (!isEnd(at)) {
        rows.emplace_back().line = line;
        at = field(at);
        while (at < text.size() && text[at] == separator_) at = field(at + 1);
      }
      if (at < text.size()) at += text.substr(at, 2) == L"\r\n" ? 2 : 1;
      for (std::size_t i = first; i < at; ++i)
        line += text[i] == L'\n' || (text[i] == L'\r' && text.substr(i, 2) != L"\r\n");
    }
  }

  std::vector<ReferenceRow> rows;

 private:
  bool isEnd(std::size_t at) const {
    return at == text_.size() || text_[at] == L'\r' || text_[at] == L'\n';
  }
  void fault(char what, std::size_t at) {
    ReferenceRow& row = rows.back();
    if (!row.fault) row.fault = what, row.faultAt = at;
  }
  std::size_t rest(std::size_t at, std::wstring content) {
    while (!isEnd(at) && text_[at] != separator_) content += text_[at++];
    rows.back().fields.push_back(std::move(content));
    return at;
  }
  std::size_t field(std::size_t at) {
    if (quote_ == 0 || at == text_.size() || text_[at] != quote_) return rest(at, L"");
    std::wstring content;
    for (std::size_t i = at + 1; i < text_.size(); ++i) {
      if (text_[i] != quote_) {
        content += text_[i];
      } else if (i + 1 < text_.size() && text_[i + 1] == quote_) {
        content += text_[++i];
      } else {
        if (!isEnd(i + 1) && text_[i + 1] != separator_) fault('t', i + 1);
        return rest(i + 1, std::move(content));
      }
    }
    fault('o', at);
    return rest(at, L"");
  }

  std::wstring_view text_;
  wchar_t separator_, quote_;
};

}  // namespace zo::test
