// Object handles: names one object of the host drawing by handle text, 64-bit id, or both.
//
// An empty text means no text and an id of 0 means no id; types() says which parts are present.
//
// Errors:  setters return 0. Getters return 0, or 1 when the part is absent and then leave the
//          out-parameter as it was. Nothing throws but std::bad_alloc where a text is copied in.
// Threads: one thread at a time per object (the text shares its storage like every ZoString).
// Cost:    copying is O(1).
// Stored:  docs/formats/archive.md.
#pragma once

#include <zo/config.h>
#include <zo/text/not_negative.h>
#include <zo/text/string.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>  // std::hash
#include <type_traits>
#include <utility>

class ZO_COM_API ZoHnd {
 public:
  // Bits of types(). They reach archives: never renumber.
  enum Type : unsigned int { kText = 0x1, kId = 0x2 };

  ZoHnd() noexcept = default;
  explicit ZoHnd(const wchar_t* text) { setHandle(text); }  // null counts as empty
  template <std::same_as<std::wstring> Text>
  explicit ZoHnd(const Text& text) {
    setHandle(text.c_str());
  }
  // Any integer, so that ZoHnd(0) is an id and not a null text.
  template <zo::PlainInteger Integer>
  explicit ZoHnd(Integer id) noexcept {
    setId(static_cast<std::int64_t>(id));
  }
  template <class T>
    requires(std::is_arithmetic_v<T> && !zo::PlainInteger<T>)
  explicit ZoHnd(T) = delete;  // an id is a whole number
  ZoHnd(const ZoHnd& other) noexcept = default;
  ZoHnd(ZoHnd&& other) noexcept
      : id_(std::exchange(other.id_, 0)),
        types_(std::exchange(other.types_, 0u)),
        handle_(std::move(other.handle_)) {}
  ~ZoHnd() = default;

  ZoHnd& operator=(const ZoHnd& other) noexcept = default;
  ZoHnd& operator=(ZoHnd&& other) noexcept {
    ZoHnd(std::move(other)).swap(*this);
    return *this;
  }
  // As setHandle and setId.
  ZoHnd& operator=(const wchar_t* text) {
    setHandle(text);
    return *this;
  }
  template <zo::PlainInteger Integer>
  ZoHnd& operator=(Integer id) noexcept {
    setId(static_cast<std::int64_t>(id));
    return *this;
  }
  template <class T>
    requires(std::is_arithmetic_v<T> && !zo::PlainInteger<T>)
  ZoHnd& operator=(T) = delete;  // an id is a whole number
  void swap(ZoHnd& other) noexcept {
    std::swap(id_, other.id_);
    std::swap(types_, other.types_);
    handle_.swap(other.handle_);
  }

  // Replaces the text; null or empty removes it. The id stays. Returns 0.
  int setHandle(const wchar_t* text);
  template <std::same_as<std::wstring> Text>
  int setHandle(const Text& text) {
    return setHandle(text.c_str());
  }
  // Replaces the id; 0 removes it. The text stays. Returns 0.
  int setId(std::int64_t id) noexcept;

  // The parts that are present.
  [[nodiscard]] unsigned int types() const noexcept { return types_; }
  [[nodiscard]] bool isKindOf(Type type) const noexcept { return (types_ & type) != 0; }

  // The text, empty when absent. Valid until the handle is changed or destroyed.
  [[nodiscard]] const wchar_t* handle() const noexcept { return handle_.data(); }
  // The id, 0 when absent.
  [[nodiscard]] std::int64_t id() const noexcept { return id_; }

  [[nodiscard]] int getHandle(ZoString& out) const noexcept;
  [[nodiscard]] int getId(std::int64_t& out) const noexcept;

  // Removes the parts that `which` names. Returns kId when it named an id that was there, else 0:
  // the text is gone by the time the result is taken, the id is not.
  int reset(unsigned int which) noexcept;

  // The same parts; texts compare exactly.
  friend bool operator==(const ZoHnd& a, const ZoHnd& b) noexcept {
    return a.id_ == b.id_ && a.handle_ == b.handle_;
  }
  // Agrees with operator==.
  [[nodiscard]] std::size_t hash() const noexcept {
    return std::hash<std::int64_t>()(id_) * 31 + handle_.hash();
  }

 private:
  void mark(Type type, bool present) noexcept {
    types_ = present ? types_ | type : types_ & ~static_cast<unsigned int>(type);
  }

  std::int64_t id_ = 0;
  unsigned int types_ = 0;
  ZoString handle_;
};

static_assert(sizeof(ZoHnd) == 24);

inline void swap(ZoHnd& a, ZoHnd& b) noexcept { a.swap(b); }

template <>
struct std::hash<ZoHnd> {
  size_t operator()(const ZoHnd& handle) const noexcept { return handle.hash(); }
};
