// The value that modules exchange: one of ten kinds of value together with a type code that says
// what it means (a length, a file name, a catalogue) and a word of flags. Sequences and
// dictionaries hold further variants, so that one variant can be a whole tree.
//
// A variant owns its value, with one exception: a reference variant, made from a pointer, reads and
// writes the caller's variable, which must outlive it. Copies are deep (texts share their storage
// until one is changed); a copy of a reference refers to the same variable. So nothing that is put
// into a sequence or dictionary can hold that very sequence or dictionary, only a copy of it. The
// one way to make a circle is to move a variant into the container that it itself holds: don't.
//
// Values convert from kind to kind where that makes sense: docs/variant.md has the table. What it
// calls refused gives 1 and leaves the target as it was.
//
// Texts keep zero characters, except those that are given or referred to as a wchar_t*, which end
// at the first one.
//
// Depth:   destroying, copying, comparing and find() work at any depth. What stores, prints,
//          exchanges or makes variants (put(), text form, archives, OLE Automation) refuses
//          containers that lie more than kMaxDepth deep in one another.
// Errors:  as said with each operation; nothing throws but std::bad_alloc, and then nothing has
//          changed.
// Threads: one thread at a time per variant, and per text storage that variants share; so give
//          another thread a copy().
// Cost:    16 bytes. Integers, reals, pointers and references need no memory; texts share their
//          storage; points, vectors, GUIDs and containers take one block and more.
// Text:    docs/variant.md, "Text form".
#pragma once

#include <zo/config.h>
#include <zo/containers.h>
#include <zo/geometry/point.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>
#include <zo/text/containers/text_keys.h>
#include <zo/text/string.h>
#include <zo/variant/guid.h>
#include <zo/variant/type.h>
#include <zo/variant/variant_elements.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class ZoCoSystem;
class ZoColor;
class ZoFileName;
class ZoMatrix;
class ZoPlane;
class ZoVariant;

namespace zo {

class LentVariant;

template <class T, class... Types>
concept OneOfTypes = (std::same_as<T, Types> || ...);

template <class T>
concept CharacterType = OneOfTypes<T, char, wchar_t, char8_t, char16_t, char32_t>;

// Integers that a variant widens without loss: to int, or to 64 bits when they are unsigned and as
// large as an int.
template <class T>
concept WidenedInteger =
    std::integral<T> && sizeof(T) < 8 && !OneOfTypes<T, int, bool> && !CharacterType<T>;
template <WidenedInteger T>
using Widened = std::conditional_t<(sizeof(T) < 4 || std::is_signed_v<T>), int, std::int64_t>;

// What a pointer is not made for: variables that no variant refers to, and values that it would
// hold by their address.
template <class T>
concept NoReferenceTarget =
    (std::is_const_v<T> && !OneOfTypes<T, const char, const wchar_t>) ||
    (std::is_arithmetic_v<T> &&
     !OneOfTypes<T, int, std::int64_t, double, char, wchar_t, const char, const wchar_t>) ||
    OneOfTypes<T, const wchar_t*, ZoString, std::wstring, ZoVariant, ZoSequence<ZoVariant>,
               ZoArray<ZoVariant>, ZoList<ZoVariant>, ZoDict<ZoVariant, ZoString>,
               ZoHashDict<ZoVariant, ZoString>>;

}  // namespace zo

class ZO_COM_API ZoVariant {
 public:
  // The kinds. They reach archives: never renumber.
  enum Type : unsigned int {
    kEmpty = 0,
    kInt = 1,
    kBigInt = 2,
    kReal = 3,
    kString = 4,
    kPointer = 5,
    kPoint = 6,
    kVector = 7,
    kDict = 8,
    kSequence = 9,
    kGuid = 10
  };
  using Sequence = ZoSequence<ZoVariant>;
  using Dict = ZoDict<ZoVariant, ZoString>;

  // How deep sequences and dictionaries may lie in one another in what is stored, exchanged, or
  // built from text.
  static constexpr unsigned int kMaxDepth = 256;

