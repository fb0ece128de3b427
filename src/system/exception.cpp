#include <windows.h>
#include <zo/results.h>
#include <zo/system/error.h>
#include <zo/system/exception.h>

#include "system/service_or_null.h"

ZoComException::~ZoComException() = default;

const wchar_t* ZoComException::message() const {
  if (text_) return text_;
  switch (errCode_) {
    case kNoError:
      return L"";
    case kOutOfMemory:
      return L"Out of Memory";
    case kInvalidArgument:
      return L"Invalid Argument";
    default:
      return L"Internal Error";
  }
}

int ZoComException::report() const {
  if (errCode_ == kNoError) return ZoResult::refused;
  auto* const service = asError_ ? zo::serviceOrNull<ZoError>() : nullptr;
  if (service) service->error(fileName_, funcName_, position_, message());
  return errCode_;
}

namespace zo {

void copyWhat(char (&what)[kWhatSize], const wchar_t* message) noexcept {
  what[0] = '\0';
  if (!message) return;
  // A unit becomes two bytes at most in the code pages that can be the ANSI one, or three in UTF-8:
  // so much of the message is converted as surely fits.
  const auto fitting = static_cast<int>(wcsnlen(message, (kWhatSize - 1) / 3));
  const int bytes = WideCharToMultiByte(CP_ACP, 0, message, fitting, what,
                                        static_cast<int>(kWhatSize) - 1, nullptr, nullptr);
  what[bytes] = '\0';
}

}  // namespace zo
