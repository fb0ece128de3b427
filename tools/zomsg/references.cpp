// Where references lead, in each language. Texts are followed without recursion and each once in a
// language, whatever the files hold.
#include <zo/names/file_name.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>

#include "check.h"

namespace zomsg {
namespace {

struct Place {
  const MessageFile* file = nullptr;
  unsigned int i = 0;

  [[nodiscard]] std::size_t id() const noexcept { return file->firstId + i; }
  [[nodiscard]] std::string text() const {
    return toUtf8(file->parts.name) + ":" + std::to_string(file->map.number(i));
  }
};

// The message's position; that of none is entries().
unsigned int positionOf(const ZoMessageMap& map, unsigned int number) {
  unsigned int first = 0, last = map.entries();
  while (first < last) {
    const unsigned int middle = first + (last - first) / 2;
    (map.number(middle) < number ? first : last) =
        map.number(middle) < number ? middle + 1 : middle;
  }
  return first < map.entries() && map.number(first) == number ? first : map.entries();
}

// The files that come with the library are known wherever they lie. Where they are not installed,
// nothing is wrong with the number.
bool isLibrarys(const std::wstring& name, unsigned int number) {
  static std::map<std::wstring, std::optional<bool>> s_loaded{
      {L"zotype", {}}, {L"zoflag", {}}, {L"zoresult", {}}};
  const auto found = s_loaded.find(name);
  if (found == s_loaded.end()) return false;
  ZoMessage& messages = ZoSystem::message();
  if (!found->second) found->second = messages.load(ZoFileName(name), L"zomsg") == ZoResult::ok;
  ZoString text;
  return !*found->second ||
         messages.getText(ZoString(name), static_cast<int>(number), text) != ZoResult::refused;
}

class References {
 public:
  References(std::span<const Group> groups, Findings& findings) : findings_(findings) {
    std::size_t count = 0;
    for (const Group& group : groups) {
      auto& files = byName_[folded(group.front()->parts.name)];
      for (const MessageFile* file : group) {
        if (!file->isMessageFile) continue;
        files.push_back(file);
        byLanguage_[folded(file->language())].push_back(file);
        count = std::max(count, file->firstId + file->map.entries());
      }
    }
    depths_.resize(count);
    sizes_.resize(count);
  }

  void run() {
    for (const auto& [language, files] : byLanguage_) {
      begin(language, files);
      for (const MessageFile* file : files)
        for (unsigned int i = 0; i < file->map.entries(); ++i) follow({file, i});
      for (const std::size_t id : touched_) depths_[id] = 0;
      touched_.clear();
    }
  }

 private:
  static constexpr unsigned int kOpen = ~0U;
  struct Step {
    Place place;
    std::vector<Place> targets;
    std::size_t next = 0;
    unsigned int depth = 1;  // texts in one another, this one included
    std::size_t size = 0;    // units read for it
  };

  // The languages in which a text is looked for, before the original.
  void begin(const std::wstring& language, const std::vector<const MessageFile*>& files) {
    chain_.clear();
    for (std::wstring tag = language; !tag.empty();) {
      chain_.push_back(tag);
      const std::size_t dash = tag.rfind(L'-');
      tag.resize(dash == std::wstring::npos ? 0 : dash);
    }
    for (const MessageFile* file : files) {
      const std::wstring fallback = folded(file->map.fallback().view());
      if (!fallback.empty() && std::ranges::find(chain_, fallback) == chain_.end())
        chain_.push_back(fallback);
    }
  }

  // Of one name, in the first language of the chain, or else in the original.
  [[nodiscard]] Place find(const std::vector<const MessageFile*>& files,
                           unsigned int number) const {
    std::size_t best = chain_.size() + 2;
    Place place;
    for (const MessageFile* file : files) {
      const auto found = std::ranges::find(chain_, folded(file->language()));
      auto rank = static_cast<std::size_t>(found - chain_.begin());
      if (found == chain_.end() && !file->parts.tag.empty() && file != files.front()) ++rank;
      if (rank >= std::min(best, chain_.size() + 1)) continue;
      const unsigned int i = positionOf(file->map, number);
      if (i == file->map.entries()) continue;
      best = rank;
      place = {file, i};
    }
    return place;
  }

