// XML documents beside the platform's DOM called directly; pugixml shows what that DOM cannot
// reach.
#include <benchmark/benchmark.h>
#include <msxml2.h>
#include <oleauto.h>
#include <windows.h>
#include <zo/xml.h>

#include <filesystem>
#include <fstream>
#include <string>
#ifdef ZO_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

namespace {

constexpr IID kDocument2 = {
    0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr CLSID kDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

// ---- The document: a catalogue of parts ----

std::string catalog(std::size_t bytes) {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog>\n";
  for (int i = 0; text.size() < bytes; ++i) {
    const std::string number = std::to_string(i);
    text += "  <part id=\"" + number + "\" kind=\"" + (i % 3 ? "screw" : "washer") +
            "\">\n    <name>DIN 912 - M" + std::to_string(i % 64) +
            " &amp; co</name>\n    <length>" + std::to_string(i % 200) +
            ".5</length>\n    <note>gr\xC3\xBC\xC3\x9F" +
            "e und so weiter, ein l\xC3\xA4ngerer Text</note>\n  </part>\n";
  }
  return text + "</catalog>\n";
}

template <std::size_t megabytes>
const std::filesystem::path& file() {
  static const std::filesystem::path path = [] {
    const auto made = std::filesystem::temp_directory_path() /
                      ("xml_bench_" + std::to_string(megabytes) + ".xml");
    std::ofstream(made, std::ios::binary) << catalog(megabytes * 1000 * 1000);
    return made;
  }();
  return path;
}

// The DOM as a program would use it.
class Dom {
 public:
  Dom() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CoCreateInstance(kDocument60, nullptr, CLSCTX_INPROC_SERVER, kDocument2,
                     reinterpret_cast<void**>(&dom_));
    dom_->put_async(VARIANT_FALSE);
    dom_->put_validateOnParse(VARIANT_FALSE);
    VARIANT language = text(L"XPath");
    const BSTR property = SysAllocString(L"SelectionLanguage");
    dom_->setProperty(property, language);
    SysFreeString(property);
    VariantClear(&language);
  }
  ~Dom() { dom_->Release(); }
  Dom(const Dom&) = delete;
  Dom& operator=(const Dom&) = delete;

  static VARIANT text(const wchar_t* text) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_BSTR;
    variant.bstrVal = SysAllocString(text);
    return variant;
  }
  IXMLDOMDocument2* operator->() const { return dom_; }

 private:
  IXMLDOMDocument2* dom_ = nullptr;
};

template <std::size_t megabytes>
void load(benchmark::State& state) {
  const ZoFileName name(file<megabytes>().wstring());
  for (auto _ : state) {
    ZoXMLClass document;
    if (document.load(name) != 0) state.SkipWithError("not loaded");
  }
}
template <std::size_t megabytes>
void loadDom(benchmark::State& state) {
  for (auto _ : state) {
    const Dom dom;
    VARIANT path = Dom::text(file<megabytes>().c_str());
    VARIANT_BOOL isTaken = VARIANT_FALSE;
    if (dom->load(path, &isTaken) != S_OK) state.SkipWithError("not loaded");
    VariantClear(&path);
  }
}
// The text is there already, which is less than we do.
template <std::size_t megabytes>
void loadText(benchmark::State& state) {
  const ZoString text = ZoString::fromUtf8(catalog(megabytes * 1000 * 1000));
  const std::wstring_view behind = text.view().substr(text.view().find(L'\n'));
  const BSTR ready = SysAllocStringLen(behind.data() + 1, static_cast<UINT>(behind.size() - 1));
  for (auto _ : state) {
    const Dom dom;
    VARIANT_BOOL isTaken = VARIANT_FALSE;
    if (dom->loadXML(ready, &isTaken) != S_OK) state.SkipWithError("not loaded");
  }
  SysFreeString(ready);
}
#ifdef ZO_BENCH_PUGIXML
template <std::size_t megabytes>
void loadPugi(benchmark::State& state) {
  for (auto _ : state) {
    pugi::xml_document document;
    if (!document.load_file(file<megabytes>().c_str())) state.SkipWithError("not loaded");
  }
}

#endif

// ---- 10,000 values of a part with 100 properties ----

const std::wstring& part() {
  static const std::wstring text = [] {
    std::wstring made = L"<part><properties>";
    for (int i = 0; i < 100; ++i) {
      const std::wstring number = std::to_wstring(i);
      made += L"<p" + number + L" unit=\"mm\">" + number + L"</p" + number + L'>';
    }
    return made + L"</properties></part>";
  }();
  return text;
}

const std::vector<std::wstring>& paths() {
  static const std::vector<std::wstring> all = [] {
    std::vector<std::wstring> made;
    for (int i = 0; i < 100; ++i) made.push_back(L"properties/p" + std::to_wstring(i));
    return made;
  }();
  return all;
}

void get(benchmark::State& state) {
  ZoXMLClass document;
  static_cast<void>(document.parse(part()));
  const ZoXMLNode root = document.root();
  for (auto _ : state) {
    for (int round = 0; round < 100; ++round) {
      for (const std::wstring& path : paths()) {
        ZoString text;
        if (root.get(path, text) != 0) state.SkipWithError("not found");
        benchmark::DoNotOptimize(text);
      }
    }
  }
}
void getDom(benchmark::State& state) {
  const Dom dom;
  const BSTR text = SysAllocString(part().c_str());
  VARIANT_BOOL isTaken = VARIANT_FALSE;
  dom->loadXML(text, &isTaken);
  IXMLDOMElement* root = nullptr;
  dom->get_documentElement(&root);
  for (auto _ : state) {
    for (int round = 0; round < 100; ++round) {
      for (const std::wstring& path : paths()) {
        const BSTR query = SysAllocStringLen(path.data(), static_cast<UINT>(path.size()));
        IXMLDOMNode* node = nullptr;
        BSTR value = nullptr;
        if (root->selectSingleNode(query, &node) != S_OK) state.SkipWithError("not found");
        node->get_text(&value);
        ZoString made(value, SysStringLen(value));
        benchmark::DoNotOptimize(made);
        SysFreeString(value);
        node->Release();
        SysFreeString(query);
      }
    }
  }
  root->Release();
  SysFreeString(text);
}

const bool registered = [] {
  name("Load/10MB/ours", load<10>);
  name("Load/10MB/peer:DOM load", loadDom<10>);
  name("Load/10MB/peer:loadXML of a ready text", loadText<10>);
  name("Load/50MB/ours", load<50>);
  name("Load/50MB/peer:DOM load", loadDom<50>);
  name("Load/50MB/peer:loadXML of a ready text", loadText<50>);
#ifdef ZO_BENCH_PUGIXML
  name("Load/10MB/peer:pugixml", loadPugi<10>);
  name("Load/50MB/peer:pugixml", loadPugi<50>);
#endif
  name("Get10000/ours", get);
  name("Get10000/peer:selectSingleNode", getDom);
  return true;
}();

}  // namespace
