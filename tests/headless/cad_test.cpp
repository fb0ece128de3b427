#include <gtest/gtest.h>
#include <zo/names/handle.h>
#include <zo/results.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "headless/notices.h"
#include "system/attached.h"

namespace {

using zo::test::Attached;
using zo::test::Notices;

std::wstring ended;

// Says when it ends, and does something else then.
struct Globals : ZoDwgGlobals {
  explicit Globals(const wchar_t* name, std::function<void()> atEnd = {})
      : name_(name), atEnd_(std::move(atEnd)) {}
  ~Globals() override {
    ended += name_.view();
    if (atEnd_) atEnd_();
  }
  ZoString name() override { return name_; }
  int release(const wchar_t* module) override {
    if (std::wstring_view(module) != L"mine") return 1;
    delete this;
    return 0;
  }

 private:
  ZoString name_;
  std::function<void()> atEnd_;
};

std::wstring documentsOf(ZoCad& cad) {
  ZoString current;
  ZoArray<ZoString> names;
  EXPECT_EQ(cad.getDocument(current), 0);
  EXPECT_EQ(cad.getDocuments(names), 0);
  std::wstring text(current.view());
  for (const ZoString& name : names) (text += L' ') += name.view();
  return text;
}

TEST(Cad, EachDocumentHasItsGlobalsWhichEndWithIt) {
  const auto cad = std::make_unique<ZoStdCad>();  // an installed service stays its owner's
  const Attached attached;
  ZoSystem::setCad(cad.get());
  Notices notices(L"ZoDocument");
  ended.clear();
  EXPECT_EQ(cad->registerGlobals(new Globals(L"g")), 0);
  for (const wchar_t* bad : {L"", L"none"}) {
    EXPECT_EQ(cad->documentClosed(bad), 1);
    EXPECT_EQ(cad->documentActivated(bad), *bad ? 1 : 0);
  }
  EXPECT_EQ(cad->documentOpened(L""), 1);
  EXPECT_EQ(cad->documentOpened(L"a"), 0);
  EXPECT_EQ(cad->documentOpened(L"A"), 1);
  EXPECT_TRUE(cad->dwgGlobals(L"G")) << "opening does not switch";
  EXPECT_EQ(cad->documentActivated(L"A"), 0);
  EXPECT_FALSE(cad->dwgGlobals(L"g"));
  EXPECT_EQ(cad->registerGlobals(new Globals(L"h")), 0);
  EXPECT_EQ(cad->documentOpened(L"b"), 0);
  EXPECT_EQ(cad->documentActivated(L"b"), 0);
  EXPECT_EQ(cad->documentActivated(L"b"), 0) << "again says nothing";
  EXPECT_EQ(documentsOf(*cad), L"b b a");
  EXPECT_EQ(notices.take(),
            L"OpenedDict{Document=a}ActivatedDict{Document=a}OpenedDict{Document=b}"
            L"ActivatedDict{Document=b}");
  EXPECT_EQ(cad->documentClosed(L"B"), 0);
  EXPECT_EQ(notices.take(), L"ClosedDict{Document=b}ActivatedDict{Document=a}");
  EXPECT_EQ(documentsOf(*cad), L"a a");
  EXPECT_EQ(ended, L"");
  notices.onTold = [&] { EXPECT_EQ(documentsOf(*cad), L"") << "it has happened"; };
  EXPECT_EQ(cad->documentClosed(L"a"), 0);
  EXPECT_EQ(ended, L"h");
  EXPECT_EQ(notices.take(), L"ClosedDict{Document=a}ActivatedDict{Document=}");
  EXPECT_TRUE(cad->dwgGlobals(L"g"));
}

TEST(Cad, GlobalsMayCallBackAndGoWithTheirModuleInAllDocuments) {
  ZoStdCad cad;
  ended.clear();
  EXPECT_EQ(cad.documentOpened(L"a"), 0);
  EXPECT_EQ(cad.documentActivated(L"a"), 0);
  EXPECT_EQ(
      cad.registerGlobals(new Globals(L"1",
                                      [&] {
                                        if (ZoDwgGlobals* const other = cad.dwgGlobals(L"2")) {
                                          EXPECT_EQ(cad.unregisterGlobals(L"2"), 0);
                                          delete other;
                                        }
                                        EXPECT_EQ(cad.documentClosed(L"a"), 0)
                                            << "within its own end";
                                      })),
      0);
  EXPECT_EQ(cad.registerGlobals(new Globals(L"2")), 0);
  EXPECT_EQ(cad.documentClosed(L"a"), 0);
  EXPECT_EQ(documentsOf(cad), L"");
  EXPECT_TRUE(ended == L"12" || ended == L"21");

  ended.clear();
  for (const wchar_t* name : {L"", L"x", L"y"}) {
    EXPECT_EQ(cad.documentOpened(name), *name ? 0 : 1);
    EXPECT_EQ(cad.documentActivated(name), 0);
    EXPECT_EQ(cad.registerGlobals(new Globals(L"g")), 0);
  }
  cad.poolRelease(L"mine");
  EXPECT_EQ(ended, L"ggg");
}

TEST(Cad, WithoutAHostTheRestIsRefused) {
  ZoStdCad cad;
  ZoString text(L"kept");
  unsigned int rgb = 1;
  EXPECT_FALSE(cad.isPresent() || cad.exists(ZoHnd(L"1")) || cad.isLayerInUse(L"0"));
  for (const int code : {cad.openDocument(L"a"), cad.activateDocument(L"a"),
                         cad.closeDocument(L"a"), cad.prompt(L"hello")})
    EXPECT_EQ(code, 1);
  EXPECT_EQ(cad.paletteColor(ZoColor::kTrueColor, rgb), 1);
  EXPECT_EQ(rgb, 1u);
  EXPECT_EQ(cad.paletteColor(ZoColor::kYellow, rgb), 0);
  EXPECT_EQ(rgb, ZoColor(ZoColor::kYellow).rgb());
  EXPECT_EQ(cad.mainWindow(), nullptr);
  auto* const window = reinterpret_cast<HWND__*>(&cad);
  EXPECT_EQ(cad.setMainWindow(window), 0);
  EXPECT_EQ(cad.mainWindow(), window);
}

struct Host {
  const std::unique_ptr<ZoHeadlessCad> owned = std::make_unique<ZoHeadlessCad>();
  const Attached attached;
  ZoHeadlessCad& cad = *owned;
  ZoLayer& layers = ZoSystem::layer();
  Host() { ZoSystem::setCad(&cad); }
  ZoHnd add(const ZoVariant& object, const wchar_t* layer = L"0") {
    ZoHnd handle;
    EXPECT_EQ(cad.addObject(object, layer, handle), 0);
    return handle;
  }
};

TEST(HeadlessCad, FindsObjectsByEachPartOfTheirHandle) {
  Host host;
  ZoHeadlessCad& cad = host.cad;
  EXPECT_TRUE(ZoSystem::cad().isPresent());
  EXPECT_EQ(cad.openDocument(L"one"), 0);
  EXPECT_EQ(cad.openDocument(L"ONE"), 1);
  EXPECT_EQ(cad.openDocument(L""), 1);
  const ZoHnd a = host.add(1), b = host.add(L"two");
  EXPECT_EQ(cad.openDocument(L"two"), 0);
  const ZoHnd c = host.add(3);
  EXPECT_STREQ(a.handle(), c.handle()) << "texts are a document's own";
  EXPECT_NE(a.id(), c.id());
  ZoHnd mixed(a);
  mixed.setId(b.id());
  EXPECT_TRUE(cad.exists(ZoHnd(a.id())) && cad.exists(ZoHnd(c.handle())) && cad.exists(c));
  EXPECT_TRUE(cad.exists(a)) << "whichever document is current";
  for (const ZoHnd& none : {ZoHnd(), ZoHnd(L"none"), ZoHnd(99), mixed, ZoHnd(b.handle())})
    EXPECT_FALSE(cad.exists(none)) << none.id();
  EXPECT_EQ(cad.activateDocument(L"one"), 0);
  ZoVariant value;
  EXPECT_EQ(cad.getObject(ZoHnd(b.handle()), value), 0);
  EXPECT_EQ(value, ZoVariant(L"two"));
  EXPECT_EQ(cad.setObject(a, 4), 0);
  EXPECT_EQ(cad.getObject(ZoHnd(a.id()), value), 0);
  EXPECT_EQ(value, ZoVariant(4));
  ZoHnd whole;
  EXPECT_EQ(cad.getHandle(ZoHnd(a.id()), whole), 0);
  EXPECT_EQ(whole, a);
  EXPECT_EQ(cad.removeObject(b), 0);
  EXPECT_EQ(cad.removeObject(b), 1);
  const ZoHnd d = host.add(5);
  EXPECT_NE(d, b) << "no handle comes twice";
  ZoArray<ZoHnd> all;
  EXPECT_EQ(cad.getObjects(all), 0);
  ASSERT_EQ(all.entries(), 2u);
  EXPECT_TRUE(all[0] == a && all[1] == d);
  EXPECT_EQ(cad.closeDocument(L"one"), 0);
  EXPECT_FALSE(cad.exists(ZoHnd(a.id())));
  EXPECT_TRUE(cad.exists(c)) << "the other one is current again";
  EXPECT_EQ(cad.closeDocument(L"two"), 0);
  EXPECT_EQ(cad.closeDocument(L"two"), 1);
}

TEST(HeadlessCad, LayersWithObjectsStayAndLockedOnesKeepTheirObjects) {
  Host host;
  ZoLayer& layers = host.layers;
  for (const wchar_t* name : {L"a", L"b", L"c"}) EXPECT_EQ(layers.ensure({.name = name}), 0);
  ZoHnd handle;
  EXPECT_EQ(host.cad.addObject(1, L"none", handle), 1);
  EXPECT_EQ(layers.setCurrent(L"a"), 0);
  EXPECT_EQ(host.cad.addObject(1, handle), 0);
  EXPECT_EQ(layers.setCurrent(L"0"), 0);
  EXPECT_EQ(layers.remove(L"a"), ZoResult::layerKept);
  EXPECT_EQ(layers.rename(L"a", L"z"), 0);
  EXPECT_EQ(layers.remove(L"Z"), ZoResult::layerKept) << "its objects went with the name";
  ZoString layer;
  EXPECT_EQ(host.cad.getObjectLayer(handle, layer), 0);
  EXPECT_EQ(layer, L"z");
  ZoVariant all;
  EXPECT_EQ(ZoStdLayer().toVariant(all), 0);
  EXPECT_EQ(layers.fromVariant(all), ZoResult::layerKept);
  EXPECT_EQ(layers.change(L"z", {.locked = true}, ZoLayerData::kLocked), 0);
  for (const int code : {host.cad.setObject(handle, 2), host.cad.removeObject(handle),
                         host.cad.setObjectLayer(handle, L"b")})
    EXPECT_EQ(code, 1);
  EXPECT_EQ(layers.change(L"z", {}, ZoLayerData::kLocked), 0);
  EXPECT_EQ(host.cad.setObjectLayer(handle, L"B"), 0);
  EXPECT_EQ(layers.remove(L"z"), 0);
  EXPECT_EQ(layers.remove(L"b"), ZoResult::layerKept);
  EXPECT_EQ(host.cad.removeObject(handle), 0);
  EXPECT_EQ(layers.remove(L"b"), 0);
  EXPECT_EQ(layers.fromVariant(all), 0);
}

TEST(HeadlessCad, NoObjectGetsOntoALayerThatIsBeingRemoved) {
  struct Busy : ZoHeadlessCad {
    bool isLayerInUse(const ZoString& layer) override {
      const bool isUsed = ZoHeadlessCad::isLayerInUse(layer);
      if (!isUsed) other = std::jthread([this] { code = addObject(1, L"a", handle); });
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      return isUsed;
    }
    ZoHnd handle;
    int code = -1;
    std::jthread other;
  };
  const auto cad = std::make_unique<Busy>();
  const Attached attached;
  ZoSystem::setCad(cad.get());
  EXPECT_EQ(ZoSystem::layer().ensure({.name = L"a"}), 0);
  EXPECT_EQ(ZoSystem::layer().remove(L"a"), 0);
  cad->other.join();
  EXPECT_EQ(cad->code, 1);
}

TEST(HeadlessCad, AReactorThatThrowsLeavesADocumentOpenAndCurrent) {
  Host host;
  Notices notices(L"ZoDocument");
  notices.onTold = [] { throw std::runtime_error("told"); };
  EXPECT_THROW(static_cast<void>(host.cad.openDocument(L"a")), std::runtime_error);
  EXPECT_EQ(documentsOf(host.cad), L"a a");
  EXPECT_EQ(notices.take(), L"OpenedDict{Document=a}ActivatedDict{Document=a}");
}

TEST(HeadlessCad, KeepsPromptsUntilTheyAreTaken) {
  ZoHeadlessCad cad;
  for (unsigned int i = 0; i <= ZoHeadlessCad::kMostPrompts; ++i)
    cad.prompt(ZoString(L"line ") + ZoIntToStr(static_cast<int>(i)));
  ZoArray<ZoString> lines;
  EXPECT_EQ(cad.takePrompts(lines), 0);
  ASSERT_EQ(lines.entries(), ZoHeadlessCad::kMostPrompts);
  EXPECT_EQ(lines[0], L"line 1");
  EXPECT_EQ(cad.takePrompts(lines), 0);
  EXPECT_EQ(lines.entries(), 0u);
}

}  // namespace
