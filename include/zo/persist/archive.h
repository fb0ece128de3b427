// ZoArchive: how values are stored and read back, whatever they are stored in.
//
//   void Part::store(ZoArchive& archive) const { archive << name_ << length_ << material_; }
//   void Part::load(ZoArchive& archive) { archive >> name_ >> length_ >> material_; }
//
// The base class owns the layout of every type of value and brings all of them down to readBin and
// writeBin, which the archives supply: over memory (memory_archive.h), over a file
// (file_archive.h), over the host framework's archive (mfc_archive.h), or as text for the eye
// (dump_archive.h). An archive either stores or loads, for its whole life.
//
// The `name` of a write is a label: binary archives ignore it, the dump prints it. Composite values
// give their components the label "", but for the code of a vector along an axis.
//
// A value is stored by its exact type, and must be read by the same one. What has no stored type is
// refused by the compiler, which says what to write instead: float, long double, characters, enums,
// narrow texts, pointers and arrays would otherwise be taken for another type. long has 4 bytes, as
// int. Texts also come as wide literals, std::wstring and what converts to std::wstring_view;
// dictionaries and sequences as at the end of this file.
//
// Reading trusts nothing: memory grows only as data arrives, and containers lie at most
// ZoVariant::kMaxDepth deep in one another. What happens when the data ends is the archive's
// choice: its readBin throws, or calls cameShort() and leaves the rest of its buffer alone. The
// base class then gives zeros and empty values and reads on no further in the value at hand;
// containers that lie too deep end a value likewise. What lies deeper is not written either: a
// variant that is too deep throws before its first byte (a dump says so where it ends).
//
// Errors:  as the archive's readBin and writeBin report them; a ZoComException for a variant that
//          is too deep to be written; nothing else throws but std::bad_alloc.
//          A read that throws leaves the value as it was; only a buffer may be filled in part.
// Threads: one thread at a time per archive.
// Cost:    two virtual calls for each number, unless the archive does better.
// Stored:  docs/formats/archive.md.
#pragma once

#include <zo/config.h>
#include <zo/platform_types.h>
#include <zo/text/containers/elements.h>
#include <zo/variant/color.h>

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class ZoCoSystem;
class ZoFileName;
class ZoHnd;
class ZoMatrix;
class ZoPlane;
class ZoPoint;
class ZoString;
class ZoTol;
class ZoVariant;
class ZoVector;
template <class T>
class ZoSequence;
template <class T, class K>
class ZoDict;

namespace zo {

template <class T, class... Types>
inline constexpr bool kIsOneOf = (std::is_same_v<T, Types> || ...);
template <class T, class... Bases>
inline constexpr bool kIsKindOf = (std::is_base_of_v<Bases, T> || ...);

// Where it has 4 bytes; it is a type of its own beside int.
template <class T>
concept ShortLong = kIsOneOf<T, long, unsigned long> && sizeof(T) == sizeof(int);
template <class T>
concept ArchivedNumber =
    ShortLong<T> || kIsOneOf<T, bool, signed char, unsigned char, short, unsigned short, int,
                             unsigned int, std::int64_t, std::uint64_t, double>;
template <class T>
concept ArchivedClass = kIsKindOf<T, _GUID, ZoHnd, ZoTol, ZoCoSystem, ZoMatrix, ZoPlane, ZoVector,
                                  ZoPoint, ZoFileName, ZoVariant, ZoString>;
// A text in a class of its own.
template <class T>
concept ArchivedView =
    std::is_class_v<T> && !ArchivedClass<T> && std::convertible_to<const T&, std::wstring_view>;

// What would be taken for a type that is stored.
template <class T>
concept UnstoredNumber =
    (std::is_arithmetic_v<T> || std::is_null_pointer_v<T>) && !ArchivedNumber<T>;
template <class T>
concept UnstoredEnum = std::is_enum_v<T>;
template <class T>
concept UnstoredPointer =
    (std::is_pointer_v<T> || std::is_member_pointer_v<T>) && !kIsOneOf<T, wchar_t*, const wchar_t*>;

}  // namespace zo

class ZO_COM_API ZoArchive {
 public:
  ZoArchive() = default;
  ZoArchive(const ZoArchive&) = default;
  ZoArchive(ZoArchive&&) = default;
  ZoArchive& operator=(const ZoArchive&) = default;
  ZoArchive& operator=(ZoArchive&&) = default;

