#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "headless/notices.h"
#include "system/attached.h"

namespace {

using zo::test::Attached;
using zo::test::narrow;
using zo::test::Notices;

std::wstring namesOf(ZoLayer& layers, const wchar_t* pattern = L"*") {
  ZoArray<ZoString> names;
  EXPECT_EQ(layers.getNames(names, pattern), 0);
  std::wstring text;
  for (const ZoString& name : names) (text += text.empty() ? L"" : L" ") += name.view();
  return text;
}

ZoLayerData dataOf(ZoLayer& layers, const wchar_t* name) {
  ZoLayerData data;
  EXPECT_EQ(layers.get(name, data), 0) << narrow(name);
  return data;
}

std::wstring currentOf(ZoLayer& layers) {
  ZoString name;
  EXPECT_EQ(layers.getCurrent(name), 0);
  return std::wstring(name.view());
}

constexpr auto kOn = ZoLayerData::kOn;
constexpr auto kFrozen = ZoLayerData::kFrozen;

TEST(Layer, IsMadeOnceWithWhatItWasGiven) {
  ZoStdLayer layers;
  EXPECT_EQ(namesOf(layers), L"0");
  EXPECT_EQ(currentOf(layers), L"0");
  EXPECT_EQ(dataOf(layers, L"0"), ZoLayerData{.name = L"0"});
  const ZoLayerData bolts{.name = L"Bolts",
                          .color = ZoColor(1, 2, 3),
                          .lineType = L"Dashed",
                          .lineWeight = 25,
                          .on = false,
                          .frozen = true,
                          .locked = true,
                          .plotted = false,
                          .description = L"all of them"};
  EXPECT_EQ(layers.add(bolts), 0);
  EXPECT_EQ(dataOf(layers, L"BOLTS"), bolts);
  EXPECT_EQ(layers.add({.name = L"bolts"}), ZoResult::layerExists);
  EXPECT_EQ(layers.ensure({.name = L"bolts"}), 0);
  EXPECT_EQ(dataOf(layers, L"bolts"), bolts) << "ensure leaves it as it is";
  EXPECT_EQ(layers.ensure({.name = L"Nuts", .lineType = L""}), 0);
  EXPECT_EQ(dataOf(layers, L"nuts"), ZoLayerData{.name = L"Nuts"});
}

TEST(Layer, RefusesWhatNoLayerHas) {
  ZoStdLayer layers;
  EXPECT_FALSE(layers.exists(nullptr)) << "an empty name";
  const std::wstring longest(255, L'n');
  EXPECT_EQ(layers.add({.name = ZoString(longest)}), 0);
  std::vector<std::wstring> bad{L"",      longest + L"n", L" a",      L"a ",
                                L"a\tb",  L"a\x1f",       L"a\x7F",   L"a\x85",
                                L"a\xA0", L"\x3000z",     L"\xD800z", L"a\xDC00"};
  for (const wchar_t sign : std::wstring_view(L"<>/\\\":;?*|,=`"))
    bad.push_back(std::wstring(L"a") + sign);
  for (const std::wstring& name : bad) {
    EXPECT_EQ(layers.add({.name = ZoString(name)}), ZoResult::invalid) << narrow(name);
    EXPECT_EQ(layers.ensure({.name = ZoString(name)}), ZoResult::invalid) << narrow(name);
    EXPECT_EQ(layers.saveState(ZoString(name)), ZoResult::invalid) << narrow(name);
  }
  for (const ZoLayerData& data :
       {ZoLayerData{.name = L"a", .lineType = L"a*"}, ZoLayerData{.name = L"a", .lineWeight = -2},
        ZoLayerData{.name = L"a", .lineWeight = 1001},
        ZoLayerData{.name = L"a", .description = ZoString().append(L'x', 65536)}}) {
    EXPECT_EQ(layers.add(data), ZoResult::invalid);
    EXPECT_EQ(layers.change(L"0", data, ZoLayerData::kAllFields), ZoResult::invalid);
    EXPECT_EQ(layers.change(L"0", data, ZoLayerData::kColor), 0) << "the others do not count";
  }
  EXPECT_EQ(layers.change(L"0", {}, ZoLayerData::Fields(0)), ZoResult::invalid);
  EXPECT_EQ(layers.change(L"0", {}, ZoLayerData::Fields(0x100)), ZoResult::invalid);
  EXPECT_EQ(layers.change(L"none", {}, kOn), ZoResult::refused);
  EXPECT_EQ(layers.change(L"none*", {}, kOn), ZoResult::refused);
  EXPECT_EQ(layers.setCurrent(L"none"), ZoResult::refused);
  EXPECT_EQ(layers.remove(L"none"), ZoResult::refused);
  EXPECT_EQ(layers.rename(L"none", L"other"), ZoResult::refused);
  EXPECT_EQ(layers.rename(L"0", L"zero"), ZoResult::layerKept);
  EXPECT_EQ(layers.remove(L"0"), ZoResult::layerKept);
  EXPECT_EQ(layers.restoreState(L"none"), ZoResult::refused);
  EXPECT_EQ(layers.removeState(L"none"), ZoResult::refused);
  EXPECT_EQ(layers.endBatch(), ZoResult::refused);
  ZoLayerData data{.name = L"kept"};
  EXPECT_EQ(layers.get(L"none", data), ZoResult::refused);
  EXPECT_EQ(data.name, L"kept");
}

TEST(Layer, ManyAreChangedByPatternButTheCurrentOneIsNeverFrozen) {
  ZoStdLayer layers;
  for (const wchar_t* name : {L"a1", L"A2", L"b1", L"c.x"})
    EXPECT_EQ(layers.ensure({.name = name}), 0);
  EXPECT_EQ(namesOf(layers, L"a*"), L"a1 A2");
  EXPECT_EQ(namesOf(layers, L"?1, C*"), L"a1 b1 c.x");
  EXPECT_EQ(namesOf(layers, L"*.*"), L"c.x") << "names of layers are no file names";
  EXPECT_EQ(namesOf(layers, L"B1"), L"b1");
  EXPECT_EQ(layers.change(L"a*,b1", {.color = ZoColor::kRed, .on = false, .locked = true}, kOn), 0);
  EXPECT_EQ(dataOf(layers, L"A2"), (ZoLayerData{.name = L"A2", .on = false})) << "the fields alone";
  EXPECT_EQ(layers.setCurrent(L"B1"), 0);
  EXPECT_EQ(currentOf(layers), L"b1");
  EXPECT_EQ(layers.change(L"*", {.on = false, .frozen = true}, kFrozen | kOn),
            ZoResult::layersLeftOut);
  EXPECT_TRUE(dataOf(layers, L"a1").frozen);
  EXPECT_EQ(dataOf(layers, L"b1"), (ZoLayerData{.name = L"b1", .on = false}));
  EXPECT_EQ(layers.setCurrent(L"a1"), ZoResult::layerFrozen);
  EXPECT_EQ(layers.remove(L"b1"), ZoResult::layerKept);
  EXPECT_EQ(layers.rename(L"b1", L"A1"), ZoResult::layerExists);
  EXPECT_EQ(layers.rename(L"b1", L"B1"), 0) << "case alone";
  EXPECT_EQ(layers.rename(L"b1", L"new"), 0);
  EXPECT_EQ(currentOf(layers), L"new");
  EXPECT_EQ(namesOf(layers), L"0 a1 A2 c.x new");
}

TEST(Layer, AStateBringsBackWhatIsStillThere) {
  ZoStdLayer layers;
  for (const wchar_t* name : {L"a", L"b", L"c"}) EXPECT_EQ(layers.ensure({.name = name}), 0);
  EXPECT_EQ(layers.setCurrent(L"a"), 0);
  EXPECT_EQ(layers.saveState(L"First"), 0);
  EXPECT_EQ(layers.change(L"*", {.color = ZoColor::kRed, .on = false}, ZoLayerData::kColor | kOn),
            0);
  EXPECT_EQ(layers.setCurrent(L"0"), 0);
  EXPECT_EQ(layers.saveState(L"second"), 0);
  EXPECT_EQ(layers.rename(L"a", L"aa"), 0) << "the states follow";
  EXPECT_EQ(layers.restoreState(L"FIRST", kOn), 0);
  EXPECT_EQ(currentOf(layers), L"aa");
  EXPECT_EQ(dataOf(layers, L"b"), (ZoLayerData{.name = L"b", .color = ZoColor::kRed}));
  EXPECT_EQ(layers.restoreState(L"first"), 0);
  EXPECT_EQ(dataOf(layers, L"b"), ZoLayerData{.name = L"b"});

  EXPECT_EQ(layers.setCurrent(L"0"), 0);
  EXPECT_EQ(layers.remove(L"aa"), 0);
  EXPECT_EQ(layers.ensure({.name = L"d", .on = false}), 0);
  EXPECT_EQ(layers.change(L"b", {.on = false}, kOn), 0);
  EXPECT_EQ(layers.restoreState(L"first"), ZoResult::layersLeftOut) << "one is gone";
  EXPECT_EQ(currentOf(layers), L"0");
  EXPECT_TRUE(dataOf(layers, L"b").on && !dataOf(layers, L"d").on) << "what it does not name stays";
  ZoArray<ZoString> states;
  EXPECT_EQ(layers.getStates(states), 0);
  EXPECT_TRUE(states.isEqualTo(ZoArray<ZoString>{L"First", L"second"}));
  EXPECT_EQ(layers.removeState(L"first"), 0);
  EXPECT_EQ(layers.restoreState(L"first"), ZoResult::refused);

  EXPECT_EQ(layers.setCurrent(L"b"), 0);
  EXPECT_EQ(layers.saveState(L"third"), 0);
  EXPECT_EQ(layers.setCurrent(L"0"), 0);
  EXPECT_EQ(layers.change(L"b", {.frozen = true}, kFrozen), 0);
  EXPECT_EQ(layers.restoreState(L"third", kOn), ZoResult::layersLeftOut);
  EXPECT_TRUE(dataOf(layers, L"b").frozen) << "nobody asked for it";
  EXPECT_EQ(currentOf(layers), L"0");
  EXPECT_EQ(layers.remove(L"b"), 0);
  EXPECT_EQ(layers.add({.name = L"n", .lineWeight = 7}), 0);
  EXPECT_EQ(layers.rename(L"n", L"b"), 0);
  EXPECT_EQ(layers.restoreState(L"third"), ZoResult::layersLeftOut);
  EXPECT_EQ(dataOf(layers, L"b"), (ZoLayerData{.name = L"b", .lineWeight = 7})) << "another layer";
  EXPECT_EQ(currentOf(layers), L"0");
  ZoVariant value;
  EXPECT_EQ(layers.toVariant(value), 0);
  EXPECT_EQ(layers.fromVariant(value), 0);
}

TEST(Layer, OneNoticeTellsAllOfAnOperationOrABatch) {
  const Attached attached;
  Notices notices(L"ZoLayersChanged");
  ZoLayer& layers = ZoSystem::layer();
  const auto next = [&] { return notices.take(); };
  EXPECT_EQ(layers.ensure({.name = L"a"}), 0);
  EXPECT_EQ(next(), L"Dict{Added=Sequence[a]}");
  EXPECT_EQ(layers.ensure({.name = L"a"}), 0);
  EXPECT_EQ(layers.change(L"*", {}, kOn), 0);
  EXPECT_EQ(layers.setCurrent(L"0"), 0);
  EXPECT_EQ(layers.remove(L"none"), 1);
  EXPECT_EQ(layers.saveState(L"same"), 0);
  next();
  ZoVariant same;
  EXPECT_EQ(layers.toVariant(same), 0);
  EXPECT_EQ(layers.fromVariant(same), 0);
  EXPECT_EQ(next(), L"") << "nothing changed";
  std::jthread([&] {
    EXPECT_EQ(layers.beginBatch(), 0);
    EXPECT_EQ(layers.add({.name = L"left"}), 0);
  }).join();
  EXPECT_EQ(layers.endBatch(), 1) << "a batch ends with its thread";
  EXPECT_EQ(layers.remove(L"left"), 0);
  EXPECT_EQ(next(), L"Dict{Added=Sequence[left],Removed=Sequence[left]}");
  {
    const ZoLayerBatch batch(layers);
    EXPECT_EQ(layers.ensure({.name = L"b"}), 0);
    EXPECT_EQ(layers.change(L"b,a", {.on = false}, kOn), 0);
    EXPECT_EQ(layers.change(L"a", {.locked = true}, ZoLayerData::kLocked), 0);
    EXPECT_EQ(layers.setCurrent(L"b"), 0);
    EXPECT_EQ(layers.rename(L"a", L"z"), 0);
    EXPECT_EQ(layers.add({.name = L"Z"}), ZoResult::layerExists);
    EXPECT_EQ(layers.remove(L"z"), 0);
    EXPECT_EQ(layers.saveState(L"s"), 0);
    {
      const ZoLayerBatch inner(layers);
    }
    EXPECT_EQ(next(), L"");
  }
  EXPECT_EQ(notices.count(), 1u);
  const std::wstring told = next();
  for (const wchar_t* part : {L"Added=Sequence[b]", L"Removed=Sequence[z]",
                              L"Renamed=Sequence[Dict{From=a,To=z}]", L"Current=b", L"States=1"})
    EXPECT_NE(told.find(part), told.npos) << narrow(part + told);
  EXPECT_TRUE(told.find(L"Changed=Sequence[a,b]") != told.npos ||
              told.find(L"Changed=Sequence[b,a]") != told.npos)
      << narrow(told);
  int code = -1;
  notices.onTold = [&] {  // the other thread cannot send its notice meanwhile, but it can change
    std::jthread([&] { code = layers.beginBatch(); }).join();
  };
  EXPECT_EQ(layers.ensure({.name = L"u"}), 0);
  EXPECT_EQ(code, 0) << "no lock is held while reactors are told";
}

TEST(Layer, AsAVariantAllComesBackAndNothingElseGetsIn) {
  ZoStdLayer layers;
  EXPECT_EQ(layers.ensure({.name = L"a",
                           .color = ZoColor(9, 8, 7),
                           .lineWeight = 13,
                           .locked = true,
                           .description = L"d"}),
            0);
  EXPECT_EQ(layers.saveState(L"s"), 0);
  EXPECT_EQ(layers.ensure({.name = L"b"}), 0);
  EXPECT_EQ(layers.setCurrent(L"b"), 0);
  ZoVariant value, again;
  EXPECT_EQ(layers.toVariant(value), 0);
  ZoStdLayer other;
  EXPECT_EQ(other.fromVariant(value), 0);
  EXPECT_EQ(other.toVariant(again), 0);
  EXPECT_EQ(value, again);

  const std::wstring_view bad[] = {
      L"NoType",
      L"Int 1",
      L"Dict {}",
      L"Dict { \"Layers\" = Sequence [] }",
      L"Dict { \"Layers\" = Sequence [ Dict { \"Name\" = String \"a\" } ] }",  // without "0"
      L"Dict { \"Current\" = String \"0\" \"Layers\" = Sequence [ Int 1 ] }"};
  for (const std::wstring_view text : bad) {
    ZoVariant broken;
    ASSERT_EQ(broken.parse(text), 0) << narrow(text);
    EXPECT_EQ(other.fromVariant(broken), ZoResult::invalid) << narrow(text);
  }
  const std::pair<const wchar_t*, ZoVariant> changes[] = {{L"Current", L"c"},
                                                          {L"Current", 1},
                                                          {L"Layers/0/Name", L"a*"},
                                                          {L"Layers/0/Name", L"B"},
                                                          {L"Layers/0/Color", L"nocolor"},
                                                          {L"Layers/0/LineWeight", 1e300},
                                                          {L"Layers/0/LineWeight", 2000},
                                                          {L"Current", L""},
                                                          {L"Layers/0/On", 2},
                                                          {L"Layers/0/Frozen", L"x"},
                                                          {L"Layers/2/Frozen", true},
                                                          {L"States", 1},
                                                          {L"States/s*", 1},
                                                          {L"States/s/Current", L"b"},
                                                          {L"States/s/Layers", 1}};
  for (const auto& [path, to] : changes) {
    ZoVariant broken(value);
    ASSERT_EQ(broken.put(path, to), 0);
    EXPECT_EQ(other.fromVariant(broken), ZoResult::invalid) << narrow(path);
  }
  EXPECT_EQ(other.toVariant(again), 0);
  EXPECT_EQ(value, again) << "a refused value changes nothing";
  ZoVariant more(value);
  ASSERT_EQ(more.put(L"Layers/0/Own", L"x"), 0);
  ASSERT_EQ(more.put(L"Own", 1), 0);
  ASSERT_EQ(more.put(L"Layers/1/LineType", L""), 0);
  EXPECT_EQ(other.fromVariant(more), 0) << "foreign keys are passed over";
  EXPECT_EQ(dataOf(other, L"a").lineType, L"Continuous");
}

// All operations at random, beside a plain table.
TEST(Layer, DoesWhatAModelDoes) {
  struct Model {
    std::map<std::wstring, ZoLayerData> layers{{L"0", {.name = L"0"}}};
    std::wstring current = L"0";
  } model;
  std::map<std::wstring, Model> states;
  ZoStdLayer layers;
  std::mt19937 random(7);
  const auto pick = [&](unsigned int n) { return static_cast<int>(random() % n); };
  const auto name = [&] { return std::wstring(1, L"0abcdefg"[pick(8)]); };
  const int rounds = 4000;
  for (int i = 0; i < rounds; ++i) {
    const std::wstring a = name(), b = name();
    const ZoString za(a), zb(b);
    const auto found = model.layers.find(a);
    const bool isThere = found != model.layers.end();
    switch (pick(7)) {
      case 0:
        EXPECT_EQ(layers.ensure({.name = za, .lineWeight = i % 100}), 0);
        if (!isThere) model.layers[a] = {.name = za, .lineWeight = i % 100};
        break;
      case 1: {
        const bool kept = a == L"0" || a == model.current;
        EXPECT_EQ(layers.remove(za), !isThere ? 1 : kept ? ZoResult::layerKept : 0);
        if (isThere && !kept) model.layers.erase(a);
        break;
      }
      case 2: {
        const int code = !isThere                             ? 1
                         : a == L"0"                          ? ZoResult::layerKept
                         : model.layers.contains(b) && a != b ? ZoResult::layerExists
                                                              : 0;
        EXPECT_EQ(layers.rename(za, zb), code);
        if (code || a == b) break;
        const auto move = [&](Model& m) {
          if (m.layers.erase(b) > 0 && m.current == b) m.current.clear();
          if (!m.layers.contains(a)) return;
          auto node = m.layers.extract(a);
          node.key() = b;
          node.mapped().name = zb;
          m.layers.insert(std::move(node));
          if (m.current == a) m.current = b;
        };
        move(model);
        for (auto& [key, state] : states) move(state);
        break;
      }
      case 3: {
        const bool freeze = pick(2) == 0;
        const bool all = pick(4) == 0;
        bool whole = true;
        for (auto& [key, layer] : model.layers) {
          if (!all && key != a) continue;
          layer.on = !freeze;
          if (freeze && key == model.current)
            whole = false;
          else
            layer.frozen = freeze;
          if (layer.name == ZoString(model.current)) layer.frozen = false;
        }
        EXPECT_EQ(layers.change(all ? L"*" : za, {.on = !freeze, .frozen = freeze}, kOn | kFrozen),
                  !all && !isThere ? 1
                  : whole          ? 0
                                   : ZoResult::layersLeftOut);
        break;
      }
      case 4:
        EXPECT_EQ(layers.setCurrent(za), !isThere               ? 1
                                         : found->second.frozen ? ZoResult::layerFrozen
                                                                : 0);
        if (isThere && !found->second.frozen) model.current = a;
        break;
      case 5:
        EXPECT_EQ(layers.saveState(za), 0);
        states[a] = model;
        break;
      default: {
        const auto state = states.find(a);
        const int code = layers.restoreState(za);
        if (state == states.end()) {
          EXPECT_EQ(code, 1);
          break;
        }
        bool whole = model.layers.contains(state->second.current);
        if (whole) model.current = state->second.current;
        for (const auto& [key, then] : state->second.layers) {
          const auto now = model.layers.find(key);
          if (now == model.layers.end()) {
            whole = false;
            continue;
          }
          now->second = then;
          if (then.frozen && key == model.current) whole = now->second.frozen = false;
        }
        EXPECT_EQ(code, whole ? 0 : ZoResult::layersLeftOut);
      }
    }
    ASSERT_EQ(currentOf(layers), model.current) << i;
    std::wstring names;
    for (const auto& [key, layer] : model.layers) {
      names += (names.empty() ? L"" : L" ") + key;
      ASSERT_EQ(dataOf(layers, key.c_str()), layer) << i;
    }
    ASSERT_EQ(namesOf(layers), names) << i;
  }
}

TEST(Layer, AHundredThousandAreFoundWhileOthersAreMade) {
  ZoStdLayer layers;
#ifdef ZO_GUARDED
  constexpr int kLayers = 2000;
#else
  constexpr int kLayers = 100000;
#endif
  const ZoLayerBatch batch(layers);
  std::jthread reader([&](const std::stop_token& stop) {
    ZoLayerData data;
    while (!stop.stop_requested()) {
      EXPECT_TRUE(layers.exists(L"0"));
      if (layers.get(L"layer 77", data) == 0) {
        EXPECT_EQ(data.name, L"layer 77");
      }
    }
  });
  for (int i = 0; i < kLayers; ++i)
    ASSERT_EQ(layers.ensure({.name = ZoString(L"layer ") + ZoIntToStr(i)}), 0);
  ZoArray<ZoString> names;
  EXPECT_EQ(layers.getNames(names, L"*9"), 0);
  EXPECT_EQ(names.entries(), static_cast<unsigned int>(kLayers / 10));
}

}  // namespace
