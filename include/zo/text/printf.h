// Formats of the printf family with arguments that keep their types:
//
//   ZoSystem::error().warning(ZO_FILE, __LINE__, L"%d parts left out of %s", count, name);
//
// A format that is a literal is checked by the compiler: a count or a kind of arguments that does
// not fit is an error whose text names one of zo::formatError. Any other format is taken at run
// time, and what does not fit is printed as what it is (a number for "%s" as a number); where an
// argument is missing, the conversion stands there as it was written. So no format and no argument
// can make anything else than text.
//
//   %d %i %u %o %x %X   whole numbers, characters and enumerations, each in its own width: length
//                       modifiers (ll, I64, h, ...) are read over
//   %f %e %g %a %F ...  numbers, whole ones too
//   %s %S               texts: ZoString and its views, ZoFileName, std::wstring, paths, pointers to
//                       zero-terminated text (null is "(null)"); narrow ones are ANSI text
//   %c %C               characters, or their codes
//   %p                  pointers
//   %%                  a percent sign
//
// Flags, width and precision, "*" too, mean what they mean to the runtime; %n is refused.
//
// Errors:  nothing throws; a text that does not fit is cut off.
// Threads: any.
// Cost:    linear; a number costs a call of the runtime. Nothing is allocated.
#pragma once

#include <zo/config.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <type_traits>

namespace zo {

// What is wrong with a format: the compiler's error names one of these. They do not exist.
// What the compiler names where a literal format does not fit. They do nothing: that the check
// comes to one of them, which cannot be called while compiling, is the error.
namespace formatError {
inline void tooFewArguments() {}   // the format has a conversion without an argument
inline void tooManyArguments() {}  // an argument has no conversion in the format
// %d %x whole numbers, %f %g numbers, %s texts, %c characters, %p pointers
inline void wrongKind() {}
inline void unknownConversion() {}  // no such conversion; a percent sign by itself is %%
}  // namespace formatError

enum class ArgumentKind : unsigned char {
  None,
  Signed,
  Unsigned,
  Character,
  Real,
  Text,
  NarrowText,
  Pointer,
};

template <class T>
consteval ArgumentKind argumentKind() {
  using Value = std::decay_t<const T&>;
  if constexpr (std::is_same_v<Value, wchar_t> || std::is_same_v<Value, char>)
    return ArgumentKind::Character;
  else if constexpr (std::is_enum_v<Value>)
    return argumentKind<std::underlying_type_t<Value>>();
  else if constexpr (std::is_integral_v<Value>)
    return std::is_signed_v<Value> ? ArgumentKind::Signed : ArgumentKind::Unsigned;
  else if constexpr (std::is_floating_point_v<Value>)
    return ArgumentKind::Real;
  else if constexpr (std::is_null_pointer_v<Value>)
    return ArgumentKind::Pointer;
  else if constexpr (std::is_convertible_v<const T&, std::wstring_view> ||
                     std::is_convertible_v<const T&, const wchar_t*> ||
                     requires(const T& text) { std::wstring_view(text.native()); })
    return ArgumentKind::Text;
  else if constexpr (std::is_convertible_v<const T&, std::string_view>)
    return ArgumentKind::NarrowText;
  else
    return std::is_pointer_v<Value> ? ArgumentKind::Pointer : ArgumentKind::None;
}

// One argument: views what it is made of.
class FormatArgument {
 public:
  constexpr FormatArgument() noexcept = default;
  template <class T>
  explicit FormatArgument(const T& value) noexcept : kind_(argumentKind<T>()) {
    using Value = std::decay_t<const T&>;
    if constexpr (std::is_same_v<Value, wchar_t*> || std::is_same_v<Value, const wchar_t*>) {
      const wchar_t* const text = value;
      setText(text ? std::wstring_view(text) : std::wstring_view(L"(null)"));
    } else if constexpr (std::is_same_v<Value, char*> || std::is_same_v<Value, const char*>) {
      const char* const text = value;
      setNarrow(text ? std::string_view(text) : std::string_view("(null)"));
    } else if constexpr (argumentKind<T>() == ArgumentKind::Text) {
      if constexpr (requires { std::wstring_view(value.view()); })
        setText(value.view());
      else if constexpr (requires { std::wstring_view(value.native()); })
        setText(value.native());
      else if constexpr (std::is_convertible_v<const T&, std::wstring_view>)
        setText(value);
      else
        *this = FormatArgument(static_cast<const wchar_t*>(value));
    } else if constexpr (argumentKind<T>() == ArgumentKind::NarrowText) {
      setNarrow(value);
    } else if constexpr (argumentKind<T>() == ArgumentKind::Real) {
      real_ = static_cast<double>(value);
    } else if constexpr (argumentKind<T>() == ArgumentKind::Pointer) {
      if constexpr (std::is_null_pointer_v<Value>)
        pointer_ = nullptr;
      else if constexpr (std::is_function_v<std::remove_pointer_t<Value>>)
        pointer_ = reinterpret_cast<const void*>(value);
      else
        pointer_ = const_cast<const void*>(static_cast<const volatile void*>(value));
    } else {
      whole_ = static_cast<std::int64_t>(value);
      size_ = sizeof(value);
    }
  }

