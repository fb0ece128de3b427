// What C++ would make a truth value of: functions that take one delete the overload for these.
#pragma once

#include <zo/names/not_a_flag.h>

#include <concepts>
#include <type_traits>

namespace zo {

template <class T>
concept NoTruthValue = NotAFlag<T> || (std::is_arithmetic_v<T> && !std::same_as<T, bool>);

}  // namespace zo
