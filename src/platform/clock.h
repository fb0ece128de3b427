// Time that only goes on, for limits: cheap to ask, exact to some 16 ms.
#pragma once

#include <cstdint>

namespace zo {

[[nodiscard]] std::uint64_t millisecondsNow() noexcept;

}  // namespace zo
