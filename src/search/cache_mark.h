// What a download cache knows of a copy: a small file of lines beside it.
//
//   zo download 1
//   url http://host/path
//   etag "..."
//   modified Sun, 22 Nov 2026 07:40:09 GMT
//   size 1234
//   checked 134082432000000000
//   sha256 64 digits
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/sha256.h"

namespace zo {

struct CacheMark {
  std::string url;             // as printWebAddress prints it
  std::string etag, modified;  // the server's marks as it sent them, empty where it sent none
  std::uint64_t size = 0;
  std::uint64_t checked = 0;  // when the server was last asked: 100 ns since 1601
  Sha256Sum sum{};
};

// Whether a server's mark may be kept, and sent back: printable and not too long.
[[nodiscard]] bool isMark(std::string_view text) noexcept;

[[nodiscard]] std::string printCacheMark(const CacheMark& mark);
// false for anything but what is printed; the mark is then undefined.
[[nodiscard]] bool parseCacheMark(std::string_view text, CacheMark& mark);
// Whether it is or was one: what has a mark's name but not its beginning is somebody else's.
[[nodiscard]] bool isCacheMark(std::string_view text) noexcept;
inline constexpr std::size_t kMaxMarkBytes = std::size_t{16} << 10;

// Which of the cache's files a name in its folder is: all of them begin with the 32 digits of a
// key.
enum class CacheFile { other, mark, copy, unfinished };
[[nodiscard]] CacheFile cacheFileOf(std::wstring_view name) noexcept;
inline constexpr std::size_t kKeyDigits = 32;
inline constexpr std::size_t kCopyDigits = 16;  // of the checksum, behind "-"
inline constexpr std::wstring_view kMarkEnding = L".info";

}  // namespace zo
