#include "dialogs/printer_memory.h"

#include <commdlg.h>
#include <winspool.h>

#include <cstring>
#include <string>
#include <string_view>

#include "platform/system_library.h"

namespace {

// A block as long as it is locked.
class Locked {
 public:
  explicit Locked(HGLOBAL block) noexcept
      : block_(block), data_(block ? GlobalLock(block) : nullptr) {}
  ~Locked() {
    if (data_) GlobalUnlock(block_);
  }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  [[nodiscard]] unsigned char* data() const noexcept { return static_cast<unsigned char*>(data_); }
  [[nodiscard]] size_t size() const noexcept { return data_ ? GlobalSize(block_) : 0; }

 private:
  HGLOBAL block_;
  void* data_;
};

HGLOBAL blockOf(const void* bytes, size_t size) noexcept {
  HGLOBAL const block = GlobalAlloc(GMEM_MOVEABLE, size);
  if (const Locked locked(block); locked.data()) std::memcpy(locked.data(), bytes, size);
  return block;
}

// The platform counts in characters, and finds the driver by the device's name.
std::wstring namesOf(const ZoString& device) {
  constexpr size_t kHead = sizeof(DEVNAMES) / sizeof(wchar_t);
  std::wstring block(kHead, L'\0');
  block += std::wstring_view(L"winspool", 9);
  const size_t deviceAt = block.size();
  block.append(device.view()).append(1, L'\0');
  const size_t outputAt = block.size();
  block.append(1, L'\0');
  const DEVNAMES head = {static_cast<WORD>(kHead), static_cast<WORD>(deviceAt),
                         static_cast<WORD>(outputAt), 0};
  std::memcpy(block.data(), &head, sizeof head);
  return block;
}

// Settings come from the caller's storage: a block that is shorter than it says is none.
bool areWhole(const std::vector<unsigned char>& settings) noexcept {
  if (settings.size() < sizeof(DEVMODEW)) return false;
  DEVMODEW head;
  std::memcpy(&head, settings.data(), sizeof head);
  return size_t{head.dmSize} + head.dmDriverExtra <= settings.size() &&
         head.dmSize >= offsetof(DEVMODEW, dmFields) + sizeof head.dmFields;
}

constexpr size_t kLongestName = 1024;

}  // namespace

zo::PrinterMemory::PrinterMemory(const ZoPrinter& printer) {
  if (printer.name.isEmpty() || printer.name.view().size() > kLongestName) return;
  const std::wstring block = namesOf(printer.name);
  names = blockOf(block.data(), block.size() * sizeof(wchar_t));
  if (areWhole(printer.settings))
    settings = blockOf(printer.settings.data(), printer.settings.size());
}

zo::PrinterMemory::~PrinterMemory() { clear(); }

void zo::PrinterMemory::clear() noexcept {
  if (settings) GlobalFree(settings);
  if (names) GlobalFree(names);
  settings = names = nullptr;
}

ZoPrinter zo::PrinterMemory::printer() const {
  ZoPrinter printer;
  const Locked inNames(names);
  if (inNames.size() > sizeof(DEVNAMES)) {
    DEVNAMES head;
    std::memcpy(&head, inNames.data(), sizeof head);
    const std::wstring_view block(reinterpret_cast<const wchar_t*>(inNames.data()),
                                  inNames.size() / sizeof(wchar_t));
    if (head.wDeviceOffset < block.size()) {
      const std::wstring_view rest = block.substr(head.wDeviceOffset);
      printer.name = rest.substr(0, rest.find(L'\0'));
    }
  }
  const Locked inSettings(settings);
  printer.settings.assign(inSettings.data(), inSettings.data() + inSettings.size());
  return printer;
}

bool zo::hasPrinter() noexcept {
  static const auto list =
      systemFunction<decltype(EnumPrintersW)>(L"winspool.drv", "EnumPrintersW");
  constexpr DWORD kNamesOnly = 4;
  DWORD size = 0, count = 0;
  if (list)
    (void)list(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr, kNamesOnly, nullptr, 0,
               &size, &count);
  return size > 0;
}
