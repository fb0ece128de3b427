// A dialog's template, made in memory: a library without resources of its own needs no more.
// Places and sizes are dialog units, which grow with the user's font.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace zo {

class DialogTemplate {
 public:
  DialogTemplate(std::wstring_view title, DWORD style, short width, short height);

  struct Box {
    short x, y, width, height;
  };
  // Visible unless `hidden`; the first one that can has the focus.
  void add(const wchar_t* windowClass, int id, const Box& box, DWORD style,
           std::wstring_view text = {}, bool hidden = false);

  // As long as this lives.
  [[nodiscard]] const DLGTEMPLATE* get() const noexcept {
    return reinterpret_cast<const DLGTEMPLATE*>(words_.data());
  }

 private:
  void put(DWORD value);
  void put(std::wstring_view text);
  void put(const Box& box);

  std::vector<WORD> words_;
};

}  // namespace zo