  [[nodiscard]] ArgumentKind kind() const noexcept { return kind_; }
  [[nodiscard]] bool isWhole() const noexcept {
    return kind_ == ArgumentKind::Signed || kind_ == ArgumentKind::Unsigned ||
           kind_ == ArgumentKind::Character;
  }
  [[nodiscard]] std::int64_t whole() const noexcept { return whole_; }
  // In the argument's own width, as "%x" prints it.
  [[nodiscard]] std::uint64_t bits() const noexcept {
    const auto all = static_cast<std::uint64_t>(whole_);
    return size_ < sizeof all ? all & ((std::uint64_t{1} << (8 * size_)) - 1) : all;
  }
  [[nodiscard]] double real() const noexcept { return real_; }
  [[nodiscard]] std::wstring_view text() const noexcept { return {text_, size_}; }
  [[nodiscard]] std::string_view narrow() const noexcept { return {narrow_, size_}; }
  [[nodiscard]] const void* pointer() const noexcept { return pointer_; }

 private:
  void setText(std::wstring_view text) noexcept {
    text_ = text.data();
    size_ = text.size();
  }
  void setNarrow(std::string_view text) noexcept {
    narrow_ = text.data();
    size_ = text.size();
  }

  ArgumentKind kind_ = ArgumentKind::None;
  std::size_t size_ = 0;  // of a number in bytes, of a text in characters
  union {
    std::int64_t whole_ = 0;
    double real_;
    const wchar_t* text_;
    const char* narrow_;
    const void* pointer_;
  };
};

// A conversion of a format, as it stands behind its percent sign.
struct Conversion {
  static constexpr int kNone = -1, kArgument = -2;  // width or precision: not there; "*"

