#include <windows.h>
#include <zo/host/sec_registry.h>
#include <zo/results.h>
#include <zo/system/cfg.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "platform/registry_path.h"
#include "system/config/registry_value.h"
#include "system/service_scope.h"

namespace {

// Where the settings of every user lie: never change it.
constexpr const wchar_t* kDefaultBase = L"Software\\Tarvenco\\Mirel3D\\Config";

// What the platform allows.
constexpr size_t kLongestLevel = 255;
constexpr size_t kLongestName = 16383;
constexpr unsigned int kMaxDepth = 512;

// A registry path, split at its last delimiter.
struct Split {
  explicit Split(const ZoString& full) {
    const unsigned int last = full.last(L'\\');
    if (last == ZoString::npos) {
      name = full;
    } else {
      path = ZoString(full.left(last));
      name = ZoString(full.mid(last + 1));
    }
  }

  ZoString path, name;
};

// A key that ends in "@" names the registry key rather than a value of that name.
bool namesKey(std::wstring_view key) noexcept { return key.ends_with(L'@'); }

bool isSamePath(const ZoString& a, const ZoString& b) {
  return _wcsicmp(zo::withoutEmptyLevels(a.view()).c_str(),
                  zo::withoutEmptyLevels(b.view()).c_str()) == 0;
}

// The platform may make the levels before a bad one: so they are looked at first.
bool isPossible(const Split& full) noexcept {
  if (full.name.length() > kLongestName) return false;
  for (std::wstring_view rest = full.path.view(); !rest.empty();) {
    const size_t level = std::min(rest.find(L'\\'), rest.size());
    if (level > kLongestLevel) return false;
    rest.remove_prefix(std::min(level + 1, rest.size()));
  }
  return true;
}

// What cannot be kept must not be missing without a word.
void enter(ZoVariant::Dict& entries, ZoString name, ZoVariant value) {
  zo::throwIfNoMemory(entries.insertAt(std::move(name), std::move(value)));
}

// Does something however a function is left.
template <class Work>
struct AtEnd {
  Work work;
  ~AtEnd() { work(); }
};
template <class Work>
AtEnd(Work) -> AtEnd<Work>;

}  // namespace

// As init does for null, but without its guard, which costs attaching more than all the rest.
ZoStdCfg::ZoStdCfg() : base_(kDefaultBase), registry_(std::make_unique<SECRegistry>()) {}
ZoStdCfg::~ZoStdCfg() = default;

int ZoStdCfg::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

// ---- Frames round the protected operations ----

ZoVariant ZoStdCfg::operator[](const wchar_t* key) { return at(key, true); }

ZoVariant ZoStdCfg::at(const wchar_t* key, const ZoVariant& defaultValue, bool nested) {
  ZoVariant value;
  if (getAt(key, value, nested)) return defaultValue;
  return value;
}

ZoVariant ZoStdCfg::at(const wchar_t* key, bool nested) { return at(key, ZoVariant(), nested); }

int ZoStdCfg::getAt(const wchar_t* key, ZoVariant& value, bool nested) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  const ZoString text(key);
  if (namesKey(text)) {
    if (readKey(fullKey(text), nested, 0, value)) return ZoResult::ok;
    return getValue(text, value);
  }
  // Asking isValue first would read the value twice.
  if (getValue(text, value) == ZoResult::ok) return ZoResult::ok;
  return readKey(fullKey(text), nested, 0, value) ? ZoResult::ok : ZoResult::refused;
}

bool ZoStdCfg::isValid(const wchar_t* key) {
  const zo::Writing writing(*this);
  return writing && (isValue(key) || isKey(key));
}

int ZoStdCfg::insertAt(const wchar_t* key, const ZoVariant& value) {
  const zo::Writing writing(*this);
  if (!writing || isValid(key)) return ZoResult::refused;
  return insert(key, value);
}

int ZoStdCfg::removeAt(const wchar_t* key) {
  const zo::Writing writing(*this);
  return writing ? remove(key) : ZoResult::refused;
}

int ZoStdCfg::replaceAt(const wchar_t* key, const ZoVariant& value) {
  const zo::Writing writing(*this);
  if (!writing || !zo::isStorable(value)) return ZoResult::refused;
  if (isValid(key) && remove(key)) return ZoResult::refused;
  return insert(key, value);
}

int ZoStdCfg::setAt(const wchar_t* key, const ZoVariant& value) {
  const zo::Writing writing(*this);
  if (!writing || !isValid(key)) return ZoResult::refused;
  return insert(key, value);
}

