// A text as it looks in a failed assertion.
#pragma once

#include <gtest/gtest.h>
#include <zo/text/string.h>

#include <string>
#include <string_view>

#include "support/printers.h"

namespace zo::test {

inline std::string shown(std::wstring_view text) { return testing::PrintToString(ZoString(text)); }

}  // namespace zo::test
