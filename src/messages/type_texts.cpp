// The texts of type codes and flags, which variants ask for from below.
#include "variant/type_texts.h"

#include <zo/system/message.h>

#include "system/service_or_null.h"

const wchar_t* zo::lookUpText(const wchar_t* file, unsigned int number,
                              const wchar_t* byDefault) noexcept {
  auto* const messages = serviceOrNull<ZoMessage>();
  return messages ? messages->lasting(file, static_cast<int>(number), byDefault) : byDefault;
}