  // The order of the virtual functions is part of the interface. Overloads of one name
  // stand twice: zo/config.h.
  virtual bool isStoring() = 0;
  virtual void flush();
  // A scope groups what is written up to its end, for archives that show it.
  virtual void pushScope(const wchar_t* name);
  virtual void popScope();

  // Exactly so many bytes.
  virtual void readBin(void* buffer, unsigned int size) = 0;
#ifndef ZO_OVERLOADS_BACKWARDS
  virtual void read(_GUID& value);
  // The id as 4 bytes, although it is written as 8: the next 4 bytes are read as what follows. Kept
  // on purpose; stored data relies on where a reader stands.
  virtual void read(ZoHnd& value);
  virtual void read(ZoTol& value);
  // Axes that span nothing give the world's system at the world's origin.
  virtual void read(ZoCoSystem& value);
  virtual void read(ZoMatrix& value);
  // A plane that is none of the predefined ones comes back with the reference point nearest to the
  // origin and a unit normal.
  virtual void read(ZoPlane& value);
  virtual void read(ZoVector& value);
  virtual void read(ZoPoint& value);
  virtual void read(ZoFileName& value);
  // Of equal keys in a dictionary the first one stays. A sequence of code List is made as a list,
  // any other as an array.
  virtual void read(ZoVariant& value);
  virtual void read(ZoString& value);
  virtual void read(ZoColor& value);
  // Gives a new text, never null, which the caller frees with delete[]. What the pointer pointed to
  // before is not freed.
  virtual void read(wchar_t*& value);
  virtual void read(double& value);
  virtual void read(std::int64_t& value);
  virtual void read(std::uint64_t& value);
  virtual void read(unsigned int& value);
  virtual void read(int& value);
  virtual void read(unsigned short& value);
  virtual void read(short& value);
  virtual void read(unsigned char& value);
  virtual void read(signed char& value);
  virtual void read(bool& value);  // true for any byte but 0
#else
  virtual void read(bool& value);
  virtual void read(signed char& value);
  virtual void read(unsigned char& value);
  virtual void read(short& value);
  virtual void read(unsigned short& value);
  virtual void read(int& value);
  virtual void read(unsigned int& value);
  virtual void read(std::uint64_t& value);
  virtual void read(std::int64_t& value);
  virtual void read(double& value);
  virtual void read(wchar_t*& value);
  virtual void read(ZoColor& value);
  virtual void read(ZoString& value);
  virtual void read(ZoVariant& value);
  virtual void read(ZoFileName& value);
  virtual void read(ZoPoint& value);
  virtual void read(ZoVector& value);
  virtual void read(ZoPlane& value);
  virtual void read(ZoMatrix& value);
  virtual void read(ZoCoSystem& value);
  virtual void read(ZoTol& value);
  virtual void read(ZoHnd& value);
  virtual void read(_GUID& value);
#endif
  template <zo::ShortLong T>
  void read(T& value) {
    std::conditional_t<std::is_signed_v<T>, int, unsigned int> number = 0;
    read(number);
    value = number;
  }