int ZoStdCfg::write(const wchar_t*) {
  const zo::Writing writing(*this);
  return writing ? ZoResult::ok : ZoResult::refused;
}

int ZoStdCfg::init(const wchar_t* path, HKEY* root) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  ZoString base(path ? path : kDefaultBase);
  registry_ = std::make_unique<SECRegistry>();
  base_ = std::move(base);
  root_ = root ? *root : nullptr;
  return ZoResult::ok;
}

// ---- What they are made of ----

int ZoStdCfg::insert(const wchar_t* key, const ZoVariant& value) {
  const Split full(fullKey(key));
  if (!isPossible(full) || !zo::isStorable(value)) return ZoResult::refused;
  if (!registry_->Connect(root_ ? root_ : HKEY_CURRENT_USER)) return ZoResult::refused;
  if (!registry_->Create(full.path)) return ZoResult::refused;
  const AtEnd closing{[this] { close(); }};
  return zo::writeValue(*registry_, full.name, value) ? ZoResult::ok : ZoResult::refused;
}

int ZoStdCfg::remove(const wchar_t* key) {
  const ZoString text(key);
  const ZoString full = fullKey(text);
  const auto removeValue = [&]() -> bool {
    const Split value(full);
    if (!open(value.path)) return false;
    const AtEnd closing{[this] { close(); }};
    return registry_->DeleteValue(value.name);
  };
  // The base itself, which an empty key names, is not the callers' to delete.
  const auto removeKey = [&] {
    return !isSamePath(full, fullKey(ZoString())) && isKey(text) &&
           registry_->DeleteKey(full, /*recursive=*/namesKey(text));
  };
  const bool removed = namesKey(text) && isKey(text) ? removeKey() : removeValue() || removeKey();
  return removed ? ZoResult::ok : ZoResult::refused;
}

ZoString ZoStdCfg::fullKey(ZoString key) {
  ZoString full = base_;
  full += L"\\";
  full += key;
  const unsigned int length = full.length();
  if (length > 0 && full[length - 1] == L'@') full.remove(length - 1);
  for (unsigned int i = full.first(L'@'); i != ZoString::npos; i = full.first(L'@'))
    full[i] = L'\\';
  return full;
}

bool ZoStdCfg::open(ZoString path) {
  return registry_->Connect(root_ ? root_ : HKEY_CURRENT_USER) &&
         registry_->Open(path, SECRegistry::permissionAllAccess);
}

bool ZoStdCfg::close() { return registry_->Close(); }

bool ZoStdCfg::isValue(ZoString key) {
  ZoVariant value;
  return getValue(std::move(key), value) == ZoResult::ok;
}

bool ZoStdCfg::isKey(ZoString key) {
  if (!open(fullKey(std::move(key)))) return false;
  close();
  return true;
}

int ZoStdCfg::getValue(ZoString key, ZoVariant& value) {
  const Split full(fullKey(std::move(key)));
  if (!open(full.path)) return ZoResult::refused;
  const AtEnd closing{[this] { close(); }};
  return zo::readValue(*registry_, full.name, value) ? ZoResult::ok : ZoResult::refused;
}

// Keys that cannot be opened, without permission or deleted meanwhile, are left out of the
// dictionary, as isKey says that they are none. Links among keys can form a circle: the depth ends
// it.
bool ZoStdCfg::readKey(const ZoString& path, bool nested, unsigned int depth, ZoVariant& value) {
  if (depth == kMaxDepth || !open(path)) return false;
  ZoVariant result(ZoVariant::kDict);
  ZoVariant::Dict& entries = *result.asDict();
  std::vector<ZoString> below;
  {
    const AtEnd closing{[this] { close(); }};
    zo::RegistryText text;
    SECRegistry::KeyValueTypes type{};
    for (unsigned long i = 0; registry_->EnumerateValues(i, text, type); ++i) {
      ZoString name(zo::viewOf(text));
      ZoVariant entry;
      if (zo::readValue(*registry_, name, entry)) enter(entries, std::move(name), std::move(entry));
    }
    for (unsigned long i = 0; nested && registry_->EnumerateKeys(i, text); ++i)
      below.emplace_back(zo::viewOf(text));
  }

  for (const ZoString& key : below) {
    ZoVariant entry;
    if (!readKey(path + L"\\" + key, nested, depth + 1, entry)) continue;
    // Next to a value of its name, a key bears the mark that tells it from one.
    ZoString entryName = key;
    while (entries.contains(entryName)) entryName += L"@";
    enter(entries, std::move(entryName), std::move(entry));
  }
  value = std::move(result);
  return true;
}
