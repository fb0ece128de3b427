// SHA-256, plain or keyed (HMAC), by the platform's cryptographic library.
//
// Errors:  false leaves the reason in the last error, and nothing has begun then.
// Threads: one per object.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zo {

using Sha256Sum = std::array<std::uint8_t, 32>;

class Sha256 {
 public:
  Sha256() = default;
  Sha256(const Sha256&) = delete;
  Sha256& operator=(const Sha256&) = delete;
  ~Sha256() { drop(); }

  // Begins anew, whatever was begun.
  [[nodiscard]] bool start() noexcept;
  [[nodiscard]] bool startKeyed(const void* key, std::size_t size) noexcept;
  // false also when nothing was begun.
  [[nodiscard]] bool add(const void* data, std::size_t size) noexcept;
  // Nothing is begun any more, whatever the answer.
  [[nodiscard]] bool finish(Sha256Sum& sum) noexcept;

 private:
  bool begin(void* algorithm, const void* key, std::size_t size) noexcept;
  bool failed(long status) noexcept;
  void drop() noexcept;

  void* hash_ = nullptr;
};

// Of a few bytes at once.
[[nodiscard]] bool sha256Of(std::string_view bytes, Sha256Sum& sum) noexcept;

}  // namespace zo
