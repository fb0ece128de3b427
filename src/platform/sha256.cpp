#include "platform/sha256.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <limits>

#include "platform/system_library.h"

namespace zo {
namespace {

constexpr std::size_t kMost = std::size_t{1} << 30;  // a call's size has 32 bits

// The platform's functions and its two forms of the algorithm, for as long as the process lives.
struct Crypt {
  SystemLibrary library{L"bcrypt.dll"};
  ZO_FUNCTION_OF(library, BCryptOpenAlgorithmProvider);
  ZO_FUNCTION_OF(library, BCryptCreateHash);
  ZO_FUNCTION_OF(library, BCryptHashData);
  ZO_FUNCTION_OF(library, BCryptFinishHash);
  ZO_FUNCTION_OF(library, BCryptDestroyHash);
  BCRYPT_ALG_HANDLE plain = open(0);
  BCRYPT_ALG_HANDLE keyed = open(BCRYPT_ALG_HANDLE_HMAC_FLAG);

  [[nodiscard]] BCRYPT_ALG_HANDLE open(ULONG flags) const noexcept {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    const bool done = library && BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM,
                                                             nullptr, flags) >= 0;
    return done ? algorithm : nullptr;
  }
};

const Crypt& crypt() noexcept {
  static const Crypt functions;
  return functions;
}

// The platform's parameters are not const, though it only reads from them.
PUCHAR bytesOf(const void* data) noexcept { return static_cast<PUCHAR>(const_cast<void*>(data)); }

}  // namespace

bool Sha256::failed(long status) noexcept {
  if (status >= 0) return false;
  drop();
  constexpr long kNoMemory = static_cast<long>(0xC0000017);
  SetLastError(status == kNoMemory ? ERROR_NOT_ENOUGH_MEMORY : ERROR_GEN_FAILURE);
  return true;
}

void Sha256::drop() noexcept {
  if (hash_) crypt().BCryptDestroyHash(hash_);
  hash_ = nullptr;
}

bool Sha256::begin(void* algorithm, const void* key, std::size_t size) noexcept {
  drop();
  if (!algorithm || size > std::numeric_limits<ULONG>::max()) {
    SetLastError(algorithm ? ERROR_INVALID_PARAMETER : ERROR_NOT_SUPPORTED);
    return false;
  }
  return !failed(crypt().BCryptCreateHash(algorithm, &hash_, nullptr, 0, bytesOf(key),
                                          static_cast<ULONG>(size), 0));
}

bool Sha256::start() noexcept { return begin(crypt().plain, nullptr, 0); }

bool Sha256::startKeyed(const void* key, std::size_t size) noexcept {
  return begin(crypt().keyed, size > 0 ? key : "", size);
}

bool Sha256::add(const void* data, std::size_t size) noexcept {
  if (!hash_) {
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
  }
  const auto* next = static_cast<const std::uint8_t*>(data);
  for (std::size_t left = size; left > 0;) {
    const std::size_t part = std::min(left, kMost);
    if (failed(crypt().BCryptHashData(hash_, bytesOf(next), static_cast<ULONG>(part), 0)))
      return false;
    next += part;
    left -= part;
  }
  return true;
}

bool Sha256::finish(Sha256Sum& sum) noexcept {
  if (!hash_) {
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
  }
  Sha256Sum made;
  if (failed(crypt().BCryptFinishHash(hash_, made.data(), static_cast<ULONG>(made.size()), 0)))
    return false;
  drop();
  sum = made;
  return true;
}

bool sha256Of(std::string_view bytes, Sha256Sum& sum) noexcept {
  Sha256 hash;
  return hash.start() && hash.add(bytes.data(), bytes.size()) && hash.finish(sum);
}

}  // namespace zo