  // ---- Construction ----
  // Empty, with code NoType. Everywhere the code defaults to the base code of the kind. A code is
  // kept when it fits the kind, that is when its base code is that of the kind (for texts also
  // Dict), when it is NoType, or when the variant is empty; otherwise the code is 0. Of the flags
  // the bits 0 to 25 are kept.
  ZoVariant() noexcept : ZoVariant(kEmpty, ZoTypeCode::NoType, 0, Payload{}) {}
  ZoVariant(int value, ZoTypeCode code = ZoTypeCode::Int, unsigned int flags = 0) noexcept
      : ZoVariant(kInt, code, flags, Payload{.bigInt = value}) {}
  ZoVariant(std::int64_t value, ZoTypeCode code = ZoTypeCode::BigInt,
            unsigned int flags = 0) noexcept
      : ZoVariant(kBigInt, code, flags, Payload{.bigInt = value}) {}
  ZoVariant(double value, ZoTypeCode code = ZoTypeCode::Real, unsigned int flags = 0) noexcept
      : ZoVariant(kReal, code, flags, Payload{.real = value}) {}
  // Other integers become the smaller kind that holds all their values; bool one of code Bool.
  template <zo::WidenedInteger T>
  ZoVariant(T value, ZoTypeCode code = codeOf(sizeof(zo::Widened<T>) == 4 ? kInt : kBigInt),
            unsigned int flags = 0) noexcept
      : ZoVariant(static_cast<zo::Widened<T>>(value), code, flags) {}
  template <std::same_as<bool> T>
  ZoVariant(T value, ZoTypeCode code = ZoTypeCode::Bool, unsigned int flags = 0) noexcept
      : ZoVariant(static_cast<int>(value), code, flags) {}
  // Null counts as an empty text.
  ZoVariant(const wchar_t* text, ZoTypeCode code = ZoTypeCode::String, unsigned int flags = 0)
      : ZoVariant(ZoString(text), code, flags) {}
  ZoVariant(ZoString text, ZoTypeCode code = ZoTypeCode::String, unsigned int flags = 0) noexcept
      : ZoVariant(kString, code, flags, nullptr) {
    ::new (static_cast<void*>(&payload_)) ZoString(std::move(text));
  }
  ZoVariant(std::wstring_view text, ZoTypeCode code = ZoTypeCode::String, unsigned int flags = 0)
      : ZoVariant(ZoString(text), code, flags) {}
  ZoVariant(const std::wstring& text, ZoTypeCode code = ZoTypeCode::String, unsigned int flags = 0)
      : ZoVariant(std::wstring_view(text), code, flags) {}
  ZoVariant(const ZoSubString& text, ZoTypeCode code = ZoTypeCode::String, unsigned int flags = 0)
      : ZoVariant(ZoString(text), code, flags) {}
  // The name as a text.
  ZoVariant(const ZoFileName& name, ZoTypeCode code = ZoTypeCode::FName, unsigned int flags = 0);
  ZoVariant(const _GUID& guid, ZoTypeCode code = ZoTypeCode::Guid, unsigned int flags = 0);
  ZoVariant(const ZoPoint& point, ZoTypeCode code = ZoTypeCode::Point, unsigned int flags = 0);
  ZoVariant(const ZoVector& vector, ZoTypeCode code = ZoTypeCode::Vector, unsigned int flags = 0);
  // Copies the elements: a list becomes a list, anything else an array.
  ZoVariant(const Sequence& sequence, ZoTypeCode code = ZoTypeCode::Sequence,
            unsigned int flags = 0);
  ZoVariant(const Dict& dict, ZoTypeCode code = ZoTypeCode::Dict, unsigned int flags = 0);
  // Take the elements over; what was given is empty afterwards.
  ZoVariant(ZoArray<ZoVariant>&& array, ZoTypeCode code = ZoTypeCode::Sequence,
            unsigned int flags = 0);
  ZoVariant(ZoList<ZoVariant>&& list, ZoTypeCode code = ZoTypeCode::Sequence,
            unsigned int flags = 0);
  ZoVariant(ZoHashDict<ZoVariant, ZoString>&& dict, ZoTypeCode code = ZoTypeCode::Dict,
            unsigned int flags = 0);
  // The address only: whatever it points to is neither owned nor counted.
  explicit ZoVariant(void* pointer, ZoTypeCode code = ZoTypeCode::Pointer,
                     unsigned int flags = 0) noexcept
      : ZoVariant(kPointer, code, flags, Payload{.pointer = pointer}) {}
  // The kind's zero value: 0, the empty text, the origin, no elements. A sequence of code List is
  // made as a list.
  ZoVariant(Type kind) : ZoVariant(kind, codeOf(kind)) {}
  ZoVariant(Type kind, ZoTypeCode code, unsigned int flags = 0);

