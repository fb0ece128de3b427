// Any text as JSON: what is made of it is bounded by its length and by the depth, the place of an
// error lies inside it, and what stands around it does not change the result.
#include <string>
#include <vector>

#include "fuzz.h"
#include "xml/json_parser.h"

using namespace zo;

namespace {

constexpr unsigned int kMaxDepth = 64;

struct Model {
  FormHead head;
  std::wstring key;
  std::vector<Model> elements;
};

// Refuses what ZoVariant's builder refuses by rules of its own: some codes, a second equal key.
struct Builder {
  using Value = Model;

  bool head(const FormHead& head) {
    ZO_FUZZ_CHECK(static_cast<unsigned int>(head.kind) < std::size(kKinds));
    return static_cast<unsigned int>(head.code) != 0x1BAD;
  }
  template <class Payload>
  void make(Model& value, const FormHead& head, const Payload&) {
    makeEmpty(value, head);
  }
  void make(Model& value, const FormHead& head, std::wstring_view text) {
    makeEmpty(value, head);
    units += text.size();
  }
  bool makeGuid(Model& value, const FormHead& head, std::wstring_view text) {
    makeEmpty(value, head);
    return text.starts_with(L'{');
  }
  void makeEmpty(Model& value, const FormHead& head) {
    value = {};
    value.head = head;
    ++values;
  }
  std::wstring key(std::wstring_view text) {
    units += text.size();
    return std::wstring(text);
  }
  bool addEntry(Model& dict, std::wstring&& key, Model&& value) {
    if (!dict.elements.empty() && dict.elements.back().key == key) return false;
    value.key = std::move(key);
    dict.elements.push_back(std::move(value));
    return true;
  }
  void addElement(Model& sequence, Model&& value) { sequence.elements.push_back(std::move(value)); }

  std::size_t values = 0, units = 0;
};

std::size_t depthOf(const Model& model) {
  std::size_t deepest = 0;
  for (const Model& element : model.elements) deepest = std::max(deepest, 1 + depthOf(element));
  return deepest;
}

struct Result {
  bool isParsed;
  std::size_t depth;
};
Result parse(std::wstring_view text) {
  Builder builder;
  JsonParser<Builder> parser(text, builder, kMaxDepth);
  Model value;
  const bool isParsed = parser.parse(value);
  const JsonFault& fault = parser.fault();
  ZO_FUZZ_CHECK(isParsed == (fault.code == ZoResult::ok) && isParsed == !fault.reason);
  ZO_FUZZ_CHECK(fault.at <= text.size());
  ZO_FUZZ_CHECK(builder.values <= text.size() + 1 && builder.units <= text.size());
  const std::size_t depth = depthOf(value);
  ZO_FUZZ_CHECK(depth <= kMaxDepth);
  return {isParsed, depth};
}

}  // namespace

// Bytes of 0x80 and more stand for characters of other alphabets, and halves of pairs.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::wstring text;
  for (std::size_t i = 0; i < size; ++i)
    text += static_cast<wchar_t>(data[i] < 0x80 ? data[i] : data[i] * 0x101);
  const Result result = parse(text);
  if (!result.isParsed) return 0;
  ZO_FUZZ_CHECK(parse(L" \n" + text + L"\t").isParsed);
  ZO_FUZZ_CHECK(!parse(text + L" ]").isParsed && !parse(text + L",").isParsed);
  const bool isDeepest = result.depth >= kMaxDepth;
  ZO_FUZZ_CHECK(parse(L"[" + text + L", " + text + L"]").isParsed != isDeepest);
  ZO_FUZZ_CHECK(parse(L"{\"$zo\":[\"Dict\",{\"$zo\":" + text + L"}]}").isParsed != isDeepest);
  return 0;
}