  virtual void writeBin(const void* data, unsigned int size, const wchar_t* name) = 0;
#ifndef ZO_OVERLOADS_BACKWARDS
  virtual void write(const _GUID& value, const wchar_t* name);
  virtual void write(const ZoHnd& value, const wchar_t* name);
  virtual void write(const ZoTol& value, const wchar_t* name);
  virtual void write(const ZoCoSystem& value, const wchar_t* name);
  virtual void write(const ZoMatrix& value, const wchar_t* name);
  virtual void write(const ZoPlane& value, const wchar_t* name);
  virtual void write(const ZoVector& value, const wchar_t* name);
  virtual void write(const ZoPoint& value, const wchar_t* name);
  // A name of more than 65535 characters is cut there.
  virtual void write(const ZoFileName& value, const wchar_t* name);
  // A reference is written as its value.
  virtual void write(const ZoVariant& value, const wchar_t* name);
  virtual void write(const ZoString& value, const wchar_t* name);
  virtual void write(ZoColor& value, const wchar_t* name);
  virtual void write(const wchar_t* text, const wchar_t* name);  // null as an empty text
  virtual void write(double value, const wchar_t* name);
  virtual void write(std::int64_t value, const wchar_t* name);
  virtual void write(std::uint64_t value, const wchar_t* name);
  virtual void write(unsigned int value, const wchar_t* name);
  virtual void write(int value, const wchar_t* name);
  virtual void write(unsigned short value, const wchar_t* name);
  virtual void write(short value, const wchar_t* name);
  virtual void write(unsigned char value, const wchar_t* name);
  virtual void write(signed char value, const wchar_t* name);
  virtual void write(bool value, const wchar_t* name);
#else
  virtual void write(bool value, const wchar_t* name);
  virtual void write(signed char value, const wchar_t* name);
  virtual void write(unsigned char value, const wchar_t* name);
  virtual void write(short value, const wchar_t* name);
  virtual void write(unsigned short value, const wchar_t* name);
  virtual void write(int value, const wchar_t* name);
  virtual void write(unsigned int value, const wchar_t* name);
  virtual void write(std::uint64_t value, const wchar_t* name);
  virtual void write(std::int64_t value, const wchar_t* name);
  virtual void write(double value, const wchar_t* name);
  virtual void write(const wchar_t* text, const wchar_t* name);
  virtual void write(ZoColor& value, const wchar_t* name);
  virtual void write(const ZoString& value, const wchar_t* name);
  virtual void write(const ZoVariant& value, const wchar_t* name);
  virtual void write(const ZoFileName& value, const wchar_t* name);
  virtual void write(const ZoPoint& value, const wchar_t* name);
  virtual void write(const ZoVector& value, const wchar_t* name);
  virtual void write(const ZoPlane& value, const wchar_t* name);
  virtual void write(const ZoMatrix& value, const wchar_t* name);
  virtual void write(const ZoCoSystem& value, const wchar_t* name);
  virtual void write(const ZoTol& value, const wchar_t* name);
  virtual void write(const ZoHnd& value, const wchar_t* name);
  virtual void write(const _GUID& value, const wchar_t* name);
#endif

  template <zo::ShortLong T>
  void write(T value, const wchar_t* name) {
    write(static_cast<std::conditional_t<std::is_signed_v<T>, int, unsigned int>>(value), name);
  }
  template <zo::ArchivedView T>
  void write(const T& text, const wchar_t* name) {
    writeView(text, name);
  }
  void writeView(std::wstring_view text, const wchar_t* name);
  // clang-format off: the reasons show in the compiler's messages
  template <zo::UnstoredNumber T>
  void write(T, const wchar_t*) = delete;  // not stored: write a double, an int or a wide text instead
  template <zo::UnstoredEnum T>
  void write(T, const wchar_t*) = delete;  // an enum: write its number, static_cast<int>(value)
  template <zo::UnstoredPointer T>
  void write(T, const wchar_t*) = delete;  // a pointer or narrow text: write a wide text, or what it points to
  // clang-format on

  // Whether texts are read as bytes in the ANSI code page. They are always written as UTF-16.
  [[nodiscard]] virtual bool needToConvertToUnicode() const;

 protected:
  // No archive is destroyed through this class.
  ~ZoArchive() = default;

  // Whether pointers in variants take 4 bytes, as the host's own filers have it.
  [[nodiscard]] virtual bool isdrftfilefiler() const;

  // For a readBin that got fewer bytes than it was asked for and does not throw.
  static void cameShort() noexcept;
};

static_assert(sizeof(ZoArchive) == sizeof(void*));

// ---- Without labels ----

template <class T>
  requires zo::ArchivedNumber<T> || zo::ArchivedClass<T> || zo::ArchivedView<T>
ZoArchive& operator<<(ZoArchive& archive, const T& value) {
  archive.write(value, L"");
  return archive;
}
inline ZoArchive& operator<<(ZoArchive& archive, const wchar_t* text) {
  archive.write(text, L"");
  return archive;
}
inline ZoArchive& operator<<(ZoArchive& archive, ZoColor value) {
  archive.write(value, L"");
  return archive;
}
template <class T>
  requires zo::ArchivedNumber<T> || zo::ArchivedClass<T> || std::is_same_v<T, ZoColor> ||
           std::is_same_v<T, wchar_t*>
