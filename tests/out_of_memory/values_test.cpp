// Variants, archives, reports and graphs when memory runs out.
#include <gtest/gtest.h>
#include <oaidl.h>
#include <zo/archive.h>
#include <zo/geometry.h>
#include <zo/graph.h>
#include <zo/text/number_text.h>
#include <zo/variant.h>

#include <functional>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "support/failing_memory.h"

namespace {

using zo::test::failEveryRequest;

ZoVariant part() {
  ZoVariant value(ZoVariant::kDict);
  EXPECT_EQ(value.put(L"name", L"a screw that has a long name"), 0);
  EXPECT_EQ(value.put(L"size/length", 20.5), 0);
  EXPECT_EQ(value.put(L"size/at", ZoPoint(1, 2, 3)), 0);
  ZoArray<ZoVariant> list;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list.append(ZoVariant(ZoIntToStr(i))), 0);
  EXPECT_EQ(value.put(L"list", ZoVariant(std::move(list))), 0);
  return value;
}

TEST(OutOfMemory, VariantsStayOrComplete) {
  const ZoVariant original = part();
  const ZoVariant old(L"old");
  const auto isResultOrOld = [&](const ZoVariant& value, bool done) {
    EXPECT_EQ(value, done ? original : old);
  };
  failEveryRequest(
      "copy", [&] { return old; }, [&](ZoVariant& v) { return v = original, 0; }, isResultOrOld);
  failEveryRequest(
      "parse", [&] { return std::make_pair(old, original.format()); },
      [](auto& state) { return state.first.parse(state.second); },
      [&](const auto& state, bool done) { isResultOrOld(state.first, done); });
  failEveryRequest(
      "print", [] { return ZoString(L"old"); }, [&](ZoString& s) { return original.format(s); },
      [&](const ZoString& s, bool done) { EXPECT_EQ(s, done ? original.format() : L"old"); });
  failEveryRequest(
      "put", [&] { return original; }, [](ZoVariant& v) { return v.put(L"new/deep/value", L"x"); },
      [&](const ZoVariant& v, bool done) {
        if (done) {
          EXPECT_EQ(v.find(L"new/deep/value")->asString(), L"x");
        }
        EXPECT_TRUE(v.find(L"size/at") && v.find(L"list/4")) << "what was there is lost";
      });
  failEveryRequest(
      "report", [&] { return std::make_pair(original, ZoString()); },
      [&](auto& state) {
        state.first = ZoVariant(5);
        state.second = ZoVariantReport(original, state.first).asText();
        return 0;
      },
      [](const auto& state, bool done) { EXPECT_EQ(!state.second.isEmpty(), done); });
}

TEST(OutOfMemory, OleFormsCompleteOrAreEmpty) {
  const ZoVariant original = part();
  struct Ole : VARIANT {
    Ole() { VariantInit(this); }
    Ole(const Ole&) = delete;
    Ole& operator=(const Ole&) = delete;
    ~Ole() { VariantClear(this); }
  };
  Ole whole;
  ASSERT_EQ(ZoVariantToOle(original, whole), 0);
  failEveryRequest(
      "to OLE", [] { return std::make_unique<Ole>(); },
      [&](std::unique_ptr<Ole>& out) { return ZoVariantToOle(original, *out); },
      [](const std::unique_ptr<Ole>& out, bool done) { EXPECT_EQ(out->vt != VT_EMPTY, done); });
  failEveryRequest(
      "from OLE", [] { return ZoVariant(L"old"); },
      [&](ZoVariant& out) { return ZoOleToVariant(whole, out); },
      [&](const ZoVariant& out, bool done) {
        EXPECT_EQ(out, done ? original : ZoVariant(L"old"));
      });
}

TEST(OutOfMemory, ArchivesSayThatTheyBrokeOff) {
  const ZoVariant original = part();
  const auto store = [&](ZoArchive& archive) {
    archive << original << ZoString(L"text") << ZoPlane();
  };
  failEveryRequest(
      "write", [] { return std::make_unique<ZoMemoryWriteArchive>(); },
      [&](std::unique_ptr<ZoMemoryWriteArchive>& archive) {
        archive->clear();
        store(*archive);
        return 0;
      },
      [](const std::unique_ptr<ZoMemoryWriteArchive>& archive, bool done) {
        if (done) {
          EXPECT_GT(archive->bytes().size(), 100u);
        }
      });
  ZoMemoryWriteArchive stored;
  store(stored);
  failEveryRequest(
      "read", [] { return ZoVariant(); },
      [&](ZoVariant& value) {
        ZoMemoryReadArchive archive(stored.bytes());
        archive >> value;
        return 0;
      },
      [&](const ZoVariant& value, bool done) {
        if (done) {
          EXPECT_EQ(value, original);
        }
      });
  failEveryRequest(
      "dump", [] { return std::make_unique<ZoDumpArchive>(); },
      [&](std::unique_ptr<ZoDumpArchive>& dump) {
        dump->clear();
        store(*dump);
        return dump->dump().isEmpty() ? 1 : 0;
      },
      [](std::unique_ptr<ZoDumpArchive>& dump, bool done) {
        if (done) {
          EXPECT_TRUE(dump->dump().contains(L"a screw"));
        }
      });
}

TEST(OutOfMemory, GraphsAreAsTheyWere) {
  static const int keys[3] = {};
  struct State {
    ZoDottyGraph graph;
    ZoDottyMap map;
  };
  ZoDottyGraph filled;
  for (const int& key : std::span(keys).first(2)) filled.addNode(&key, L"x=y");
  filled.addCluster(L"0");
  filled.addCluster(L"1");
  filled.putNodeToCluster(&keys[0], 0);
  filled.addLink(&keys[0], &keys[1]);
  const auto textOf = [](const ZoDottyGraph& graph) {
    std::wostringstream out;
    out << graph;
    return out.good() ? std::move(out).str() : std::wstring();
  };
  const std::wstring before = textOf(filled);
  constexpr const wchar_t* kName = L"a name of some length";
  const std::function<void(State&)> changes[] = {
      [](State& s) { s.graph.addNode(&keys[2], L"attributes=x"); },
      [](State& s) { s.graph.addLink(&keys[1], &keys[0], L"label", L"attributes=x"); },
      [](State& s) { s.graph.addCluster(L"label"); },
      [](State& s) { s.graph.putNodeToCluster(&keys[0], 1); },
      [](State& s) { s.map.add(s.graph, kName, L"red"); }};
  for (const auto& change : changes) {
    failEveryRequest(
        "graph", [&] { return State{.graph = filled, .map = {}}; },
        [&](State& s) { return change(s), 0; },
        [&](const State& s, bool done) {
          EXPECT_EQ(textOf(s.graph) == before, !done);
          EXPECT_TRUE(done || (!s.graph.contains(&keys[2]) && !s.map.find(kName)));
        });
  }
  failEveryRequest(
      "text", [] { return std::wstring(); },
      [&](std::wstring& text) { return (text = textOf(filled)).empty() ? 1 : 0; },
      [&](const std::wstring& text, bool done) { EXPECT_EQ(text, done ? before : L""); });
}

}  // namespace