  std::wstring_view flags;
  int width = kNone, precision = kNone;
  wchar_t type = 0;         // 0 at the end of the format
  const wchar_t* end = {};  // behind the type
};

constexpr bool isOneOf(wchar_t c, std::wstring_view set) noexcept {
  return set.find(c) != std::wstring_view::npos;
}

// A width or precision, and `at` behind it.
constexpr int readCount(const wchar_t*& at) noexcept {
  if (*at == L'*') return ++at, Conversion::kArgument;
  if (*at < L'0' || *at > L'9') return Conversion::kNone;
  int count = 0;
  for (; *at >= L'0' && *at <= L'9'; ++at) count = count < 1000 ? count * 10 + (*at - L'0') : 9999;
  return count;
}

constexpr Conversion readConversion(const wchar_t* at) noexcept {
  Conversion result;
  const wchar_t* const flags = at;
  while (isOneOf(*at, L"-+ #0")) ++at;
  result.flags = {flags, static_cast<std::size_t>(at - flags)};
  result.width = readCount(at);
  if (*at == L'.') {
    result.precision = readCount(++at);
    if (result.precision == Conversion::kNone) result.precision = 0;
  }
  while (isOneOf(*at, L"hlLwjzt")) ++at;
  if (*at == L'I') {
    ++at;
    if ((at[0] == L'6' && at[1] == L'4') || (at[0] == L'3' && at[1] == L'2')) at += 2;
  }
  result.type = *at;
  result.end = *at ? at + 1 : at;
  return result;
}

constexpr bool isConversion(wchar_t type) noexcept { return isOneOf(type, L"diuoxXfFeEgGaAsScCp"); }

constexpr bool accepts(wchar_t type, ArgumentKind kind) noexcept {
  const bool isText = kind == ArgumentKind::Text || kind == ArgumentKind::NarrowText;
  const bool isPointer = kind == ArgumentKind::Pointer;
  if (kind == ArgumentKind::None) return false;
  if (isOneOf(type, L"sS")) return isText;
  if (type == L'p') return isPointer;
  if (isOneOf(type, L"fFeEgGaA")) return !isText && !isPointer;
  return !isText && !isPointer && kind != ArgumentKind::Real;
}

// Ends the compilation where the arguments do not fit the format.
consteval void checkFormat(const wchar_t* format, std::initializer_list<ArgumentKind> arguments) {
  const ArgumentKind* next = arguments.begin();
  const auto take = [&](wchar_t type) {
    if (next == arguments.end()) return formatError::tooFewArguments();
    if (!accepts(type, *next++)) formatError::wrongKind();
  };
  for (const wchar_t* at = format; *at;) {
    if (*at++ != L'%') continue;
    if (*at == L'%') {
      ++at;
      continue;
    }
    const Conversion conversion = readConversion(at);
    if (!isConversion(conversion.type)) formatError::unknownConversion();
    if (conversion.width == Conversion::kArgument) take(L'd');
    if (conversion.precision == Conversion::kArgument) take(L'd');
    take(conversion.type);
    at = conversion.end;
  }
  if (next != arguments.end()) formatError::tooManyArguments();
}

// A format for arguments of these types: a literal, checked; or a text at run time.
template <class... Arguments>
class Format {
  static_assert(
      ((argumentKind<Arguments>() != ArgumentKind::None) && ...),
      "an argument is neither text nor number nor pointer: say what of it is to be shown");

 public:
  template <std::size_t size>
  consteval Format(const wchar_t (&literal)[size]) : text_(literal) {
    checkFormat(literal, {argumentKind<Arguments>()...});
  }
  template <std::size_t size>
  Format(wchar_t (&buffer)[size]) noexcept : text_(buffer) {}
  template <class Text>
    requires(!std::is_array_v<Text> && std::is_convertible_v<const Text&, const wchar_t*>)
  Format(const Text& text) noexcept : text_(text) {}

  [[nodiscard]] const wchar_t* text() const noexcept { return text_; }

 private:
  const wchar_t* text_;
};

// For parameters: the arguments, not the format, say what the types are.
template <class... Arguments>
using FormatFor = std::type_identity_t<Format<Arguments...>>;

// The arguments of one call, and where they lie until it returns.
struct FormatArguments {
  const FormatArgument* list;
  std::size_t count;
};
template <std::size_t size>
struct ArgumentList {
  operator FormatArguments() const noexcept { return {list, size}; }

  FormatArgument list[size + 1];  // one more, since none would be no array
};
// Whether an argument is an object, which the runtime's printf cannot print. Typed forms beside a
// virtual variadic function take only such calls: an override that passes a plain text on to its
// base class reaches that class's function, and not, through a typed form, itself.
template <class... Arguments>
concept HasObject = (std::is_class_v<Arguments> || ...);

template <class... Arguments>
[[nodiscard]] ArgumentList<sizeof...(Arguments)> argumentsOf(const Arguments&... arguments) {
  return {{FormatArgument(arguments)..., FormatArgument()}};
}

// Prints to a buffer of `size` characters, terminated and cut off where it ends. Gives the length.
// A null format prints nothing.
ZO_COM_API std::size_t printTo(wchar_t* buffer, std::size_t size, const wchar_t* format,
                               const FormatArguments& arguments) noexcept;

}  // namespace zo
