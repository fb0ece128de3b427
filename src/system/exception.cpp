#include <windows.h>
#include <zo/results.h>
#include <zo/system/error.h>
#include <zo/system/exception.h>
#include <zo/text/printf.h>

#include <cwchar>
#include <new>
#include <string_view>

#include "system/service_or_null.h"

namespace {

// Whether the memory is part of a loaded module and cannot be written to: a literal lies there, and
// stays as long as its module.
bool isConstantMemory(const void* memory) noexcept {
  MEMORY_BASIC_INFORMATION region;
  if (VirtualQuery(memory, &region, sizeof region) == 0 || region.Type != MEM_IMAGE) return false;
  return region.Protect == PAGE_READONLY || region.Protect == PAGE_EXECUTE_READ;
}

}  // namespace

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

std::shared_ptr<const wchar_t[]> ZoComException::keepTexts() noexcept {
  std::wstring_view kept[3];
  const wchar_t** const texts[] = {&fileName_, &funcName_, &text_};
  std::size_t size = 0;
  for (int i = 0; i < 3; ++i) {
    if (!*texts[i] || isConstantMemory(*texts[i])) continue;
    kept[i] = *texts[i];
    size += kept[i].size() + 1;
  }
  if (size == 0) return {};
  std::shared_ptr<wchar_t[]> copies;
  try {
    copies = std::make_shared<wchar_t[]>(size);
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): copies stays empty
  }
  wchar_t* next = copies.get();
  for (int i = 0; i < 3; ++i) {
    if (!kept[i].data()) continue;
    *texts[i] = next;
    if (!next) continue;
    kept[i].copy(next, kept[i].size());
    next += kept[i].size() + 1;
  }
  return copies;
}

namespace zo {

void copyWhat(char (&what)[kWhatSize], const wchar_t* message) noexcept {
  what[0] = '\0';
  if (!message) return;
  // A unit becomes up to three bytes: as much is converted as fits in one of three tries.
  constexpr int kRoom = kWhatSize - 1;
  int bytes = 0;
  for (int width = 1; width <= 3 && bytes == 0; ++width) {
    const auto units = static_cast<int>(wcsnlen(message, static_cast<std::size_t>(kRoom / width)));
    bytes = WideCharToMultiByte(CP_ACP, 0, message, units, what, kRoom, nullptr, nullptr);
  }
  what[bytes] = '\0';
}

void throwAt(int code, const wchar_t* text, bool asError, const std::source_location& place) {
  std::string_view path = place.file_name();
  path.remove_prefix(path.find_last_of("/\\") + 1);  // npos + 1 is 0
  wchar_t file[kWhatSize], function[kWhatSize];
  printTo(file, kWhatSize, L"%s", argumentsOf(path));
  printTo(function, kWhatSize, L"%s", argumentsOf(place.function_name()));
  ZoComException e(file, function, text, static_cast<int>(place.line()), asError);
  e.setErrCode(code);
  zoThrow(e);
}

}  // namespace zo
