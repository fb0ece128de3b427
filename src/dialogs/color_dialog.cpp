#include <windows.h>
#include <zo/dialogs/color_dialog.h>

#include <algorithm>

#include "platform/common_dialog.h"

namespace {

// What the dialog has room for. Red is left out: it looks like blue, which alone is given back.
constexpr ZoColor::Type kPalette[] = {ZoColor::kYellow,    ZoColor::kGreen,    ZoColor::kCyan,
                                      ZoColor::kBlue,      ZoColor::kMagenta,  ZoColor::kGray,
                                      ZoColor::kLightGray, ZoColor::kDarkGray, ZoColor::kWhite};
constexpr size_t kCustomColors = 16;
constexpr COLORREF kUnused = 0xFFFFFF;

COLORREF lookOf(ZoColor::Type type) noexcept { return ZoColor(type).rgb(); }

ZoColor colorOf(COLORREF rgb, bool palette) noexcept {
  const auto* const type = std::ranges::find(kPalette, rgb, lookOf);
  if (palette && type != std::end(kPalette)) return *type;
  return ZoColor(GetRValue(rgb), GetGValue(rgb), GetBValue(rgb));
}

}  // namespace

int ZoColorDialog::run(HWND__* owner) {
  COLORREF custom[kCustomColors];
  std::ranges::fill(custom, kUnused);
  if (palette_) std::ranges::transform(kPalette, custom, lookOf);
  const zo::ShownHook hook(std::wstring(title().view()));
  CHOOSECOLORW request = {};
  request.lStructSize = sizeof request;
  request.hwndOwner = owner;
  request.rgbResult = color_.rgb();
  request.lpCustColors = custom;
  request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ENABLEHOOK;
  request.lpfnHook = &zo::ShownHook::proc;
  const unsigned long error = ZO_COMMON_DIALOG(ChooseColorW, request, hook);
  if (error != ERROR_SUCCESS) return failed(error);
  if (request.rgbResult != color_.rgb()) color_ = colorOf(request.rgbResult, palette_);
  return ZoResult::ok;
}
