// Keyed checksums: HMAC-SHA-256 (FIPS 198-1, RFC 2104), by the platform's cryptographic library.
// They tell whether data are those that somebody summed who has the key.
//
//   ZoCheckSum::Sum sum;
//   if (zoCheckSumFile(name, ZoCheckKey(key), sum)) return report();
//   if (!ZoCheckSum::isSame(sum, expected)) return changed();
//
// A key that is kept in a program keeps out mistakes and simple forgery. It does not keep out who
// takes the program apart, finds the key and makes sums himself: against him only a signature
// helps.
//
// The form with 64 bits is for what has room for no more, like the value that a library keeps
// (ZoLibrary::setCheckSum): the sum's first eight bytes, the lowest first.
//
// Errors:  0; 1 when the platform refused, a pointer is null with a size, a size ends behind
//          all memory of programs (any other is taken for true), a key has 4 GiB or more, or
//          nothing was begun; and for files as said there. A sum that was to be filled then
//          stays as it was. Nothing throws but std::bad_alloc.
// Threads: one per object.
// Cost:    what the platform takes: 2 us for a short text, and some hundred MB a second.
#pragma once

#include <zo/config.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

class ZoFile;
class ZoFileName;
namespace zo {
class Sha256;
// A count of them is no count of bytes.
template <class T>
concept WideCharacter =
    std::same_as<T, wchar_t> || std::same_as<T, char16_t> || std::same_as<T, char32_t>;
}  // namespace zo

// The bytes of a key, which stay the caller's. Any number of them is a key, none, too; more than 64
// make it no stronger.
struct ZoCheckKey {
  constexpr ZoCheckKey(const void* bytes, std::size_t count) noexcept : data(bytes), size(count) {}
  explicit constexpr ZoCheckKey(std::string_view text) noexcept
      : data(text.data()), size(text.size()) {}
  explicit ZoCheckKey(std::wstring_view) = delete;  // a key is bytes: give it in UTF-8
  template <zo::WideCharacter T>
  ZoCheckKey(const T*, std::integral auto) = delete;          // a key is bytes: give it in UTF-8
  ZoCheckKey(const void*, std::same_as<bool> auto) = delete;  // the key's bytes, and how many

  const void* data;
  std::size_t size;
};

class ZO_COM_API ZoCheckSum {
 public:
  using Sum = std::array<std::uint8_t, 32>;

  ZoCheckSum();
  ZoCheckSum(ZoCheckSum&& other) noexcept;
  ZoCheckSum& operator=(ZoCheckSum&& other) noexcept;
  ~ZoCheckSum();

  // Begins a sum, whatever was begun before.
  [[nodiscard]] int start(ZoCheckKey key);
  [[nodiscard]] int add(const void* data, std::size_t size);
  template <zo::WideCharacter T>
  int add(const T*, std::integral auto) = delete;  // sums are of bytes: const void* and their count
  int add(const void*, std::same_as<bool> auto) = delete;  // how many bytes
  // Ends it: for another sum start again.
  [[nodiscard]] int finish(Sum& sum);

  // Compares in a time that does not depend on what is in the sums, so that nobody can find one out
  // byte by byte.
  [[nodiscard]] static bool isSame(const Sum& a, const Sum& b) noexcept;
  // The form with 64 bits.
  [[nodiscard]] static std::uint64_t shortForm(const Sum& sum) noexcept;

 private:
  std::unique_ptr<zo::Sha256> hash_;
};

// Of data in memory.
[[nodiscard]] ZO_COM_API int zoCheckSum(const void* data, std::size_t size, ZoCheckKey key,
                                        ZoCheckSum::Sum& sum);
[[nodiscard]] ZO_COM_API int zoCheckSum(const void* data, std::size_t size, ZoCheckKey key,
                                        std::uint64_t& sum);
template <zo::WideCharacter T, class Sum>
int zoCheckSum(const T*, std::size_t, ZoCheckKey,
               Sum&) = delete;  // sums are of bytes: const void* and their count

// Of an open file's bytes from its position on, which is at its end then; a member of a library is
// such a file, too. Of a whole file. 1, with a reason in errorTxt(), also when the file cannot be
// read, somebody is writing to it, or its end comes before what its size says.
[[nodiscard]] ZO_COM_API int zoCheckSumFile(ZoFile& file, ZoCheckKey key, ZoCheckSum::Sum& sum);
[[nodiscard]] ZO_COM_API int zoCheckSumFile(const ZoFileName& name, ZoCheckKey key,
                                            ZoCheckSum::Sum& sum);
int zoCheckSumFile(std::nullptr_t, ZoCheckKey, ZoCheckSum::Sum&) = delete;  // name a file