ZoArchive& operator>>(ZoArchive& archive, T& value) {
  archive.read(value);
  return archive;
}
ZO_COM_API ZoArchive& operator>>(ZoArchive& archive, std::wstring& text);

// clang-format off: the reasons show in the compiler's messages
template <zo::UnstoredNumber T>
ZoArchive& operator<<(ZoArchive&, T) = delete;  // not stored: write a double, an int or a wide text instead
template <zo::UnstoredNumber T>
ZoArchive& operator>>(ZoArchive&, T&) = delete;  // not stored: read a double, an int or a ZoString instead
template <zo::UnstoredEnum T>
ZoArchive& operator<<(ZoArchive&, T) = delete;  // an enum: write its number, static_cast<int>(value)
template <zo::UnstoredEnum T>
ZoArchive& operator>>(ZoArchive&, T&) = delete;  // an enum: read its number, an int
template <class T>
ZoArchive& operator<<(ZoArchive&, const T*) = delete;  // a pointer or narrow text: write a wide text, or what it points to
template <class T>
  requires(!std::is_same_v<T, wchar_t>)
ZoArchive& operator>>(ZoArchive&, T*&) = delete;  // a pointer: read what it points to
// clang-format on

// ---- Containers ----

// Of variants: as the variant that holds them, without a copy. What is read replaces the elements;
// there are none when the archive has another kind of value.
ZO_COM_API ZoArchive& operator<<(ZoArchive& archive, const ZoDict<ZoVariant, ZoString>& dict);
ZO_COM_API ZoArchive& operator>>(ZoArchive& archive, ZoDict<ZoVariant, ZoString>& dict);
ZO_COM_API ZoArchive& operator<<(ZoArchive& archive, const ZoSequence<ZoVariant>& sequence);
ZO_COM_API ZoArchive& operator>>(ZoArchive& archive, ZoSequence<ZoVariant>& sequence);

namespace zo {

template <class C>
concept TypedSequence = std::is_base_of_v<ZoSequence<typename C::value_type>, C> &&
                        !std::is_same_v<typename C::value_type, ZoVariant>;
template <class C>
concept TypedDict = std::is_base_of_v<ZoDict<typename C::mapped_type, typename C::key_type>, C> &&
                    !std::is_base_of_v<ZoDict<ZoVariant, ZoString>, C>;

// Whether the data ended within the element, where the archive does not throw then.
ZO_COM_API void beginElement() noexcept;
ZO_COM_API bool isElementShort() noexcept;

// Calls readOne for as many elements as the archive has.
template <class ReadOne>
void readElements(ZoArchive& archive, ReadOne readOne) {
  unsigned int entries = 0;
  for (archive.read(entries); entries > 0; --entries) {
    beginElement();
    if (!readOne()) return;
  }
}

}  // namespace zo

// Of other types: their number, 4 bytes, and then each, of a dictionary its key and its value, by
// its own operator. Readers keep the first of equal keys.
template <zo::TypedSequence C>
ZoArchive& operator<<(ZoArchive& archive, const C& sequence) {
  archive.pushScope(L"List");
  archive.write(sequence.entries(), L"Entries");
  for (const auto& element : sequence) archive << element;
  archive.popScope();
  return archive;
}
template <zo::TypedSequence C>
ZoArchive& operator>>(ZoArchive& archive, C& sequence) {
  C read;
  zo::readElements(archive, [&] {
    typename C::value_type element{};
    archive >> element;
    if (zo::isElementShort()) return false;
    zo::throwIfNoMemory(read.append(std::move(element)));
    return true;
  });
  sequence = std::move(read);
  return archive;
}
template <zo::TypedDict C>
ZoArchive& operator<<(ZoArchive& archive, const C& dict) {
  archive.pushScope(L"HashDictionary");
  archive.write(dict.entries(), L"Entries");
  for (const auto& [key, value] : dict) archive << key << value;
  archive.popScope();
  return archive;
}
template <zo::TypedDict C>
ZoArchive& operator>>(ZoArchive& archive, C& dict) {
  C read;
  zo::readElements(archive, [&] {
    typename C::key_type key{};
    typename C::mapped_type value{};
    archive >> key >> value;
    if (zo::isElementShort()) return false;
    zo::throwIfNoMemory(read.insertAt(std::move(key), std::move(value)));
    return true;
  });
  dict = std::move(read);
  return archive;
}