  // Reference variants. A null pointer gives a variant with the kind's zero value that is no
  // reference. Writing a text to a wchar_t* variable stores a new text there, which whoever owns
  // the variable frees with delete[]; the text that it pointed to before is not freed.
  explicit ZoVariant(int* variable, ZoTypeCode code = ZoTypeCode::Int,
                     unsigned int flags = 0) noexcept
      : ZoVariant(kInt, code, flags, variable) {}
  explicit ZoVariant(std::int64_t* variable, ZoTypeCode code = ZoTypeCode::BigInt,
                     unsigned int flags = 0) noexcept
      : ZoVariant(kBigInt, code, flags, variable) {}
  explicit ZoVariant(double* variable, ZoTypeCode code = ZoTypeCode::Real,
                     unsigned int flags = 0) noexcept
      : ZoVariant(kReal, code, flags, variable) {}
  explicit ZoVariant(wchar_t** variable, ZoTypeCode code = ZoTypeCode::String,
                     unsigned int flags = 0) noexcept
      : ZoVariant(kString, code, flags, static_cast<void*>(variable)) {
    if (!variable) ::new (static_cast<void*>(&payload_)) ZoString;
  }

  // What has no kind, or would become another one than it looks. The compiler shows these lines.
  template <std::same_as<unsigned long long> T, class... Rest>
  ZoVariant(T, Rest...) = delete;  // it may not fit: write static_cast<std::int64_t>(value)
  template <std::same_as<long double> T, class... Rest>
  ZoVariant(T, Rest...) = delete;  // it would lose digits: write static_cast<double>(value)
  template <zo::CharacterType T, class... Rest>
  ZoVariant(T, Rest...) = delete;  // for a text write ZoString(c), for the number int{c}
  template <class T, class... Rest>
    requires(std::is_enum_v<T> && !std::same_as<T, Type>)
  ZoVariant(T, Rest...) = delete;  // for the number of an enumerator write static_cast<int>(value)
  template <class T, class... Rest>
    requires std::convertible_to<const T&, std::string_view>
  ZoVariant(const T&, Rest...) = delete;  // narrow text: make a ZoString of it
  template <std::same_as<ZoColor> T, class... Rest>
  ZoVariant(const T&, Rest...) = delete;  // no kind for colours: write color.toString()
  template <zo::OneOfTypes<ZoPlane, ZoMatrix, ZoCoSystem> T, class... Rest>
  ZoVariant(const T&, Rest...) = delete;  // no kind for it: store its points and vectors
  template <zo::NoReferenceTarget T, class... Rest>
  explicit ZoVariant(T*, Rest...) = delete;  // write *pointer; no reference to such a variable
  template <class... Rest>
  ZoVariant(std::nullptr_t, Rest...) = delete;  // write ZoVariant() for nothing, L"" for no text

  ZoVariant(const ZoVariant& other)
      : code_(other.code_), word_(other.word_), payload_(other.payload_) {
    if (other.isPlain()) return;
    if (other.type() == kString) {
      ::new (static_cast<void*>(&payload_)) ZoString(other.ownText());
    } else {
      copyBlock(other);
    }
  }
  // The other one is a default variant afterwards.
  ZoVariant(ZoVariant&& other) noexcept
      : code_(std::exchange(other.code_, static_cast<unsigned int>(ZoTypeCode::NoType))),
        word_(std::exchange(other.word_, 0)),
        payload_(other.payload_) {}
  ~ZoVariant() {
    if (isPlain()) return;
    if (type() == kString) {
      ownText().~ZoString();
    } else {
      freeBlock();
    }
  }

