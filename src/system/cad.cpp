#include <zo/names/handle.h>
#include <zo/results.h>
#include <zo/system/cad.h>
#include <zo/system/sys_disp.h>
#include <zo/text/containers/array.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/text_keys.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "system/first_failure.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace zo {

// The documents by how recently they were the current one, which is the last. The drawing without a
// name is one of them.
class CadDocuments {
 public:
  using Globals = ZoHashDict<ZoDwgGlobals*, ZoString>;
  struct Document {
    ZoString name;
    Globals globals;
  };

  CadDocuments() { all_.push_back(std::make_unique<Document>()); }

  [[nodiscard]] Document& current() noexcept { return *all_.back(); }
  [[nodiscard]] Document* find(std::wstring_view name) noexcept {
    const auto found = place(name);
    return found == all_.end() ? nullptr : found->get();
  }
  [[nodiscard]] const auto& all() const noexcept { return all_; }
  // Behind all others but the current one.
  void add(const ZoString& name) {
    auto document = std::make_unique<Document>();
    document->name = name.copy();
    all_.insert(all_.end() - 1, std::move(document));
  }
  void activate(std::wstring_view name) noexcept {
    const auto found = place(name);
    if (found != all_.end()) std::rotate(found, found + 1, all_.end());
  }
  void remove(std::wstring_view name) noexcept {
    const auto found = place(name);
    if (found != all_.end()) all_.erase(found);
  }

 private:
  [[nodiscard]] std::vector<std::unique_ptr<Document>>::iterator place(
      std::wstring_view name) noexcept {
    return std::ranges::find_if(
        all_, [&](const auto& document) { return equalTexts(document->name, name); });
  }

  std::vector<std::unique_ptr<Document>> all_;
};

}  // namespace zo

namespace {

using Document = zo::CadDocuments::Document;

void sendDocumentNotice(const wchar_t* notice, const ZoString& name) {
  auto* const dispatcher = zo::serviceOrNull<ZoSysDisp>();
  if (!dispatcher) return;
  ZoVariant data(ZoVariant::kDict);
  zo::throwIfNoMemory(data.put(L"Document", ZoVariant(name.copy())));
  static_cast<void>(dispatcher->sendNotice(notice, data));
}

// The end of globals may take others back, and even close their document.
void endGlobals(zo::CadDocuments& documents, const ZoString& name) {
  for (;;) {
    Document* const document = documents.find(name);
    if (!document || document->globals.entries() == 0) return;
    const auto [key, globals] = *document->globals.begin();
    ZoDwgGlobals* const last = globals;
    document->globals.removeAt(ZoString(key));
    delete last;
  }
}

}  // namespace

ZoDwgGlobals::~ZoDwgGlobals() = default;

int ZoCad::getDocument(ZoString&) { return ZoResult::refused; }
int ZoCad::getDocuments(ZoSequence<ZoString>&) { return ZoResult::refused; }
int ZoCad::openDocument(const ZoString&) { return ZoResult::refused; }
int ZoCad::activateDocument(const ZoString&) { return ZoResult::refused; }
int ZoCad::closeDocument(const ZoString&) { return ZoResult::refused; }
HWND__* ZoCad::mainWindow() { return nullptr; }
int ZoCad::setMainWindow(HWND__*) { return ZoResult::refused; }
int ZoCad::paletteColor(ZoColor::Type type, unsigned int& rgb) {
  if (type == ZoColor::kTrueColor) return ZoResult::refused;
  rgb = ZoColor(type).rgb();
  return ZoResult::ok;
}
bool ZoCad::exists(const ZoHnd&) { return false; }
int ZoCad::prompt(const ZoString&) { return ZoResult::refused; }
bool ZoCad::isLayerInUse(const ZoString&) { return false; }
void ZoCad::layerRenamed(const ZoString&, const ZoString&) {}

ZoStdCad::ZoStdCad() : documents_(std::make_unique<zo::CadDocuments>()) {}

ZoStdCad::~ZoStdCad() {
  std::vector<ZoString> names;
  for (const auto& document : documents_->all()) names.push_back(document->name);
  for (const ZoString& name : names) endGlobals(*documents_, name);
}

int ZoStdCad::release(const wchar_t* module) {
  poolRelease(module);
  return zo::releaseWithLibrary(this, module);
}

