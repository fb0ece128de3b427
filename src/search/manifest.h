// The manifest of installation media as text: docs/media.md describes it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sha256.h"

namespace zo {

struct ManifestFile {
  std::wstring name;  // from the root on, with backslashes
  std::uint64_t size = 0;
  Sha256Sum sum{};
};
struct Manifest {
  std::wstring label;
  std::vector<ManifestFile> files;
};
inline constexpr std::wstring_view kManifestName = L"zomedia.txt";
inline constexpr std::size_t kMaxManifestBytes = std::size_t{64} << 20;

// Whether a label or a name can stand in a line, and be a component of a disc name.
[[nodiscard]] bool canBeLabel(std::wstring_view label) noexcept;

// All but the last line, of which the sum is made, and all of it.
[[nodiscard]] std::string printManifest(const Manifest& manifest);
[[nodiscard]] std::string withSum(std::string text, const Sha256Sum& sum);
// And back: false for what is none, has a file twice, or more than 2^64 bytes. Names may be any
// that a file can have; the manifest of a failure is undefined.
[[nodiscard]] bool takeSum(std::string_view& text, Sha256Sum& sum) noexcept;
[[nodiscard]] bool parseManifest(std::string_view text, Manifest& manifest);

}  // namespace zo