  // The variant becomes what the other one is, flags and reference included; the variable that a
  // reference referred to is not written.
  ZoVariant& operator=(const ZoVariant& other) {
    if (this != &other) ZoVariant(other).swap(*this);
    return *this;
  }
  ZoVariant& operator=(ZoVariant&& other) noexcept {
    ZoVariant(std::move(other)).swap(*this);
    return *this;
  }
  // Gives the variant a value of any kind from which a variant can be made. A reference is written
  // as by set(); otherwise the variant takes the value's kind. Its flags stay, and so does its code
  // when the kind stays; else the code is the base code of the new kind.
  template <class T>
    requires(!std::same_as<std::remove_cvref_t<T>, ZoVariant> && std::convertible_to<T, ZoVariant>)
  ZoVariant& operator=(T&& value) {
    assign(ZoVariant(std::forward<T>(value)));
    return *this;
  }
  template <class T>
    requires(!std::same_as<std::remove_cvref_t<T>, ZoVariant> && !std::convertible_to<T, ZoVariant>)
  ZoVariant& operator=(T&&) = delete;  // not a variant by itself: write ZoVariant(value)
  void swap(ZoVariant& other) noexcept {
    std::swap(code_, other.code_);
    std::swap(word_, other.word_);
    std::swap(payload_, other.payload_);
  }
  // What another thread may be given: a copy that shares nothing with this variant, its texts and
  // keys included. References become plain values.
  [[nodiscard]] ZoVariant copy() const;
  // Makes it a default variant, without flags.
  void clear() noexcept { *this = ZoVariant(); }