// Globals may register and take back others while they are asked: who is asked is settled before,
// and each is looked up again by name.
void ZoStdCad::poolRelease(const wchar_t* module) {
  if (!module) return;
  const zo::Writing writing(*this);
  if (!writing) return;
  std::vector<std::pair<ZoString, ZoString>> names;
  for (const auto& document : documents_->all())
    for (const auto [key, globals] : document->globals) names.emplace_back(document->name, key);
  zo::FirstFailure failure;
  for (const auto& ask : names) {
    const ZoString& document = ask.first;
    const ZoString& name = ask.second;
    const auto find = [&]() -> ZoDwgGlobals* {
      Document* const found = documents_->find(document);
      ZoDwgGlobals** const globals = found ? found->globals.at(name) : nullptr;
      return globals ? *globals : nullptr;
    };
    failure.run([&] {
      ZoDwgGlobals* const asked = find();
      if (!asked || asked->release(module) != 0) return;
      if (find() == asked)  // they may have named a successor
        documents_->find(document)->globals.removeAt(name);
    });
  }
  failure.rethrow();
}

bool ZoStdCad::isPresent() { return false; }

int ZoStdCad::registerGlobals(ZoDwgGlobals* globals) {
  const zo::Writing writing(*this);
  if (!writing || !globals) return ZoResult::refused;
  return documents_->current().globals.insertAt(globals->name(), globals);
}

ZoDwgGlobals* ZoStdCad::dwgGlobals(const ZoString& name) {
  const zo::Reading reading(*this);
  if (!reading) return nullptr;
  ZoDwgGlobals** const globals = documents_->current().globals.at(name);
  return globals ? *globals : nullptr;
}

int ZoStdCad::unregisterGlobals(const ZoString& name) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  return documents_->current().globals.removeAt(name);
}

int ZoStdCad::getDocument(ZoString& name) {
  const zo::Reading reading(*this);
  if (!reading) return ZoResult::refused;
  name = documents_->current().name.copy();
  return ZoResult::ok;
}

int ZoStdCad::getDocuments(ZoSequence<ZoString>& names) {
  ZoArray<ZoString> found;
  {
    const zo::Reading reading(*this);
    if (!reading) return ZoResult::refused;
    for (const auto& document : documents_->all())
      if (!document->name.isEmpty()) zo::throwIfNoMemory(found.prepend(document->name.copy()));
  }
  return names.copyFrom(found);
}

HWND__* ZoStdCad::mainWindow() { return mainWindow_; }

int ZoStdCad::setMainWindow(HWND__* window) {
  mainWindow_ = window;
  return ZoResult::ok;
}

void ZoStdCad::documentEnds(const ZoString&) {}

int ZoStdCad::documentOpened(const ZoString& name) {
  {
    const zo::Writing writing(*this);
    if (!writing || name.isEmpty() || documents_->find(name)) return ZoResult::refused;
    documents_->add(name);
  }
  sendDocumentNotice(L"ZoDocumentOpened", name);
  return ZoResult::ok;
}

int ZoStdCad::documentActivated(const ZoString& name) {
  ZoString activated;
  {
    const zo::Writing writing(*this);
    const Document* const document = writing ? documents_->find(name) : nullptr;
    if (!document) return ZoResult::refused;
    if (document == &documents_->current()) return ZoResult::ok;
    activated = document->name.copy();
    documents_->activate(name);
  }
  sendDocumentNotice(L"ZoDocumentActivated", activated);
  return ZoResult::ok;
}

int ZoStdCad::documentClosed(const ZoString& name) {
  ZoString closed, activated;
  bool isSwitch = false;
  {
    const zo::Writing writing(*this);
    const Document* const document = writing && !name.isEmpty() ? documents_->find(name) : nullptr;
    if (!document) return ZoResult::refused;
    closed = document->name.copy();
    isSwitch = document == &documents_->current();
    endGlobals(*documents_, closed);
    documentEnds(closed);
    documents_->remove(closed);
    activated = documents_->current().name.copy();
  }
  zo::FirstFailure failure;
  failure.run([&] { sendDocumentNotice(L"ZoDocumentClosed", closed); });
  if (isSwitch) failure.run([&] { sendDocumentNotice(L"ZoDocumentActivated", activated); });
  failure.rethrow();
  return ZoResult::ok;
}
