#include "xml/dom.h"

#include <algorithm>

#include "xml/decode.h"
#include "xml/xml_write.h"

namespace zo {
namespace {

// Not every toolchain's library has these.
constexpr IID kDocument2 = {
    0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr IID kElement = {
    0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr IID kReader = {
    0xA4F96ED0, 0xF829, 0x476E, {0x81, 0xC0, 0xCD, 0xC7, 0xBD, 0x2A, 0x08, 0x02}};
constexpr CLSID kDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr CLSID kDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr CLSID kReader60 = {
    0x88D96A0C, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr CLSID kReader30 = {
    0x3124C396, 0xFB13, 0x4836, {0xA6, 0xAD, 0x13, 0x17, 0xF1, 0x71, 0x36, 0x88}};

template <class T>
ComPtr<T> firstOf(std::initializer_list<CLSID> classes, const IID& iid) noexcept {
  ComPtr<T> object;
  for (const CLSID& id : classes) {
    auto** const out = reinterpret_cast<void**>(object.out());
    if (SUCCEEDED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, iid, out))) break;
  }
  return object;
}

VARIANT asVariant(bool value) noexcept {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_BOOL;
  variant.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return variant;
}

// Asked without harm of versions that do not know the property.
bool setProperty(IXMLDOMDocument2& dom, const wchar_t* name, const VARIANT& value) {
  return SUCCEEDED(dom.setProperty(ComText(name).get(), value));
}

// ---- SAX: only for where an error lies, which some DOMs do not tell ----

#ifdef __GNUC__  // interfaces of COM have no virtual destructor
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
class PlaceFinder final : public ISAXErrorHandler {
 public:
  explicit PlaceFinder(XmlRefusal& refusal) noexcept : refusal_(refusal) {}

  // It lives on the stack, longer than the reader.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) noexcept override {
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 1; }
  ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }

  HRESULT STDMETHODCALLTYPE error(ISAXLocator* locator, const WCHAR* message,
                                  HRESULT) noexcept override {
    return note(locator, message);
  }
  HRESULT STDMETHODCALLTYPE fatalError(ISAXLocator* locator, const WCHAR* message,
                                       HRESULT) noexcept override {
    return note(locator, message);
  }
  HRESULT STDMETHODCALLTYPE ignorableWarning(ISAXLocator*, const WCHAR*,
                                             HRESULT) noexcept override {
    return S_OK;
  }

 private:
  // The locator is good for nothing once the reader has returned.
  HRESULT note(ISAXLocator* locator, const WCHAR* message) noexcept {
    if (refusal_.place.line > 0) return S_OK;  // the first counts
    int line = 0;
    int column = 0;
    if (locator) {
      locator->getLineNumber(&line);
      locator->getColumnNumber(&column);
    }
    refusal_.place = {static_cast<unsigned int>(std::max(line, 0)),
                      static_cast<unsigned int>(std::max(column, 0))};
    try {
      if (message) refusal_.reason = message;
    } catch (...) {  // the place alone, then
    }
    return E_FAIL;
  }

  XmlRefusal& refusal_;
};
#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

void askReader(const ComText& text, XmlRefusal& refusal) {
  const auto reader = firstOf<ISAXXMLReader>({kReader60, kReader30}, kReader);
  if (!reader) return;
  PlaceFinder finder(refusal);
  if (FAILED(reader->putErrorHandler(&finder))) return;
  (void)reader->parse(asVariant(text));
  (void)reader->putErrorHandler(nullptr);
}

void askParseError(XmlDocument& document, XmlRefusal& refusal) {
  ComPtr<IXMLDOMParseError> error;
  if (FAILED(document.dom->get_parseError(error.out())) || !error) return;
  long line = 0;
  long column = 0;
  ComText reason;
  error->get_line(&line);
  error->get_linepos(&column);
  error->get_reason(reason.out());
  refusal.reason = reason.view();
  if (line > 0)
    refusal.place = {static_cast<unsigned int>(line),
                     static_cast<unsigned int>(std::max(column, 0L))};
}

}  // namespace

VARIANT asVariant(const ComText& text) noexcept {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_BSTR;
  variant.bstrVal = text.get();
  return variant;
}

std::shared_ptr<XmlDocument> newXmlDocument() {
  auto document = std::make_shared<XmlDocument>();
  document->dom = firstOf<IXMLDOMDocument2>({kDocument60, kDocument30}, kDocument2);
  if (!document->dom) return nullptr;
  IXMLDOMDocument2& dom = *document->dom.get();
  // Documents come as texts that were looked at before: a document type that has come so far is
  // allowed, and what it names outside is not fetched.
  dom.put_async(VARIANT_FALSE);
  dom.put_validateOnParse(VARIANT_FALSE);
  dom.put_resolveExternals(VARIANT_FALSE);
  dom.put_preserveWhiteSpace(VARIANT_TRUE);
  setProperty(dom, L"ProhibitDTD", asVariant(false));
  return setProperty(dom, L"SelectionLanguage", asVariant(ComText(L"XPath"))) ? document : nullptr;
}

bool XmlDocument::useNamespaces() {
  std::wstring list;
  for (const auto& [prefix, uri] : namespaces) {
    if (!list.empty()) list += L' ';
    list += L"xmlns:" + prefix + L"=\"" + uri + L'"';
  }
  return setProperty(*dom.get(), L"SelectionNamespaces", asVariant(ComText(list)));
}

const std::wstring* XmlDocument::namespaceOf(std::wstring_view prefix) const noexcept {
  const auto found = std::find_if(namespaces.begin(), namespaces.end(),
                                  [&](const auto& each) { return each.first == prefix; });
  return found == namespaces.end() ? nullptr : &found->second;
}

bool parseXml(XmlDocument& document, const ComText& text) {
  VARIANT_BOOL isTaken = VARIANT_FALSE;
  return document.dom->loadXML(text.get(), &isTaken) == S_OK && isTaken != VARIANT_FALSE;
}

// Its property for the text may indent it; what it saves it does not.
bool writeXml(const XmlDocument& document, std::wstring& text) {
  ComPtr<IStream> stream;
  VARIANT target;
  VariantInit(&target);
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.out()))) return false;
  target.vt = VT_UNKNOWN;
  target.punkVal = stream.get();
  STATSTG state{};
  HGLOBAL memory = nullptr;
  if (FAILED(document.dom->save(target)) || FAILED(stream->Stat(&state, STATFLAG_NONAME)) ||
      FAILED(GetHGlobalFromStream(stream.get(), &memory)))
    return false;
  const auto* const bytes = static_cast<const char*>(GlobalLock(memory));
  if (!bytes) return false;
  DecodedText decoded;
  decodeXml({bytes, static_cast<std::size_t>(state.cbSize.QuadPart)}, decoded);
  GlobalUnlock(memory);
  text = xmlParts(decoded.text.view(), document.documentType);
  return !decoded.hasFailed;
}

XmlRefusal whyRefused(XmlDocument& document, const ComText& text) {
  XmlRefusal refusal;
  askParseError(document, refusal);
  if (refusal.place.line == 0) askReader(text, refusal);
  while (!refusal.reason.empty() && refusal.reason.back() < L'!') refusal.reason.pop_back();
  return refusal;
}

ComPtr<IXMLDOMElement> elementOf(const DomNode& node) noexcept {
  return node.as<IXMLDOMElement>(kElement);
}

}  // namespace zo