  // ---- What it is ----
  [[nodiscard]] Type type() const noexcept {
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): no other kind is ever stored
    return static_cast<Type>(word_ & kKindBits);
  }
  [[nodiscard]] bool isTypeOf(Type kind) const noexcept { return type() == kind; }
  [[nodiscard]] bool isEmpty() const noexcept { return type() == kEmpty; }
  [[nodiscard]] bool isReference() const noexcept { return (word_ & kReferenceBit) != 0; }
  // True for integers and reals of any size.
  [[nodiscard]] bool isNumber() const noexcept { return word_ % 32 - 1 < 3; }

  // The rule of the constructors: whether a code goes with a kind.
  [[nodiscard]] static constexpr bool isFitting(ZoTypeCode code, Type kind) noexcept {
    if (code == ZoTypeCode::NoType || kind == kEmpty) return true;
    const ZoTypeCode base = ZoType::baseCode(code);
    return base == codeOf(kind) || (kind == kString && base == ZoTypeCode::Dict);
  }
  [[nodiscard]] ZoTypeCode code() const noexcept { return static_cast<ZoTypeCode>(code_); }
  // Returns 0, or 1 when the code does not fit the kind; the code then stays.
  [[nodiscard]] int setCode(ZoTypeCode code) noexcept;

  [[nodiscard]] unsigned int flags() const noexcept { return word_ >> kFlagShift; }
  [[nodiscard]] bool isFlagged(unsigned int flag) const noexcept { return (flags() & flag) != 0; }
  // Whether containers lie more than kMaxDepth deep in one another, `outer` levels around this one
  // counted in. Looks at the containers' elements once, as far down as the limit.
  [[nodiscard]] bool isTooDeep(unsigned int outer = 0) const noexcept;
  // Kind, reference mark and flags in one word, as archives store it: the flags from bit 6 on.
  [[nodiscard]] unsigned int typeWord() const noexcept { return word_; }
  // Replace the whole word; bits above 25 are dropped. The second form takes
  // ZoType::flagsToString's letters.
  void setFlags(unsigned int flags) noexcept {
    word_ = (word_ & (kKindBits | kReferenceBit)) | flags << kFlagShift;
  }
  void setFlags(ZoString& letters) noexcept { setFlags(ZoType::stringToFlags(letters)); }
  void resetFlag(unsigned int flag) noexcept { setFlags(flags() & ~flag); }

  // ---- Reading: the value, converted ----
  // Returns 0, or 1 when the conversion is refused; the target then stays as it was.
  [[nodiscard]] int get(int& out) const noexcept;
  [[nodiscard]] int get(std::int64_t& out) const noexcept;
  [[nodiscard]] int get(double& out) const noexcept;
  [[nodiscard]] int get(ZoString& out) const;
  [[nodiscard]] int get(void*& out) const noexcept;
  [[nodiscard]] int get(ZoPoint& out) const noexcept;
  [[nodiscard]] int get(ZoVector& out) const noexcept;
  [[nodiscard]] int get(_GUID& out) const noexcept;
  [[nodiscard]] int get(Sequence& out) const;  // replaces the elements; as ZoSequence::copyFrom
  [[nodiscard]] int get(Dict& out) const;      // replaces the entries

  // The same, with what to answer when the conversion is refused.
  [[nodiscard]] int asInt(int otherwise = 0) const noexcept { return as(otherwise); }
  [[nodiscard]] std::int64_t asBigInt(std::int64_t otherwise = 0) const noexcept {
    return as(otherwise);
  }
  [[nodiscard]] double asReal(double otherwise = 0) const noexcept { return as(otherwise); }
  // Every kind has a text: that of containers is their text form, and that of an empty variant is
  // refused.
  [[nodiscard]] ZoString asString(ZoString otherwise = {}) const {
    return as(std::move(otherwise));
  }
  [[nodiscard]] void* asPointer(void* otherwise = nullptr) const noexcept { return as(otherwise); }
  [[nodiscard]] ZoPoint asPoint(ZoPoint otherwise = {}) const noexcept { return as(otherwise); }
  [[nodiscard]] ZoVector asVector(ZoVector otherwise = {}) const noexcept { return as(otherwise); }
  [[nodiscard]] _GUID asGuid(_GUID otherwise = {}) const noexcept { return as(otherwise); }

  // The container itself, or null for another kind. Valid until the variant changes its value.
  [[nodiscard]] Sequence* asSequence() noexcept {
    return type() == kSequence ? payload_.sequence : nullptr;
  }
  [[nodiscard]] const Sequence* asSequence() const noexcept {
    return type() == kSequence ? payload_.sequence : nullptr;
  }
  [[nodiscard]] Dict* asDict() noexcept { return type() == kDict ? payload_.dict : nullptr; }
  [[nodiscard]] const Dict* asDict() const noexcept {
    return type() == kDict ? payload_.dict : nullptr;
  }
  // The elements themselves, moved out: the variant keeps kind, code and flags, but no elements.
  // Another kind gives an empty container and stays as it is.
  [[nodiscard]] ZoHashDict<ZoVariant, ZoString> takeDict();
  [[nodiscard]] ZoArray<ZoVariant> takeArray();  // of a list, too
  // The container, but never without one: an empty variant becomes one without elements (its flags
  // stay); any other kind gives a scratch container, one per thread and kept for good, that
  // belongs to no variant and is emptied each time it is given. The const forms give an empty
  // container for other kinds.
  operator Sequence&();
  operator const Sequence&() const noexcept;
  operator Dict&();
  operator const Dict&() const noexcept;

  // ---- Writing: the value, converted to the variant's kind ----
  // Kind, code and flags stay; an empty variant takes kind and code of the value. A reference
  // writes its variable; a wchar_t* takes no text with a zero character. Returns 0, or 1 when the
  // conversion is refused.
  [[nodiscard]] int set(const ZoVariant& value);
  template <class T>
    requires(!std::same_as<std::remove_cvref_t<T>, ZoVariant> && std::convertible_to<T, ZoVariant>)
  [[nodiscard]] int set(T&& value) {
    return set(ZoVariant(std::forward<T>(value)));
  }
  template <class T>
    requires(!std::same_as<std::remove_cvref_t<T>, ZoVariant> && !std::convertible_to<T, ZoVariant>)
  int set(T&&) = delete;  // not a variant by itself: write ZoVariant(value)

  // ---- Elements ----
  // Number of elements; 0 for kinds that have none.
  [[nodiscard]] unsigned int entries() const noexcept;
  // The element at a position of a sequence, or with a key in a dictionary; null when there is
  // none.
  [[nodiscard]] ZoVariant* at(unsigned int i) noexcept;
  [[nodiscard]] const ZoVariant* at(unsigned int i) const noexcept;
  [[nodiscard]] ZoVariant* at(std::wstring_view key);
  [[nodiscard]] const ZoVariant* at(std::wstring_view key) const;

  // All of them, for a range-for (zo/variant/variant_elements.h).
  [[nodiscard]] inline zo::VariantElements<ZoVariant> elements() & noexcept;
  [[nodiscard]] inline zo::VariantElements<const ZoVariant> elements() const& noexcept;
  void elements() && = delete;
  void elements() const&& = delete;

  // Elements of elements by path: keys and positions with '/' between them, "parts/3/length". In a
  // key, "~1" stands for '/' and "~0" for '~'. The empty path is the variant itself.
  // Null when the path leads nowhere.
  [[nodiscard]] ZoVariant* find(std::wstring_view path);
  [[nodiscard]] const ZoVariant* find(std::wstring_view path) const;
  // What is there, or an empty variant: value(L"parts/3/length").asReal(1.0) needs no look first.
  [[nodiscard]] const ZoVariant& value(std::wstring_view path) const&;
  [[nodiscard]] ZoVariant value(std::wstring_view path) const&& { return value(path); }
  // Its text, or `otherwise` when nothing with a text is there.
  [[nodiscard]] ZoString text(std::wstring_view path, ZoString otherwise = {}) const {
    return value(path).asString(std::move(otherwise));
  }
  // Puts a value where the path leads, replacing what is there. What is missing on the way is made:
  // an entry of a dictionary, an element at the end of a sequence; an empty variant becomes a
  // dictionary. Returns 0; or 1 when the path runs through another kind or past the end of a
  // sequence, or when containers would lie more than kMaxDepth deep in this variant, and 2 when
  // there is no memory; then nothing has changed.
  [[nodiscard]] int put(std::wstring_view path, ZoVariant value);
  // A key as it stands in a path.
  [[nodiscard]] static ZoString pathStep(std::wstring_view key);

  // ---- Comparing ----
  // The same kind, code, flags and value, whether by reference or not: texts, pointers and numbers
  // exactly (not-a-number equals itself), the same elements, dictionaries in any order.
  // Memory is needed only for containers that lie more than kMaxDepth deep.
  friend ZO_COM_API bool operator==(const ZoVariant& a, const ZoVariant& b);
  // The values only, whatever their codes and flags: numbers of any kind by their difference
  // and points by their distance within the point tolerance, vectors within the vector tolerance,
  // the rest exactly. Identical numbers are equal, infinities and not-a-number included.
  [[nodiscard]] bool isEqualTo(const ZoVariant& other, const ZoTol& tol = ZoTol::s_default) const;

  // ---- Text form ----
  // The whole value with kind, code and flags as a text that parse() reads back. Sequences and
  // dictionaries take a line for each element, indented by one tab a level, starting at `tabs`;
  // dictionaries come in the order of their keys' code units. A reference is written as its value.
  // Equal variants have the same text, but for the sign of a zero and the case of keys.
  [[nodiscard]] ZoString format(unsigned int tabs = 0) const;
  // Returns 1 when containers lie more than kMaxDepth deep or the text would be too long for a
  // string; the text is then empty, as is that of the form above.
  [[nodiscard]] int format(ZoString& out, unsigned int tabs = 0) const;
  // Reads a text form. Returns 0; or 1 when the text is none, and then the variant stays as it was
  // and end, where given, receives the position of what is wrong.
  [[nodiscard]] int parse(std::wstring_view text, unsigned int* end = nullptr);

  // The parts of the text form: name of the type, flags with their colon, indentation.
  [[nodiscard]] ZoString printType() const;
  [[nodiscard]] ZoString printFlags() const;
  [[nodiscard]] static ZoString printTabs(unsigned int tabs) {
    return ZoString().append(L'\t', tabs);
  }

 private:
  static constexpr unsigned int kKindBits = 0x1F;
  static constexpr unsigned int kReferenceBit = 0x20;
  static constexpr unsigned int kFlagShift = 6;

  union Payload {
    std::int64_t bigInt;  // of integers too
    double real;
    void* pointer;
    ZoPoint* point;
    ZoVector* vector;
    _GUID* guid;
    Dict* dict;
    Sequence* sequence;
    // Of references, and then of the variable.
    int* integerRef;
    std::int64_t* bigIntRef;
    double* realRef;
    wchar_t** textRef;
    // An owned text lies here as a ZoString, which is a pointer to its characters.
  };

  ZoVariant(Type kind, ZoTypeCode code, unsigned int flags, Payload payload) noexcept
      : code_(isFitting(code, kind) ? static_cast<unsigned int>(code) : 0),
        word_(kind | flags << kFlagShift),
        payload_(payload) {}
  // A reference, or a zero value when the variable is null; neither has a block.
  ZoVariant(Type kind, ZoTypeCode code, unsigned int flags, void* variable) noexcept
      : ZoVariant(kind, code, flags, Payload{}) {
    if (!variable) return;
    word_ |= kReferenceBit;
    payload_.pointer = variable;
  }

  static constexpr ZoTypeCode codeOf(Type kind) noexcept {
    constexpr ZoTypeCode codes[] = {ZoTypeCode::NoType,   ZoTypeCode::Int,    ZoTypeCode::BigInt,
                                    ZoTypeCode::Real,     ZoTypeCode::String, ZoTypeCode::Pointer,
                                    ZoTypeCode::Point,    ZoTypeCode::Vector, ZoTypeCode::Dict,
                                    ZoTypeCode::Sequence, ZoTypeCode::Guid};
    return codes[kind];
  }
  // Copying the words copies the value: no block is owned.
  [[nodiscard]] bool isPlain() const noexcept {
    constexpr std::uint64_t kPlainKinds =
        1u << kEmpty | 1u << kInt | 1u << kBigInt | 1u << kReal | 1u << kPointer;
    constexpr std::uint64_t kReferences = 0xFFFFFFFF'00000000;
    return (((kPlainKinds | kReferences) >> (word_ & (kKindBits | kReferenceBit))) & 1) != 0;
  }
  [[nodiscard]] ZoString& ownText() noexcept {
    return *std::launder(reinterpret_cast<ZoString*>(&payload_));
  }
  [[nodiscard]] const ZoString& ownText() const noexcept {
    return *std::launder(reinterpret_cast<const ZoString*>(&payload_));
  }
  struct Tree;       // whole trees: variant_tree.cpp
  class Comparison;  // likewise
  void become(Type kind, ZoTypeCode code, unsigned int flags) noexcept;
  void copyBlock(const ZoVariant& other);
  void freeBlock() noexcept;
  void assign(ZoVariant value);
  [[nodiscard]] int writeReference(const ZoVariant& value);
  [[nodiscard]] std::wstring_view view() const noexcept;  // of texts
  [[nodiscard]] std::int64_t integer() const noexcept;    // of both sizes
  [[nodiscard]] double real() const noexcept;
  [[nodiscard]] int convertTo(Type kind, ZoVariant& out) const;

  friend class zo::LentVariant;  // holds a container for a while that it does not own
  template <class T>
  [[nodiscard]] T as(T otherwise) const {
    (void)get(otherwise);  // refused: it stays
    return otherwise;
  }

  unsigned int code_;
  unsigned int word_;  // bits 0 to 4 the kind, bit 5 the reference mark, from bit 6 on the flags
  Payload payload_;
};

static_assert(sizeof(ZoVariant) == 16);

// A variant holds nothing that points to itself.
template <>
inline constexpr bool zo::isRelocatable<ZoVariant> = true;

inline zo::VariantElements<ZoVariant> ZoVariant::elements() & noexcept {
  return zo::VariantElements<ZoVariant>(*this);
}
inline zo::VariantElements<const ZoVariant> ZoVariant::elements() const& noexcept {
  return zo::VariantElements<const ZoVariant>(*this);
}

inline void swap(ZoVariant& a, ZoVariant& b) noexcept { a.swap(b); }

// The text form; a variant that is too deep for one sets the stream's failbit.
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoVariant& value);
