// The named notices of one kind that are sent while this lasts, as short texts.
#pragma once

#include <zo/system/reactor.h>
#include <zo/system/registry.h>
#include <zo/system/sys_disp.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zo::test {

inline std::string narrow(std::wstring_view text) { return {text.begin(), text.end()}; }

// "Dict{From=a,To=z}": keys in their order, texts without quotes.
inline std::wstring shortForm(const ZoVariant& value) {
  if (!value.asDict() && !value.asSequence()) return std::wstring(value.asString().view());
  std::vector<std::wstring> parts;
  for (const auto [key, position, element] : value.elements())
    parts.push_back((key ? std::wstring(key->view()) + L"=" : std::wstring()) + shortForm(element));
  if (value.asDict()) std::ranges::sort(parts);
  std::wstring text = value.asDict() ? L"Dict{" : L"Sequence[";
  for (const std::wstring& part : parts) (text += &part == parts.data() ? L"" : L",") += part;
  return text + (value.asDict() ? L"}" : L"]");
}

class Notices : ZoCustomReactor {
 public:
  explicit Notices(std::wstring_view prefix) : prefix_(prefix) {
    static_cast<void>(ZoSystem::sysDisp().addReactor(this));
  }
  ~Notices() override { static_cast<void>(ZoSystem::sysDisp().removeReactor(this)); }

  // What was told since the last time, names without the prefix.
  std::wstring take() {
    count_ = 0;
    return std::exchange(told_, {});
  }
  [[nodiscard]] unsigned int count() const noexcept { return count_; }

  std::function<void()> onTold;

 private:
  void onNotice(const wchar_t* name, const ZoVariant& data) override {
    const std::wstring_view rest(name);
    if (!rest.starts_with(prefix_)) return;
    ++count_;
    told_ += std::wstring(rest.substr(prefix_.size())) + shortForm(data);
    if (onTold) onTold();
  }
  double priority() override { return 1; }
  int release(const wchar_t*) override { return 1; }
  void onRequest(const wchar_t*, ZoVariant&) override {}

  std::wstring prefix_;
  std::wstring told_;
  unsigned int count_ = 0;
};

}  // namespace zo::test
