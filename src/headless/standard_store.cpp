#include "headless/standard_store.h"

#include <zo/results.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <unordered_set>
#include <utility>

#include "headless/standard_value.h"
#include "text/collation.h"

namespace zo {
namespace {

// Editions with equal text are one.
bool isNewer(const Standard& a, const Standard& b) {
  if (comesBefore(b.edition, a.edition)) return true;
  return !comesBefore(a.edition, b.edition) && a.order > b.order;
}

bool fits(std::wstring_view text, const ZoString& wanted) {
  return wanted.isEmpty() || equalTexts(text, wanted);
}

// Refused is one for which the table could not grow.
template <class T>
void insertNew(ZoHashDict<T, ZoString>& dict, std::wstring_view key, T value) {
  if (dict.insertAt(ZoString(key), std::move(value)) != ZoResult::ok) throw std::bad_alloc();
}

std::wstring fullName(const Standard& standard) {
  return standard.edition.empty() ? standard.name : standard.name + L":" + standard.edition;
}

}  // namespace

// A group without standards is none: it waits for memory to go.
const StandardStore::Group* StandardStore::groupOf(const StandardName& name) const {
  const auto find = [&](std::wstring_view key) {
    const Group* const group = groups_.at(key);
    return group && !group->standards.empty() ? group : nullptr;
  };
  if (const Group* const group = find(name.key())) return group;
  if (const Group* const group = find(name.core())) return group;
  const std::vector<ZoString>* const keys = cores_.at(name.core());
  if (!keys) return nullptr;
  for (const ZoString& key : *keys)
    if (const Group* const group = find(key)) return group;
  return nullptr;
}

const StandardPtr* StandardStore::pick(StandardName& name) const {
  const Group* group = groupOf(name);
  if (!group && name.takeYear()) group = groupOf(name);
  if (!group) return nullptr;
  if (name.edition().empty()) return &group->standards.front();
  const auto found = std::ranges::find_if(group->standards, [&](const StandardPtr& standard) {
    return equalTexts(standard->edition, name.edition());
  });
  return found == group->standards.end() ? nullptr : &*found;
}

std::wstring StandardStore::ownKey(StandardName& name) const {
  const auto isThere = [&] {
    const Group* const group = groups_.at(name.key());
    return group && !group->standards.empty();
  };
  return isThere() || (name.takeYear() && isThere()) ? std::wstring(name.key()) : std::wstring();
}

StandardPtr StandardStore::find(std::wstring_view spelling) const {
  StandardName name(spelling);
  const std::shared_lock reading(lock_);
  const StandardPtr* const found = pick(name);
  return found ? *found : nullptr;
}

int StandardStore::successor(std::wstring_view spelling, std::wstring& name) const {
  StandardName asked(spelling);
  const std::shared_lock reading(lock_);
  const StandardPtr* const first = pick(asked);
  if (!first) return ZoResult::refused;
  std::unordered_set<const Standard*> seen;
  std::unordered_set<std::wstring> names;
  const Standard* standard = first->get();
  std::wstring last;
  for (bool byEdition = !asked.edition().empty();;) {
    if (!seen.insert(standard).second) return ZoResult::standardCircle;
    names.emplace(StandardName(standard->name).key());
    StandardName next(standard->replacedBy);
    if (next.key().empty()) {
      const StandardPtr& newest = groupOf(StandardName(standard->name))->standards.front();
      if (!byEdition || equalTexts(newest->edition, standard->edition)) break;
      last = fullName(*newest);
      standard = newest.get();
      continue;
    }
    last = standard->replacedBy;
    const StandardPtr* const found = pick(next);
    if (!found) break;
    // "DIN EN ISO 1" for "DIN ISO 1", and only that is there: found is what it replaces.
    const std::wstring key(StandardName((*found)->name).key());
    if (key != next.key() && names.contains(key)) break;
    byEdition = !next.edition().empty();
    last = byEdition ? fullName(**found) : (*found)->name;
    standard = found->get();
  }
  if (last.empty()) return ZoResult::refused;
  name = std::move(last);
  return ZoResult::ok;
}

std::vector<std::wstring> StandardStore::names(const ZoStandardFilter& filter) const {
  std::vector<std::wstring> names;
  const std::shared_lock reading(lock_);
  for (const auto [key, group] : groups_) {
    if (group.standards.empty()) continue;
    const Standard& standard = *group.standards.front();
    if ((filter.withdrawn || !standard.isWithdrawn) &&
        fits(standard.standardClass, filter.standardClass) && fits(standard.firm, filter.firm) &&
        fits(standard.catalog, filter.catalog) &&
        (filter.pattern.isEmpty() || fitsStandardPattern(standard.name, filter.pattern)))
      names.push_back(standard.name);
  }
  return names;
}

std::vector<std::wstring> StandardStore::editions(std::wstring_view spelling) const {
  std::vector<std::wstring> editions;
  const std::shared_lock reading(lock_);
  const Group* const group = groupOf(StandardName(spelling));
  if (!group) return editions;
  for (const StandardPtr& standard : group->standards)
    if (editions.empty() || !equalTexts(editions.back(), standard->edition))
      editions.push_back(standard->edition);
  return editions;
}

// Nobody sees a part of them: what has come in goes again when memory runs out.
int StandardStore::add(const ZoVariant& standards, std::wstring_view module, std::wstring_view file,
                       std::vector<std::wstring>& names) {
  std::vector<std::shared_ptr<Standard>> made;
  if (const int code = readStandards(standards, made)) return code;
  const std::uint64_t before = lastOrder_;
  for (const auto& standard : made) {
    standard->module = module;
    standard->file = file;
    standard->order = ++lastOrder_;
    names.push_back(standard->name);
  }
  const std::unique_lock writing(lock_);
  try {
    for (const auto& standard : made) {
      const StandardName name(standard->name);
      insert(standard, name.key(), name.core());
    }
  } catch (...) {
    removeIf([&](const Standard& standard) { return standard.order > before; });
    throw;
  }
  std::size_t changed = 0;  // no memory is asked for any more
  for (std::size_t i = 0; i < made.size(); ++i)
    if (replaceOld(*made[i])) names[changed++].swap(names[i]);
  names.resize(changed);
  return ZoResult::ok;
}

bool StandardStore::replaceOld(const Standard& standard) {
  auto& group = groups_.at(StandardName(standard.name).key())->standards;
  bool isSame = false, isFirst = true;  // of those before, the last added comes first
  std::erase_if(group, [&](const StandardPtr& other) {
    if (other->order >= standard.order || !equalTexts(other->edition, standard.edition))
      return false;
    const bool isOld = equalIgnoreCase(other->module, standard.module);
    if (isOld && isFirst) isSame = other->value == standard.value && other->file == standard.file;
    isFirst = false;
    return isOld;
  });
  return !isSame;
}

void StandardStore::remove(std::wstring_view spelling, std::wstring_view module,
                           std::vector<std::wstring>& names) {
  StandardName name(spelling);
  const std::unique_lock writing(lock_);
  std::wstring key, edition;
  if (!spelling.empty()) {
    key = ownKey(name);
    if (key.empty()) return;
    edition = name.edition();
  }
  const auto isGone = [&](const Standard& standard) {
    return equalIgnoreCase(standard.module, module) &&
           (spelling.empty() || StandardName(standard.name).key() == key) &&
           (edition.empty() || equalTexts(standard.edition, edition));
  };
  for (const auto [each, group] : groups_)
    for (const StandardPtr& standard : group.standards)
      if (isGone(*standard)) names.push_back(standard->name);
  if (!names.empty()) removeIf(isGone);
}

// A group without standards may lack its core, for want of memory.
void StandardStore::insert(StandardPtr standard, std::wstring_view key, std::wstring_view core) {
  const Group* const known = groups_.at(key);
  if (core != key && (!known || known->standards.empty())) {
    if (!cores_.contains(core)) insertNew(cores_, core, std::vector<ZoString>());
    auto& keys = *cores_.at(core);
    const auto isKey = [&](const ZoString& each) { return each.view() == key; };
    if (std::ranges::none_of(keys, isKey)) keys.emplace_back(key);
  }
  if (!known) insertNew(groups_, key, Group());
  auto& group = groups_.at(key)->standards;
  const auto place = std::ranges::find_if(
      group, [&](const StandardPtr& other) { return isNewer(*standard, *other); });
  group.insert(place, std::move(standard));
}

void StandardStore::removeIf(const std::function<bool(const Standard&)>& isGone) {
  for (const auto [key, group] : groups_)
    std::erase_if(group.standards, [&](const StandardPtr& standard) { return isGone(*standard); });
  try {
    removeEmptyGroups();
  } catch (const std::bad_alloc&) {
    return;  // they go another time
  }
}

void StandardStore::removeEmptyGroups() {
  std::vector<ZoString> empty;
  for (const auto [key, group] : groups_)
    if (group.standards.empty()) empty.push_back(key.copy());
  for (const ZoString& key : empty) {
    const ZoString core(StandardName(key).core());
    if (auto* const keys = cores_.at(core)) {
      std::erase_if(*keys, [&](const ZoString& each) { return each.view() == key.view(); });
      if (keys->empty()) cores_.removeAt(core);
    }
    groups_.removeAt(key);
  }
}

}  // namespace zo
