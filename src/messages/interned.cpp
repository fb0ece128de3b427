#include "messages/interned.h"

#include <functional>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_set>

namespace zo {
namespace {

struct Hash {
  using is_transparent = void;
  std::size_t operator()(std::wstring_view text) const noexcept {
    return std::hash<std::wstring_view>()(text);
  }
};

// A set of nodes: what it has never moves.
struct Pool {
  std::shared_mutex mutex;
  std::unordered_set<std::wstring, Hash, std::equal_to<>> texts;
};
Pool& pool() {
  static Pool texts;
  return texts;
}

const wchar_t* known(std::wstring_view text) {
  const std::shared_lock lock(pool().mutex);
  const auto found = pool().texts.find(text);
  return found == pool().texts.end() ? nullptr : found->c_str();
}

}  // namespace

const wchar_t* interned(std::wstring_view text) noexcept {
  try {
    if (const wchar_t* const found = known(text)) return found;
    const std::unique_lock lock(pool().mutex);
    return pool().texts.emplace(text).first->c_str();
  } catch (...) {
    return nullptr;  // memory, or the lock's own
  }
}

}  // namespace zo
