// A printer in the two movable blocks in which the platform's dialogs take and give one.
#pragma once

#include <windows.h>
#include <zo/dialogs/print_dialog.h>

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

// Asks with a printer, and with the default one when that printer is gone.
template <class Ask>
[[nodiscard]] unsigned long askWithPrinter(PrinterMemory& memory, Ask ask) {
  if (!hasPrinter()) return ERROR_PRINTER_NOT_FOUND;
  const unsigned long error = ask();
  if (error != ERROR_INVALID_PRINTER_NAME || !memory.names) return error;
  memory.clear();
  return ask();
}

}  // namespace zo
