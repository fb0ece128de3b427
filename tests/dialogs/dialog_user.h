// The user of dialogs, in the thread that shows them: a hook sees each dialog as soon as it is
// complete, and does there what a user would. No second thread and no sleep is needed.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace zo::test {

class DialogUser {
 public:
  // Is given each dialog, in the order in which they appear, and where it is the first one's box.
  using Act = std::function<void(HWND)>;

  explicit DialogUser(Act act);
  ~DialogUser();
  DialogUser(const DialogUser&) = delete;
  DialogUser& operator=(const DialogUser&) = delete;

  [[nodiscard]] int shown() const noexcept { return shown_; }
  [[nodiscard]] const std::wstring& title() const noexcept { return title_; }  // of the first one

  static void press(HWND dialog, int button);
  static void type(HWND dialog, int control, const std::wstring& text);
  // Into the field for names, of the present dialogs or the older ones.
  static void typeName(HWND dialog, const std::wstring& name);
  // The words of a dialog's window and of all windows in it.
  static std::wstring words(HWND dialog);

 private:
  static LRESULT CALLBACK onMessageDone(int code, WPARAM w, LPARAM l);

  Act act_;
  HHOOK hook_;
  DialogUser* outer_;
  std::wstring title_;
  int shown_ = 0;
};

// As long as it lives no window of this thread can be made: what a machine without a display does.
class NoWindows {
 public:
  NoWindows();
  ~NoWindows() { UnhookWindowsHookEx(hook_); }
  NoWindows(const NoWindows&) = delete;
  NoWindows& operator=(const NoWindows&) = delete;

 private:
  HHOOK hook_;
};

// A window's picture as it is on the screen. With ZO_PICTURES=FOLDER in the environment it is
// written there, too, as NAME.bmp.
struct Picture {
  explicit Picture(HWND window);
  void write(const std::string& name) const;
  // Colours, and the share of the most frequent one: a window that came out black or empty has one
  // or two.
  [[nodiscard]] bool showsSomething() const;

  int width = 0, height = 0;
  std::basic_string<unsigned int> pixels;  // from the bottom row up
};
[[nodiscard]] bool hasDisplay();

// The machine's printers, which only one test at a time may use; add() makes a default printer for
// as long as this lives, unless there is one.
class Printers {
 public:
  Printers();
  ~Printers();
  Printers(const Printers&) = delete;
  Printers& operator=(const Printers&) = delete;
  [[nodiscard]] static bool hasDefault();
  void add();

 private:
  HANDLE turn_;
};

}  // namespace zo::test
