// Layers, objects and standards when memory runs out: everything or nothing has happened.
#include <zo/results.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

#include <functional>
#include <memory>
#include <utility>

#include "headless/headless_objects.h"
#include "support/failing_memory.h"

namespace zo::test {
namespace {

ZoVariant valueOf(ZoLayer& layers) {
  ZoVariant value;
  EXPECT_EQ(layers.toVariant(value), 0);
  return value;
}

std::unique_ptr<ZoStdLayer> someLayers() {
  auto layers = std::make_unique<ZoStdLayer>();
  for (const wchar_t* name : {L"a", L"b", L"c"}) EXPECT_EQ(layers->add({.name = name}), 0);
  EXPECT_EQ(layers->saveState(L"s"), 0);
  EXPECT_EQ(layers->setCurrent(L"a"), 0);
  EXPECT_EQ(layers->change(L"*", {.on = false}, ZoLayerData::kOn), 0);
  return layers;
}

TEST(OutOfMemoryInLayers, EachChangeIsWholeOrHasNotHappened) {
  ZoVariant stored;
  ASSERT_EQ(ZoStdLayer().toVariant(stored), 0);
  const std::pair<const char*, std::function<int(ZoLayer&)>> changes[] = {
      {"add", [](ZoLayer& l) { return l.add({.name = L"new", .description = L"text"}); }},
      {"change",
       [](ZoLayer& l) { return l.change(L"*", {.lineType = L"x"}, ZoLayerData::kLineType); }},
      {"rename", [](ZoLayer& l) { return l.rename(L"a", L"renamed"); }},
      {"remove", [](ZoLayer& l) { return l.remove(L"b"); }},
      {"current", [](ZoLayer& l) { return l.setCurrent(L"b"); }},
      {"save", [](ZoLayer& l) { return l.saveState(L"s2"); }},
      {"restore", [](ZoLayer& l) { return l.restoreState(L"s"); }},
      {"replace", [&](ZoLayer& l) { return l.fromVariant(stored); }}};
  const ZoVariant before = valueOf(*someLayers());
  for (const auto& [what, change] : changes) {
    const auto other = someLayers();
    ASSERT_EQ(change(*other), 0) << what;
    const ZoVariant after = valueOf(*other);
    failEveryRequest(
        what, someLayers, [&](auto& layers) { return change(*layers); },
        [&](auto& layers, bool done) { EXPECT_EQ(valueOf(*layers), done ? after : before); });
  }
}

TEST(OutOfMemoryInStandards, ASequenceIsAddedWholeOrNotAtAll) {
  ZoVariant two;
  ASSERT_EQ(two.parse(L"Sequence [ Standard { \"Name\" = String \"DIN EN ISO 1\" } "
                      L"Standard { \"Name\" = String \"DIN EN ISO 2\" } ]"),
            0);
  failEveryRequest(
      "add", [] { return std::make_unique<ZoStdStandardMgr>(); },
      [&](auto& standards) { return standards->add(two, L"m"); },
      [](auto& standards, bool done) {
        ZoString name;
        for (const wchar_t* spelling : {L"iso 1", L"iso 2"})
          EXPECT_EQ(standards->getName(spelling, name), done ? 0 : 1);
      });
}

TEST(OutOfMemoryInObjects, AnObjectIsThereWithItsHandleAndLayerOrNotAtAll) {
  failEveryRequest(
      "add",
      [] {
        auto objects = std::make_unique<HeadlessObjects>();
        static_cast<void>(objects->add(L"doc", ZoVariant(1), L"used"));
        return objects;
      },
      [](auto& objects) { return objects->add(L"doc", ZoVariant(2), L"layer").id() == 2 ? 0 : 1; },
      [](auto& objects, bool done) {
        std::int64_t id = 0;
        EXPECT_EQ(objects->all().size(), done ? 2u : 1u);
        EXPECT_EQ(objects->find(ZoHnd(L"2"), L"doc", id) != nullptr, done);
        EXPECT_EQ(objects->isInUse(L"layer"), done);
        EXPECT_TRUE(objects->isInUse(L"used"));
      });
}

}  // namespace
}  // namespace zo::test
