#include "search/file_finder.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "platform/clock.h"
#include "platform/file_api.h"
#include "platform/system_path.h"
#include "search/macro_table.h"

namespace zo {
namespace {

std::wstring currentFolder() {
  std::wstring folder = platformText(
      [](DWORD size, wchar_t* buffer) { return fileApi().currentFolder(size, buffer); });
  if (!folder.empty() && folder.back() != L'\\') folder += L'\\';
  return folder;
}

void collectWatches(SearchState& state) {
  state.watches.clear();
  const auto add = [&](const SearchState::At& at) {
    for (const auto& watch : at.known.watches) state.watches.push_back(watch->get());
  };
  add(state.current);
  std::ranges::for_each(state.places, add);
}

// Another folder or file has the place's name: no watch of the one before tells.
bool isExchanged(const SearchState::At& at) {
  return at.place && !at.known.watches.empty() && at.known.stamp != stampOf(*at.place);
}

bool anyExchanged(const SearchState& state) {
  return isExchanged(state.current) || std::ranges::any_of(state.places, isExchanged);
}

void renew(SearchState::At& at, bool looks) {
  if (!at.place || !(at.known.isOld() || (looks && isExchanged(at)))) return;
  const std::size_t names = at.known.index ? at.known.index->names().size() : 0;
  at.place->asks = 0;
  at.place->asksBeforeReading = FilePlace::kFirstAsks;
  if (at.place->kind == FilePlace::kFolder && names > FilePlace::kFirstAsks)
    at.place->asksBeforeReading = static_cast<unsigned int>(names);
  at.known = readAgain(*at.place, at.known);
}

}  // namespace

std::wstring describe(const FilePlace& place) {
  std::wstring text = place.path;
  if (place.kind == FilePlace::kTree) text += L" and below";
  if (place.priority != 0) text += L", priority " + std::to_wstring(place.priority);
  if (!place.module.empty()) text += L", of " + place.module;
  return text;
}

// Puts what `change(SearchState&)` makes of a copy in the place of the state. Everything or nothing
// happens.
template <class Change>
FileFinder::State FileFinder::change(Change change) {
  const std::scoped_lock lock(changing_);
  auto next = std::make_shared<SearchState>(*state_.load());
  change(*next);
  collectWatches(*next);
  state_.store(next);
  return next;
}

bool FileFinder::add(std::shared_ptr<FilePlace> place) {
  bool isNew = true;
  change([&](SearchState& state) {
    auto& places = state.places;
    isNew = std::ranges::none_of(places, [&](const SearchState::At& at) {
      return equalNames(at.place->path, place->path) && equalNames(at.place->module, place->module);
    });
    if (!isNew) return;
    const auto before = [&](const SearchState::At& at) {
      return at.place->priority >= place->priority;
    };
    const auto where = std::ranges::find_if_not(places, before);
    places.insert(where, {.place = place, .known = {}});
  });
  return isNew;
}

void FileFinder::release(std::wstring_view module) {
  change([&](SearchState& state) {
    std::erase_if(state.places,
                  [&](const SearchState::At& at) { return equalNames(at.place->module, module); });
  });
}

void FileFinder::forget() {
  change([](SearchState& state) {
    state.current = {};
    for (SearchState::At& at : state.places) at.known = {};
  });
}

bool FileFinder::noticeExchange(const FilePlace& place) {
  const State state = state_.load();
  const bool isNoticed = std::ranges::any_of(state->places, [&](const SearchState::At& at) {
    return at.place.get() == &place && isExchanged(at);
  });
  if (isNoticed) lookedAt_ = 0;
  return isNoticed;
}

// Whether it is time to look for places that were exchanged, which takes a call for each.
bool FileFinder::mayLook() {
  constexpr std::uint64_t kEvery = 1000;  // milliseconds
  const std::uint64_t now = millisecondsNow();
  if (now - lookedAt_ < kEvery) return false;
  lookedAt_ = now;
  return true;
}

// The state, without what is known to be old.
FileFinder::State FileFinder::fresh() {
  State state = state_.load();
  const std::wstring folder = currentFolder();
  const auto hasMoved = [&](const SearchState& from) {
    return !from.current.place || !equalNames(from.current.place->path, folder);
  };
  const bool looks = mayLook();
  if (!hasMoved(*state) && !anyChanged(state->watches) && !(looks && anyExchanged(*state)))
    return state;
  return change([&](SearchState& next) {
    if (hasMoved(next)) {
      next.current = {.place = std::make_shared<FilePlace>(FilePlace::kFolder, folder),
                      .known = {}};
      next.current.place->asNamed = true;
    }
    renew(next.current, looks);
    for (SearchState::At& at : next.places) renew(at, looks);
  });
}

FileFinder::State FileFinder::learn(const std::shared_ptr<FilePlace>& place) {
  return change([&](SearchState& state) {
    const auto read = [&](SearchState::At& at) {
      if (at.place != place || (at.known.index && place->kind != FilePlace::kLibrary)) return;
      at.known = at.known.index ? readAgain(*place, at.known) : readNames(*place);
      place->asks = 0;
      if (!at.known.index)  // asked directly, and for longer each time
        place->asksBeforeReading = std::min(2 * place->asksBeforeReading.load(), 1U << 20);
    };
    read(state.current);
    std::ranges::for_each(state.places, read);
  });
}

bool FileFinder::mustRead(const SearchState::At& at) const {
  const FilePlace& place = *at.place;
  switch (place.kind) {
    case FilePlace::kLibrary:
      return !at.known.index || !isUpToDate(place, at.known);
    case FilePlace::kFolder:
    case FilePlace::kTree: {
      if (at.known.index) return false;
      const unsigned int asks = ++at.place->asks;
      const unsigned int wanted = place.asksBeforeReading;
      // A tree is read as a whole to be asked directly, too.
      return asks > wanted || (place.kind == FilePlace::kTree && wanted == FilePlace::kFirstAsks);
    }
    default:
      return false;
  }
}

// Asks the current directory and the places, each with what is to be known of it, until one says
// true.
template <class Ask>
bool FileFinder::askAll(Ask ask) {
  const State state = fresh();
  const auto at = [](const State& from, std::size_t i) -> const SearchState::At& {
    return i == 0 ? from->current : from->places[i - 1];
  };
  for (std::size_t i = 0; i <= state->places.size(); ++i) {
    const SearchState::At& asked = at(state, i);
    if (!mustRead(asked)) {
      if (ask(asked.place, asked.known)) return true;
      continue;
    }
    // Others may have added or released places meanwhile; this search keeps those that it had.
    const State learnt = learn(asked.place);
    for (std::size_t k = 0; k <= learnt->places.size(); ++k)
      if (at(learnt, k).place == asked.place && ask(asked.place, at(learnt, k).known)) return true;
  }
  return false;
}

std::shared_ptr<FilePlace> FileFinder::find(const std::wstring& name, std::wstring& below,
                                            SearchReport* report) {
  std::shared_ptr<FilePlace> foundAt;
  askAll([&](const std::shared_ptr<FilePlace>& place, const KnownNames& known) {
    if (place->kind == FilePlace::kServer) return false;
    std::optional<std::wstring> found = findBelow(*place, known, name);
    if (report) report->tell(describe(*place), found ? L"found " + *found : L"not there");
    if (!found) return false;
    below = std::move(*found);
    foundAt = place;
    return true;
  });
  return foundAt;
}

FileFinder::Places FileFinder::servers() const {
  Places servers;
  const State state = state_.load();
  for (const SearchState::At& at : state->places) {
    const auto isSame = [&](const auto& server) { return server->path == at.place->path; };
    if (at.place->kind == FilePlace::kServer && std::ranges::none_of(servers, isSame))
      servers.push_back(at.place);
  }
  return servers;
}

FileFinder::Found FileFinder::findAll(const std::wstring& pattern) {
  Found found;
  std::unordered_set<std::wstring, NameHash, NameEqual> seen;
  askAll([&](const std::shared_ptr<FilePlace>& place, const KnownNames& known) {
    for (std::wstring& below : namesBelow(*place, known, pattern)) {
      const std::wstring plain = withBackslashes(below);
      if (seen.emplace(lastComponent(plain)).second) found.emplace_back(place, std::move(below));
    }
    return false;
  });
  return found;
}

}  // namespace zo
