// Any text as the text form of a variant: what is made of it is bounded by its length, the place of
// an error lies inside it, and what stands around it does not change the result.
#include <string>
#include <vector>

#include "fuzz.h"
#include "variant/text_form.h"

using namespace zo;

namespace {

constexpr unsigned int kMaxDepth = 64;

struct Model {
  FormHead head;
  std::wstring text;
  std::vector<Model> elements;
};

// Refuses what ZoVariant's builder refuses by rules of its own: some codes, a second equal key.
struct Builder {
  using Value = Model;
  using Key = std::wstring;

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
    value.text = text;
    units += text.size();
  }
  bool makeGuid(Model& value, const FormHead& head, std::wstring_view text) {
    makeEmpty(value, head);
    return text.front() == L'{';
  }
  void makeEmpty(Model& value, const FormHead& head) {
    value.head = head;
    ++values;
  }
  Key key(std::wstring_view text) {
    units += text.size();
    return Key(text);
  }
  bool addEntry(Model& dict, Key&& key, Model&& value) {
    if (!dict.elements.empty() && dict.elements.back().text == key) return false;
    value.text = std::move(key);
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
  bool parsed;
  std::size_t position, values, units, depth;
};
Result parse(std::wstring_view text) {
  Builder builder;
  TextFormParser<Builder> parser(text, builder, kMaxDepth);
  Model value;
  const bool parsed = parser.parse(value);
  const std::size_t depth = depthOf(value);
  ZO_FUZZ_CHECK(depth <= kMaxDepth);
  return {parsed, parser.position(), builder.values, builder.units, depth};
}

}  // namespace

// Bytes of 0x80 and more stand for characters of other alphabets.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::wstring text;
  for (std::size_t i = 0; i < size; ++i)
    text += static_cast<wchar_t>(data[i] < 0x80 ? data[i] : data[i] * 0x101);
  const Result result = parse(text);
  ZO_FUZZ_CHECK(result.position <= text.size());
  ZO_FUZZ_CHECK(!result.parsed || result.position == text.size());
  ZO_FUZZ_CHECK(result.values <= text.size() && result.units <= text.size());
  if (!result.parsed) return 0;
  ZO_FUZZ_CHECK(parse(L" \n" + text + L"\t").parsed);
  ZO_FUZZ_CHECK(!parse(text + L" ]").parsed);
  ZO_FUZZ_CHECK(parse(L"Sequence [" + text + L"]").parsed || result.depth + 1 >= kMaxDepth);
  return 0;
}