  Step open(const Place& place) {
    depths_[place.id()] = kOpen;
    touched_.push_back(place.id());
    const std::wstring_view text = place.file->map.text(place.i);
    Step step{place, {}, 0, 1, text.size()};
    if (text.find(L'%') == std::wstring_view::npos) return step;
    for (const ZoMessageMark& mark : zoMessageMarks(text)) {
      if (mark.kind != ZoMessageMark::kReference) continue;
      const std::wstring name =
          folded(mark.file.empty() ? place.file->parts.name : std::wstring(mark.file));
      const auto files = byName_.find(name);
      const Place target = files == byName_.end() ? Place() : find(files->second, mark.number);
      if (target.file)
        step.targets.push_back(target);
      else if (isChecked(place) && !isLibrarys(name, mark.number))
        leadsNowhere(place, name, mark.number, files != byName_.end());
    }
    return step;
  }

  // Texts of other languages have their own turn.
  [[nodiscard]] bool isChecked(const Place& place) const {
    const std::wstring language = folded(place.file->language());
    return chain_.empty() ? language.empty() : language == chain_.front();
  }

  void leadsNowhere(const Place& place, const std::wstring& name, unsigned int number,
                    bool isKnown) {
    const std::string what = "refers to " + toUtf8(name) + ":" + std::to_string(number);
    if (isKnown)
      findings_.add(*place.file, place.i, Level::kError, "nowhere", what + ", which is not there");
    else
      findings_.add(*place.file, place.i, Level::kWarning, "nowhere",
                    what + ", a file that is not in these folders");
  }

  void follow(const Place& start) {
    if (depths_[start.id()] != 0) return;
    stack_.push_back(open(start));
    while (!stack_.empty()) {
      Step& step = stack_.back();
      if (step.next == step.targets.size()) {
        close();
        continue;
      }
      const Place target = step.targets[step.next];
      const unsigned int depth = depths_[target.id()];
      if (depth == 0) {
        stack_.push_back(open(target));  // and comes back to it
        continue;
      }
      ++step.next;
      if (depth == kOpen) {
        tellCircle(target);
      } else {
        step.depth = std::max(step.depth, depth + 1);
        step.size = std::min<std::size_t>(step.size + sizes_[target.id()], kTooLarge);
      }
    }
  }

  // All that a text refers to is known: its own bounds.
  void close() {
    const Step step = std::move(stack_.back());
    stack_.pop_back();
    const bool isDeep = step.depth > ZoMessage::kMaxDepth, isLarge = step.size >= kTooLarge;
    if (isChecked(step.place) && isDeep)
      findings_.add(*step.place.file, step.place.i, Level::kError, "depth",
                    "refers to others more than " + std::to_string(ZoMessage::kMaxDepth) + " deep");
    else if (isChecked(step.place) && isLarge)
      findings_.add(*step.place.file, step.place.i, Level::kError, "size",
                    "is made from more than " + std::to_string(ZoMessage::kMaxRead) + " units");
    // Who refers to it is not told the same again.
    depths_[step.place.id()] = isDeep ? 1 : step.depth;
    sizes_[step.place.id()] = isLarge ? 0 : step.size;
  }

  // Told once, where its first message stands.
  void tellCircle(const Place& target) {
    auto first = stack_.size();
    while (stack_[first - 1].place.id() != target.id()) --first;
    const auto begin = stack_.begin() + static_cast<std::ptrdiff_t>(first - 1);
    const auto least = std::min_element(begin, stack_.end(), [](const Step& a, const Step& b) {
      return a.place.id() < b.place.id();
    });
    if (!circles_.insert(least->place.id()).second) return;
    std::string way;
    std::size_t left = 5;
    for (auto step = least; left > 0; --left) {
      if (++step == stack_.end()) step = begin;
      if (step == least) break;
      way += (way.empty() ? " through " : ", ") + step->place.text();
    }
    findings_.add(*least->place.file, least->place.i, Level::kError, "circle",
                  "refers to itself" + way + (left > 0 ? "" : ", ..."));
  }

  static constexpr std::size_t kTooLarge = std::size_t{ZoMessage::kMaxRead} + 1;
  Findings& findings_;
  std::unordered_map<std::wstring, std::vector<const MessageFile*>> byName_;
  std::map<std::wstring, std::vector<const MessageFile*>> byLanguage_;
  std::vector<std::wstring> chain_;
  std::vector<unsigned int> depths_;  // by id; 0: not seen yet in this language
  std::vector<std::size_t> sizes_;
  std::vector<std::size_t> touched_;
  std::vector<Step> stack_;
  std::set<std::size_t> circles_;
};

}  // namespace

void followReferences(std::span<const Group> groups, Findings& findings) {
  References(groups, findings).run();
}

}  // namespace zomsg
