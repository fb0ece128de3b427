#include <zo/dialogs/print_dialog.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "dialogs/printer_memory.h"

namespace {

constexpr double kLargest = 10000;  // mm
constexpr LONG kUnits = 100;        // the platform's hundredths in a mm

ZoVariant length(double mm) noexcept { return {mm, ZoTypeCode::Length}; }
ZoVariant fromUnits(LONG units) noexcept { return length(static_cast<double>(units) / kUnits); }
ZoPageSetupDialog::Margins fromUnits(const RECT& units) noexcept {
  return {fromUnits(units.left), fromUnits(units.top), fromUnits(units.right),
          fromUnits(units.bottom)};
}
LONG toUnits(const ZoVariant& mm) noexcept {
  return static_cast<LONG>(std::lround(mm.asReal() * kUnits));
}
RECT toUnits(const ZoPageSetupDialog::Margins& mm) noexcept {
  return {toUnits(mm.left), toUnits(mm.top), toUnits(mm.right), toUnits(mm.bottom)};
}

// A length in the platform's units, of at least the smallest; -1 for what is none.
LONG readLength(const ZoVariant& value, LONG smallest) noexcept {
  double mm = 0;
  if (!value.isNumber() || value.get(mm) != ZoResult::ok) return -1;
  if (!(mm >= 0 && mm <= kLargest)) return -1;
  const LONG units = toUnits(mm);
  return units >= smallest ? units : -1;
}

bool leavesPaper(LONG width, LONG height, const RECT& margins) noexcept {
  return margins.left + margins.right < width && margins.top + margins.bottom < height;
}

// Whether they are the same paper: drivers round.
bool isLike(POINT paper, POINT other) noexcept {
  return std::abs(paper.x - other.x) <= kUnits / 2 && std::abs(paper.y - other.y) <= kUnits / 2;
}

// Papers that drivers know by number; width and height upright, in hundredths of a mm.
constexpr struct {
  short number;
  LONG width, height;
} kPapers[] = {{DMPAPER_A3, 29700, 42000},
               {DMPAPER_A4, 21000, 29700},
               {DMPAPER_A5, 14800, 21000},
               {DMPAPER_LETTER, 21590, 27940},
               {DMPAPER_LEGAL, 21590, 35560}};

// The dialog takes its paper from the driver's settings.
void setPaperOf(DEVMODEW& settings, LONG width, LONG height) noexcept {
  const bool lies = width > height;
  if (lies) std::swap(width, height);
  settings.dmFields |= DM_ORIENTATION | DM_PAPERSIZE;
  settings.dmOrientation = lies ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
  for (const auto& paper : kPapers) {
    if (!isLike({paper.width, paper.height}, {width, height})) continue;
    settings.dmPaperSize = paper.number;
    settings.dmFields &= ~static_cast<DWORD>(DM_PAPERWIDTH | DM_PAPERLENGTH);
    return;
  }
  constexpr LONG kTenths = 10;  // in these settings are tenths of a mm
  constexpr LONG kMost = 32767;
  settings.dmPaperSize = DMPAPER_USER;
  settings.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
  settings.dmPaperWidth = static_cast<short>(std::min(width / kTenths, kMost));
  settings.dmPaperLength = static_cast<short>(std::min(height / kTenths, kMost));
}

auto* pageSetup() noexcept {
  return zo::systemFunction<decltype(PageSetupDlgW)>(L"comdlg32.dll", "PageSetupDlgW");
}

// The default printer's settings, where the caller has none.
void takeDefaults(zo::PrinterMemory& memory) noexcept {
  PAGESETUPDLGW request = {};
  request.lStructSize = sizeof request;
  request.Flags = PSD_RETURNDEFAULT | PSD_NOWARNING;
  auto* const ask = pageSetup();
  if (!ask || ask(&request) != TRUE) return;
  memory.clear();
  memory.settings = request.hDevMode;
  memory.names = request.hDevNames;
}

}  // namespace

ZoPageSetupDialog::ZoPageSetupDialog()
    : width_(length(210)),
      height_(length(297)),
      margins_{length(25), length(25), length(25), length(25)} {}

int ZoPageSetupDialog::setPaper(const ZoVariant& width, const ZoVariant& height) {
  const LONG wide = readLength(width, 1), high = readLength(height, 1);
  if (wide < 0 || high < 0 || !leavesPaper(wide, high, toUnits(margins_))) return ZoResult::refused;
  width_ = fromUnits(wide);
  height_ = fromUnits(high);
  return ZoResult::ok;
}

int ZoPageSetupDialog::setMargins(const Margins& margins) {
  const RECT read = {readLength(margins.left, 0), readLength(margins.top, 0),
                     readLength(margins.right, 0), readLength(margins.bottom, 0)};
  if (read.left < 0 || read.top < 0 || read.right < 0 || read.bottom < 0) return ZoResult::refused;
  if (!leavesPaper(toUnits(width_), toUnits(height_), read)) return ZoResult::refused;
  margins_ = fromUnits(read);
  return ZoResult::ok;
}

int ZoPageSetupDialog::run(HWND__* owner) {
  PAGESETUPDLGW request = {};
  zo::PrinterDialog dialog{pageSetup(), title(), owner, printer_};
  const unsigned long error = dialog.ask(request, [&](zo::PrinterMemory& memory) {
    if (!memory.settings && !memory.names) takeDefaults(memory);
    memory.change(
        [&](DEVMODEW& settings) { setPaperOf(settings, toUnits(width_), toUnits(height_)); });
    request.Flags =
        PSD_INHUNDREDTHSOFMILLIMETERS | PSD_MARGINS | PSD_NOWARNING | PSD_ENABLEPAGESETUPHOOK;
    request.ptPaperSize = {toUnits(width_), toUnits(height_)};
    request.rtMargin = toUnits(margins_);
    request.lpfnPageSetupHook = &zo::ShownHook::proc;
  });
  if (error != ERROR_SUCCESS) return failed(error);
  if (!isLike(request.ptPaperSize, {toUnits(width_), toUnits(height_)})) {
    width_ = fromUnits(request.ptPaperSize.x);
    height_ = fromUnits(request.ptPaperSize.y);
  }
  margins_ = fromUnits(request.rtMargin);
  return ZoResult::ok;
}
