// The macros that modules have set: states that are never changed, of which the last one counts.
//
// Threads: current() any; all else under the service's guard.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "names/name_compare.h"

namespace zo {

struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::wstring_view name) const noexcept { return hashName(name); }
};
struct NameEqual {
  using is_transparent = void;
  bool operator()(std::wstring_view a, std::wstring_view b) const noexcept {
    return equalNames(a, b);
  }
};

struct MacroState {
  struct Value {
    std::wstring value, module;
  };
  // Of each name the values that modules gave, the one that counts last.
  std::unordered_map<std::wstring, std::vector<Value>, NameHash, NameEqual> macros;
  bool usesEnvironment = false;

  // Null for none.
  [[nodiscard]] const std::wstring* find(std::wstring_view name) const {
    const auto found = macros.find(name);
    return found == macros.end() ? nullptr : &found->second.back().value;
  }
};

class MacroTable {
 public:
  MacroTable() : current_(std::make_shared<const MacroState>()) {}

  [[nodiscard]] std::shared_ptr<const MacroState> current() const { return current_.load(); }
  // Puts what `change(MacroState&)` makes of a copy in the place of the current state. Everything
  // or nothing happens.
  template <class Change>
  void change(Change change) {
    auto next = std::make_shared<MacroState>(*current_.load());
    change(*next);
    current_.store(std::move(next));
  }

 private:
  std::atomic<std::shared_ptr<const MacroState>> current_;
};

void setMacro(MacroState& state, std::wstring_view name, std::wstring_view value,
              std::wstring_view module);
// Whether the module had given it one.
bool removeMacro(MacroState& state, std::wstring_view name, std::wstring_view module);
void releaseMacros(MacroState& state, std::wstring_view module);

}  // namespace zo
