#include "say.h"

#include <zo/names/file_name.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>
#include <zo/text/containers/array.h>
#include <zo/text/string.h>

#include <algorithm>
#include <new>
#include <span>

namespace zolib {
namespace {

constexpr const wchar_t* kCommonFile = L"zolib";
constexpr int kFirstOwn = 100;

// As they are loaded; empty: it speaks English.
struct Files {
  ZoString common, own;
};
Files s_files;

ZoString loaded(const wchar_t* name) {
  const bool isThere = ZoSystem::message().load(ZoFileName(name), kCommonFile) == ZoResult::ok;
  return isThere ? ZoString(name) : ZoString();
}

// The English of the code, filled in as the service does it.
class English final : public ZoMessage {
 public:
  void take(const char* text) { text_ = ZoString::fromUtf8(text); }
  int getText(const ZoString&, int, ZoString& text) override {
    text = text_;
    return ZoResult::ok;
  }

 private:
  ZoString text_;
};

// As the environment of a shell has them, too: "de_AT.UTF-8:fr". "C" is English.
ZoArray<ZoString> tagsIn(std::wstring_view languages) {
  constexpr std::wstring_view kBetween = L" \t,;:";
  ZoArray<ZoString> tags;
  while (!languages.empty()) {
    const std::wstring_view word = languages.substr(0, languages.find_first_of(kBetween));
    languages.remove_prefix(std::min(word.size() + 1, languages.size()));
    const std::wstring_view tag = word.substr(0, word.find_first_of(L".@"));
    if (tag.empty()) continue;
    const bool isEnglish = tag == L"C" || tag == L"POSIX";
    if (tags.append(isEnglish ? ZoString(L"en") : ZoString(tag)) != ZoResult::ok)
      throw std::bad_alloc();
  }
  return tags;
}

}  // namespace

bool speak(std::wstring_view languages, const std::wstring& tool) {
  ZoMessage& messages = ZoSystem::message();
  const ZoArray<ZoString> tags = tagsIn(languages);
  s_files = {};
  if (messages.setLanguages(tags) != ZoResult::ok) return false;
  s_files.common = loaded(kCommonFile);
  s_files.own = tool == kCommonFile ? s_files.common : loaded(tool.c_str());
  return true;
}

std::string sayWith(const Text& text, std::initializer_list<ZoVariant> fillings) {
  ZoString said;
  const std::span<const ZoVariant> all(fillings.begin(), fillings.size());
  const auto isSaid = [](int code) { return code == ZoResult::ok || code == ZoResult::incomplete; };
  const ZoString& file = text.number < kFirstOwn ? s_files.common : s_files.own;
  if (text.number == 0 || file.isEmpty() ||
      !isSaid(ZoSystem::message().formatWith(file, text.number, all, said))) {
    static English s_english;
    s_english.take(text.english);
    static_cast<void>(s_english.formatWith({}, text.number, all, said));  // it has the text
  }
  return toUtf8(said.view());
}

}  // namespace zolib
