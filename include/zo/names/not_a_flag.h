// What converts to bool and means something else: texts, names, pointers, members of enumerations.
// Operations with a switch delete the overload for these.
#pragma once

#include <zo/config.h>

#include <type_traits>

namespace zo {

template <class T>
concept NotAFlag = std::is_enum_v<T> || std::is_convertible_v<const T&, const void*>;

}  // namespace zo
