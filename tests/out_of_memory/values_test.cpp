// Variants, archives, reports and compression when memory runs out.
#include <gtest/gtest.h>
#include <oaidl.h>
#include <zo/archive.h>
#include <zo/compress.h>
#include <zo/geometry.h>
#include <zo/graph.h>
#include <zo/text/number_text.h>
#include <zo/variant.h>

#include <cstring>
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

struct Block {
  char* bytes = nullptr;
  unsigned int size = 0;
  Block() = default;
  Block(Block&& other) noexcept : bytes(std::exchange(other.bytes, nullptr)), size(other.size) {}
  ~Block() { std::free(bytes); }
};

TEST(OutOfMemory, CompressionGivesAllOrNothing) {
  const std::string text(5000, 'x');
  const auto isThere = [](const Block& block, bool done) {
    EXPECT_EQ(block.bytes != nullptr, done);
  };
  failEveryRequest(
      "compress", [] { return Block(); },
      [&](Block& out) { return ZoCompress(ZoZip::normal)(text.c_str(), out.bytes, out.size); },
      isThere);
  Block packed;
  ASSERT_EQ(ZoCompress(ZoZip::normal)(text.c_str(), packed.bytes, packed.size), 0);
  failEveryRequest(
      "decompress", [] { return Block(); },
      [&](Block& out) { return ZoExplode()(packed.bytes, packed.size, out.bytes); }, isThere);
  ASSERT_FALSE(HasFailure());
}

TEST(OutOfMemory, GraphsKeepWhatTheyHold) {
  static const int keys[3] = {};
  failEveryRequest(
      "graph",
      [] {
        ZoDottyGraph graph;
        graph.addNode(&keys[0], L"first", L"red");
        return graph;
      },
      [](ZoDottyGraph& graph) {
        graph.addNode(&keys[1], L"a node with a long label", L"blue");
        if (!graph.addLink(&keys[0], &keys[1], L"a link with a long label")) return 1;
        if (!graph.putNodeToCluster(&keys[1], graph.addCluster(L"cluster"))) return 1;
        std::wostringstream out;
        out << graph;
        return out.good() ? 0 : 1;
      },
      [](const ZoDottyGraph& graph, bool) {
        EXPECT_TRUE(graph.contains(&keys[0]));
        EXPECT_EQ(graph.contains(&keys[1]), graph.nodes().size() == 2);
      });
}

}  // namespace
