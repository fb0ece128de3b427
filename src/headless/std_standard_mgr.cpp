#include <zo/files/file.h>
#include <zo/files/text_file.h>
#include <zo/headless/std_standard_mgr.h>
#include <zo/results.h>
#include <zo/system/cfg.h>
#include <zo/system/file_search.h>
#include <zo/system/sys_disp.h>
#include <zo/text/containers/array.h>
#include <zo/xml/json.h>
#include <zo/xml/xml_class.h>

#include <algorithm>
#include <utility>

#include "headless/standard_store.h"
#include "headless/standard_value.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

using Texts = ZoSequence<ZoString>;

int give(const std::vector<std::wstring>& found, Texts& texts) {
  ZoArray<ZoString> all;
  for (const std::wstring& text : found) zo::throwIfNoMemory(all.append(ZoString(text)));
  return texts.copyFrom(all);
}

// M4 before M10.
int giveSorted(std::vector<std::wstring> found, Texts& texts) {
  std::ranges::sort(found, [](const auto& a, const auto& b) { return zo::comesBefore(a, b); });
  return give(found, texts);
}

std::vector<std::wstring> keysOf(const ZoVariant& dict) {
  std::vector<std::wstring> keys;
  for (const auto [key, position, value] : dict.elements()) keys.emplace_back(key->view());
  return keys;
}

void tell(const wchar_t* module, std::vector<std::wstring> names) {
  auto* const dispatcher = zo::serviceOrNull<ZoSysDisp>();
  if (names.empty() || !dispatcher) return;
  ZoArray<ZoString> texts;
  if (giveSorted(std::move(names), texts) != ZoResult::ok) throw std::bad_alloc();
  ZoVariant data(ZoVariant::kDict), list(ZoVariant::kSequence);
  ZoVariant::Sequence& sequence = list;
  for (const ZoString& text : texts) zo::throwIfNoMemory(sequence.append(ZoVariant(text)));
  zo::throwIfNoMemory(data.put(L"Module", module));
  zo::throwIfNoMemory(data.put(L"Names", std::move(list)));
  static_cast<void>(dispatcher->sendNotice(L"ZoStandardsChanged", data));
}

// A value's text form, XML or JSON: which of them its first sign tells.
bool readForm(const ZoString& text, ZoVariant& value) {
  const std::size_t first = text.view().find_first_not_of(L" \t\r\n");
  const wchar_t sign = first == std::wstring_view::npos ? L'\0' : text[first];
  if (sign == L'{' || sign == L'[') return ZoJson::parse(text.view(), value) == ZoResult::ok;
  if (sign != L'<') return value.parse(text) == 0;
  ZoXMLClass document;
  return document.parse(text) == ZoResult::ok && document.toVariant(value) == ZoResult::ok;
}

// The setting, in its place among others; empty for a class that none can have.
ZoString preferenceKey(const ZoString& standardClass) {
  if (standardClass.isEmpty() || standardClass.view().find(L'@') != std::wstring_view::npos)
    return {};
  return ZoString(L"standards@preferred@") + standardClass;
}

}  // namespace

ZoStdStandardMgr::ZoStdStandardMgr() : store_(std::make_unique<zo::StandardStore>()) {}
ZoStdStandardMgr::~ZoStdStandardMgr() = default;

int ZoStdStandardMgr::release(const wchar_t* module) {
  return zo::releaseWithLibrary(this, module);
}

void ZoStdStandardMgr::poolRelease(const wchar_t* module) {
  if (module) static_cast<void>(remove(L"", module));
}

int ZoStdStandardMgr::getStandard(const ZoString& name, ZoVariant& standard) {
  const zo::StandardPtr found = store_->find(name);
  if (!found) return ZoResult::refused;
  standard = found->value.copy();
  return ZoResult::ok;
}

int ZoStdStandardMgr::add(const ZoVariant& standards, const wchar_t* module) {
  return addFrom(standards, module, {});
}

int ZoStdStandardMgr::addFrom(const ZoVariant& standards, const wchar_t* module,
                              const ZoFileName& file) {
  std::vector<std::wstring> names;
  if (!module) module = L"";
  {
    const zo::Writing writing(*this);
    if (!writing) return ZoResult::refused;
    if (const int code = store_->add(standards, module, file.view(), names)) return code;
  }
  tell(module, std::move(names));
  return ZoResult::ok;
}

