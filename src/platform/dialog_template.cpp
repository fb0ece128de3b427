#include "platform/dialog_template.h"

namespace {

constexpr size_t kCountAt = 4;  // of the controls, in words: behind the two styles
constexpr WORD kPoints = 9;
constexpr size_t kRoom = 1024;  // in words; what is allocated has a multiple of four bytes

}  // namespace

zo::DialogTemplate::DialogTemplate(std::wstring_view title, DWORD style, short width,
                                   short height) {
  words_.reserve(kRoom);
  put(style | DS_SETFONT | DS_FIXEDSYS | WS_POPUP | WS_CAPTION | WS_SYSMENU);
  put(0);               // extended style
  words_.push_back(0);  // controls
  put(Box{0, 0, width, height});
  words_.push_back(0);  // no menu
  words_.push_back(0);  // the class of dialogs
  put(title);
  words_.push_back(kPoints);
  put(L"MS Shell Dlg");
}

void zo::DialogTemplate::add(const wchar_t* windowClass, int id, const Box& box, DWORD style,
                             std::wstring_view text, bool hidden) {
  if (words_.size() % 2) words_.push_back(0);  // each begins at a multiple of four bytes
  put(style | WS_CHILD | (hidden ? 0 : WS_VISIBLE));
  put(0);  // extended style
  put(box);
  words_.push_back(static_cast<WORD>(id));
  put(windowClass);
  put(text);
  words_.push_back(0);  // no data
  ++words_[kCountAt];
}

void zo::DialogTemplate::put(DWORD value) {
  words_.push_back(LOWORD(value));
  words_.push_back(HIWORD(value));
}

void zo::DialogTemplate::put(std::wstring_view text) {
  words_.insert(words_.end(), text.begin(), text.end());
  words_.push_back(0);
}

void zo::DialogTemplate::put(const Box& box) {
  for (const short measure : {box.x, box.y, box.width, box.height})
    words_.push_back(static_cast<WORD>(measure));
}
