#include <zo/dialogs/print_dialog.h>

#include <cstring>

#include "dialogs/printer_memory.h"

namespace {

constexpr unsigned int kLastPage = 65535;
constexpr unsigned int kMostCopies = 9999;

DWORD flagOf(ZoPrintDialog::Range range) noexcept {
  return range == ZoPrintDialog::kPages       ? PD_PAGENUMS
         : range == ZoPrintDialog::kSelection ? PD_SELECTION
                                              : PD_ALLPAGES;
}

// The dialog takes the number of copies from the driver's settings, where there are some.
void setCopiesOf(DEVMODEW& settings, unsigned int copies) noexcept {
  settings.dmFields |= DM_COPIES;
  settings.dmCopies = static_cast<short>(copies);
}

// Who prints makes the copies: were they in the settings, too, each would come as often again.
void setOneCopy(std::vector<unsigned char>& settings) noexcept {
  constexpr short kOne = 1;
  if (settings.size() >= sizeof(DEVMODEW))
    std::memcpy(settings.data() + offsetof(DEVMODEW, dmCopies), &kOne, sizeof kOne);
}

}  // namespace

int ZoPrintDialog::setPages(zo::NotNegative<unsigned int> first,
                            zo::NotNegative<unsigned int> last) noexcept {
  if (first > last || last > kLastPage || (first == 0 && last > 0)) return ZoResult::refused;
  first_ = first;
  last_ = last;
  if (range_ == kPages && (from_ < first || to_ > last)) return setRange(kAll);
  return ZoResult::ok;
}

void ZoPrintDialog::setSelection(bool offered) noexcept {
  selection_ = offered;
  if (!offered && range_ == kSelection) range_ = kAll;
}

int ZoPrintDialog::setRange(Range range, zo::NotNegative<unsigned int> from,
                            zo::NotNegative<unsigned int> to) noexcept {
  if (range < kAll || range > kPages) return ZoResult::refused;
  if (range == kSelection && !selection_) return ZoResult::refused;
  if (range == kPages && (first_ == 0 || from < first_ || from > to || to > last_))
    return ZoResult::refused;
  range_ = range;
  from_ = to_ = 0;
  if (range == kPages) from_ = from, to_ = to;
  return ZoResult::ok;
}

int ZoPrintDialog::setCopies(zo::NotNegative<unsigned int> copies) noexcept {
  if (copies < 1 || copies > kMostCopies) return ZoResult::refused;
  copies_ = copies;
  return ZoResult::ok;
}

int ZoPrintDialog::run(HWND__* owner) {
  PRINTDLGW request = {};
  zo::PrinterDialog dialog{zo::systemFunction<decltype(PrintDlgW)>(L"comdlg32.dll", "PrintDlgW"),
                           title(), owner, printer_};
  const unsigned long error = dialog.ask(request, [&](zo::PrinterMemory& memory) {
    memory.change([this](DEVMODEW& settings) { setCopiesOf(settings, copies_); });
    request.Flags = flagOf(range_) | (selection_ ? 0 : PD_NOSELECTION) |
                    (last_ ? 0 : PD_NOPAGENUMS) | (collated_ ? PD_COLLATE : 0) |
                    (toFile_ ? PD_PRINTTOFILE : 0) | PD_NOWARNING | PD_ENABLEPRINTHOOK;
    request.nMinPage = static_cast<WORD>(first_);
    request.nMaxPage = static_cast<WORD>(last_);
    request.nFromPage = static_cast<WORD>(range_ == kPages ? from_ : first_);
    request.nToPage = static_cast<WORD>(range_ == kPages ? to_ : last_);
    request.nCopies = static_cast<WORD>(copies_);
    request.lpfnPrintHook = &zo::ShownHook::proc;
  });
  if (error != ERROR_SUCCESS) return failed(error);
  setOneCopy(printer_.settings);
  const bool isPages = (request.Flags & PD_PAGENUMS) != 0;
  range_ = isPages ? kPages : (request.Flags & PD_SELECTION) != 0 ? kSelection : kAll;
  from_ = isPages ? request.nFromPage : 0;
  to_ = isPages ? request.nToPage : 0;
  copies_ = request.nCopies;
  collated_ = (request.Flags & PD_COLLATE) != 0;
  toFile_ = (request.Flags & PD_PRINTTOFILE) != 0;
  return ZoResult::ok;
}
