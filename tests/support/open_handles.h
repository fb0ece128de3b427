// How many kernel handles this process has open, for tests that nothing is left behind.
//
// Warm up what is measured before the first count: runtime and platform open handles once, too.
#pragma once

namespace zo::test {

[[nodiscard]] unsigned long openHandles();

}  // namespace zo::test
