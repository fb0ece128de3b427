// A message file from its bytes: UTF-16 or UTF-8 by their mark or form, the code page that the file
// names, or the default one.
#pragma once

#include <zo/messages/message_fault.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "messages/message_data.h"

namespace zo {

inline constexpr std::size_t kMaxMessageBytes = 0x4000000;

// Null when the bytes are no message file, or too many; the faults, which come empty, tell. The
// language is that of the file's name, for the plural forms of a file that does not say its own.
[[nodiscard]] std::shared_ptr<const MessageData> readMessages(std::string_view bytes,
                                                              std::vector<ZoMessageFault>& faults,
                                                              std::wstring_view language = {});

}  // namespace zo
