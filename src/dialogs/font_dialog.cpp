#include <windows.h>

#include <dlgs.h>
#include <zo/dialogs/font_dialog.h>

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <string>
#include <string_view>

#include "platform/common_dialog.h"

namespace {

// The platform measures in tenths of a point; what is larger has no use.
constexpr double kLargest = 10000;

int pixelsPerInch() noexcept {
  static const auto ask =
      zo::systemFunction<decltype(GetDeviceCaps)>(L"gdi32.dll", "GetDeviceCaps");
  auto* const screen = GetDC(nullptr);
  const int pixels = ask ? ask(screen, LOGPIXELSY) : 0;
  ReleaseDC(nullptr, screen);
  return pixels > 0 ? pixels : 96;
}

LOGFONTW platformFont(const ZoFont& font) {
  LOGFONTW platform = {};
  const double points = font.points > 0 ? std::min(font.points, kLargest) : 0;  // also none
  platform.lfHeight = -static_cast<LONG>(std::lround(points * pixelsPerInch() / 72));
  platform.lfWeight = std::clamp(font.weight, 100, 900);
  platform.lfItalic = font.italic;
  platform.lfUnderline = font.underline;
  platform.lfStrikeOut = font.strikeOut;
  platform.lfCharSet = DEFAULT_CHARSET;
  font.face.view().substr(0, LF_FACESIZE - 1).copy(platform.lfFaceName, LF_FACESIZE - 1);
  return platform;
}

// The size that the dialog shows, in tenths of a point; 0 for what is no number.
long shownSize(std::wstring text) noexcept {
  std::ranges::replace(text, L',', L'.');
  return std::lround(std::wcstod(text.c_str(), nullptr) * 10);
}

}  // namespace

int ZoFontDialog::run(HWND__* owner) {
  LOGFONTW font = platformFont(font_);  // a copy: it is written to even when the user cancels
  const zo::ShownHook hook(std::wstring(title().view()), cmb3);
  CHOOSEFONTW request = {};
  request.lStructSize = sizeof request;
  request.hwndOwner = owner;
  request.lpLogFont = &font;
  request.Flags = CF_SCREENFONTS | CF_EFFECTS | CF_INITTOLOGFONTSTRUCT | CF_ENABLEHOOK;
  request.lpfnHook = &zo::ShownHook::proc;
  const unsigned long error = ZO_COMMON_DIALOG(ChooseFontW, request, hook);
  if (error != ERROR_SUCCESS) return failed(error);
  const bool isKept = request.iPointSize == shownSize(hook.firstText()) && font_.points >= 0 &&
                      font_.points <= kLargest;
  font_ = ZoFont{ZoString(font.lfFaceName),
                 isKept ? font_.points : request.iPointSize / 10.0,
                 font.lfWeight,
                 font.lfItalic != 0,
                 font.lfUnderline != 0,
                 font.lfStrikeOut != 0};
  return ZoResult::ok;
}