int ZoStdStandardMgr::addFile(const ZoFileName& file, const wchar_t* module) {
  ZoFileName found(file);
  if (auto* const search = zo::serviceOrNull<ZoFileSearch>()) {
    ZoFileName place;
    if (search->find(file, place) == ZoResult::ok) found = place;
  }
  ZoFile open;
  if (open.open(found, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                ZoFile::kSequential))
    return ZoResult::refused;
  return addOpenFile(open, found, module);
}

int ZoStdStandardMgr::addOpenFile(ZoFile& file, const ZoFileName& called, const wchar_t* module) {
  ZoString text;
  if (zoReadText(file, text) != ZoResult::ok) return ZoResult::refused;
  ZoVariant standards;
  if (!readForm(text, standards)) return ZoResult::invalid;
  return addFrom(standards, module, called);
}

int ZoStdStandardMgr::remove(const ZoString& name, const wchar_t* module) {
  if (!module) module = L"";
  std::vector<std::wstring> names;
  {
    const zo::Writing writing(*this);
    if (!writing) return ZoResult::refused;
    store_->remove(name, module, names);
  }
  if (names.empty()) return ZoResult::refused;
  tell(module, std::move(names));
  return ZoResult::ok;
}

int ZoStdStandardMgr::find(const ZoStandardFilter& filter, Texts& names) {
  return giveSorted(store_->names(filter), names);
}

int ZoStdStandardMgr::getName(const ZoString& spelling, ZoString& name) {
  const zo::StandardPtr found = store_->find(spelling);
  if (!found) return ZoResult::refused;
  name = ZoString(found->name);
  return ZoResult::ok;
}

int ZoStdStandardMgr::getEditions(const ZoString& name, Texts& editions) {
  std::vector<std::wstring> found = store_->editions(name);
  return found.empty() ? ZoResult::refused : give(found, editions);
}

int ZoStdStandardMgr::getSuccessor(const ZoString& name, ZoString& successor) {
  std::wstring found;
  if (const int code = store_->successor(name, found)) return code;
  successor = ZoString(found);
  return ZoResult::ok;
}

int ZoStdStandardMgr::getOrigin(const ZoString& name, ZoString& module, ZoFileName& file) {
  const zo::StandardPtr found = store_->find(name);
  if (!found) return ZoResult::refused;
  file = ZoFileName(found->file);
  module = ZoString(found->module);
  return ZoResult::ok;
}

int ZoStdStandardMgr::getTables(const ZoString& name, Texts& tables) {
  const zo::StandardPtr found = store_->find(name);
  if (!found) return ZoResult::refused;
  const ZoVariant* const all = found->value.at(L"Tables");
  return giveSorted(all ? keysOf(*all) : std::vector<std::wstring>(), tables);
}

int ZoStdStandardMgr::getSizes(const ZoString& name, const ZoString& table, Texts& sizes) {
  const zo::StandardPtr found = store_->find(name);
  const ZoVariant* const rows = found ? zo::standardTable(found->value, table) : nullptr;
  return rows ? giveSorted(keysOf(*rows), sizes) : ZoResult::refused;
}

int ZoStdStandardMgr::getRow(const ZoString& name, const ZoString& table, const ZoString& size,
                             ZoVariant& row) {
  const zo::StandardPtr found = store_->find(name);
  const ZoVariant* const rows = found ? zo::standardTable(found->value, table) : nullptr;
  const ZoVariant* const one = rows ? zo::standardRow(*rows, size) : nullptr;
  if (!one) return ZoResult::refused;
  row = one->copy();
  return ZoResult::ok;
}

int ZoStdStandardMgr::getPreferred(const ZoString& standardClass, ZoString& name) {
  auto* const settings = zo::serviceOrNull<ZoCfg>();
  const ZoString key = preferenceKey(standardClass);
  ZoVariant value;
  if (!settings || key.isEmpty() || settings->getAt(key, value, false) != ZoResult::ok)
    return ZoResult::refused;
  return value.get(name);
}

int ZoStdStandardMgr::setPreferred(const ZoString& standardClass, const ZoString& name) {
  auto* const settings = zo::serviceOrNull<ZoCfg>();
  const ZoString key = preferenceKey(standardClass);
  if (!settings || key.isEmpty()) return ZoResult::refused;
  if (!name.isEmpty()) return settings->put(key, name);
  static_cast<void>(settings->removeAt(key));
  return ZoResult::ok;
}
