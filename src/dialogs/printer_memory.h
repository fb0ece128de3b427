// A printer in the two movable blocks in which the platform's dialogs take and give one, and the
// call of such a dialog.
#pragma once

#include <windows.h>
#include <zo/dialogs/print_dialog.h>

#include <string>

#include "platform/common_dialog.h"

namespace zo {

// Owns both blocks. Null is the default printer with its default settings.
class PrinterMemory {
 public:
  explicit PrinterMemory(const ZoPrinter& printer);
  ~PrinterMemory();
  PrinterMemory(const PrinterMemory&) = delete;
  PrinterMemory& operator=(const PrinterMemory&) = delete;

  [[nodiscard]] ZoPrinter printer() const;
  void clear() noexcept;
  // Lets a function change the settings, where there are some.
  template <class Change>
  void change(Change change) {
    auto* const block = settings ? static_cast<DEVMODEW*>(GlobalLock(settings)) : nullptr;
    if (!block) return;
    change(*block);
    GlobalUnlock(settings);
  }

  // The dialogs replace them.
  HGLOBAL settings = nullptr;
  HGLOBAL names = nullptr;
};

// Whether the machine has any: without one, platforms show boxes of their own, and answer anything.
[[nodiscard]] bool hasPrinter() noexcept;

// One of the platform's dialogs that know printers.
template <class Request>
struct PrinterDialog {
  BOOL(WINAPI* call)(Request*);
  const ZoString& title;
  HWND owner;
  ZoPrinter& printer;  // what is chosen first, and what was

  // `fill` puts into the request what else it has. When the printer is gone, it is asked once more,
  // with the default one.
  template <class Fill>
  [[nodiscard]] unsigned long ask(Request& request, Fill fill) {
    if (!hasPrinter()) return ERROR_PRINTER_NOT_FOUND;
    PrinterMemory memory(printer);
    unsigned long error = askOnce(request, memory, fill);
    if (error == ERROR_INVALID_PRINTER_NAME && memory.names) {
      memory.clear();
      error = askOnce(request, memory, fill);
    }
    if (error == ERROR_SUCCESS) printer = memory.printer();
    return error;
  }

 private:
  template <class Fill>
  [[nodiscard]] unsigned long askOnce(Request& request, PrinterMemory& memory, Fill& fill) {
    const ShownHook hook(std::wstring(title.view()));
    request = {};
    fill(memory);
    request.lStructSize = sizeof request;
    request.hwndOwner = owner;
    request.hDevMode = memory.settings;
    request.hDevNames = memory.names;
    const unsigned long error = commonDialog(call, request, hook);
    memory.settings = request.hDevMode;
    memory.names = request.hDevNames;
    return error;
  }
};
template <class Request>
PrinterDialog(BOOL(WINAPI*)(Request*), const ZoString&, HWND, ZoPrinter&) -> PrinterDialog<Request>;

}  // namespace zo
