#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/open_handles.h"
#include "system/attached.h"

namespace {

using zo::test::Attached;
using zo::test::openHandles;

using Events = std::vector<std::string>;
Events events;

void note(const std::string& what, const std::string& of) { events.push_back(what + " " + of); }

std::string narrow(std::wstring_view text) { return {text.begin(), text.end()}; }

// A standard service that tells what the registry does with it.
template <class Standard>
class Probe : public Standard {
 public:
  template <class... Arguments>
  explicit Probe(std::string name, Arguments... arguments)
      : Standard(arguments...), name_(std::move(name)) {}
  ~Probe() override { note("end of", name_); }
  void onReactor(ZoSysNotice notice, const ZoVariant& data) override {
    note("notice " + std::to_string(static_cast<int>(notice)) + " to", name_);
    Standard::onReactor(notice, data);
  }

 private:
  std::string name_;
};

struct Slot {
  const wchar_t* type;
  std::function<ZoSysObj*(std::string)> make;
  std::function<int(ZoSysObj*)> set;
  std::function<ZoSysObj*()> get;
  bool goesWithLibrary;
};

template <class Interface, class Standard, class... Arguments>
Slot slot(const wchar_t* type, Interface& (*get)(), int (*set)(Interface*), bool goesWithLibrary,
          Arguments... arguments) {
  return {type,
          [=](std::string name) { return new Probe<Standard>(std::move(name), arguments...); },
          [=](ZoSysObj* service) { return set(static_cast<Interface*>(service)); },
          [=]() -> ZoSysObj* { return &get(); }, goesWithLibrary};
}

const std::vector<Slot>& slots() {
  using S = ZoSystem;
  static const std::vector<Slot> all{
      slot<ZoCad, ZoStdCad>(L"ZoCad", &S::cad, &S::setCad, true),
      slot<ZoCfg, ZoStdCfg>(L"ZoCfg", &S::cfg, &S::setCfg, true),
      slot<ZoCodepage, ZoStdCodepage>(L"ZoCodepage", &S::codepage, &S::setCodepage, true),
      slot<ZoError, ZoStdError>(L"ZoError", &S::error, &S::setError, true),
      slot<ZoExecute, ZoStdExecute>(L"ZoExecute", &S::execute, &S::setExecute, false),
      slot<ZoFileSystem, ZoStdFileSystem>(L"ZoFileSystem", &S::fileSystem, &S::setFileSystem, true),
      slot<ZoFileSearch, ZoStdFileSearch>(L"ZoFileSearch", &S::fileSearch, &S::setFileSearch, true),
      slot<ZoFileOpen, ZoStdFileOpen>(L"ZoFileOpen", &S::fileOpen, &S::setFileOpen, true),
      slot<ZoLayer, ZoStdLayer>(L"ZoLayer", &S::layer, &S::setLayer, true),
      slot<ZoMacroLib, ZoStdMacroLib>(L"ZoMacroLib", &S::macroLib, &S::setMacroLib, true),
      slot<ZoMessage, ZoStdMessage>(L"ZoMessage", &S::message, &S::setMessage, true),
      slot<ZoUnits, ZoStdUnits>(L"ZoUnits", &S::units, &S::setUnits, true, L'.', L'\0'),
      slot<ZoStandardMgr, ZoStdStandardMgr>(L"ZoStandardMgr", &S::standardMgr, &S::setStandardMgr,
                                            true),
      slot<ZoSysDisp, ZoStdSysDisp>(L"ZoSysDisp", &S::sysDisp, &S::setSysDisp, false),
      slot<ZoSysInfo, ZoStdSysInfo>(L"ZoSysInfo", &S::sysInfo, &S::setSysInfo, true),
  };
  return all;
}

// Tells of each serviceChanged. Registered with the dispatcher in force for as long as it lives.
struct Listener : ZoSystemReactor {
  Listener() { EXPECT_EQ(disp.addReactor(this), 0); }
  ~Listener() override { EXPECT_EQ(disp.removeReactor(this), 0); }
  void onNotice(ZoSysNotice notice, const ZoVariant& data) override {
    if (notice == ZoSysNotice::serviceChanged)
      note("changed", narrow(data.at(L"Type")->asString().view()));
  }
  double priority() override { return -1; }
  int release(const wchar_t*) override { return 1; }
  ZoSysDisp& disp = ZoSystem::sysDisp();
};

ZoVariant moduleNamed(const ZoVariant& name) {
  ZoVariant data(ZoVariant::kDict);
  EXPECT_EQ(data.put(L"Module", name), 0);
  return data;
}

TEST(LifeCycle, AttachesAndDetachesOnceAndLeavesNoKernelObjectBehind) {
  unsigned long before = 0;
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(zoComDllDetach(), ZoResult::refused);
    const unsigned long detached = openHandles();
    ASSERT_EQ(zoComDllAttach(), 0);
    if (i > 0) {
      ASSERT_EQ(openHandles(), detached + 3) << "the process's guard, and none of a service";
    }
    ZoSysDisp* const disp = &ZoSystem::sysDisp();
    ASSERT_EQ(zoComDllAttach(), ZoResult::refused);
    ASSERT_EQ(&ZoSystem::sysDisp(), disp);
    ASSERT_EQ(disp->addReactor(new ZoFileSearchReactor), 0);
    ASSERT_EQ(zoFreeGlobalMemory(), 0);
    ASSERT_FALSE(ZoFileSearchReactor::isAlive());
    ASSERT_EQ(ZoSystem::construction(), 0);
    ASSERT_EQ(zoComDllDetach(), 0);
    if (i == 0) before = openHandles();  // the first round warms the platform up
  }
  EXPECT_EQ(openHandles(), before);
}

TEST(LifeCycle, WithoutServicesAccessorsThrowAndTheLibraryDoesWithout) {
  ZoFileSearchReactor reactor;
  ZoStdFileSearch search;
  const auto expectNone = [&] {
    for (const Slot& slot : slots()) {
      SCOPED_TRACE(narrow(slot.type));
      try {
        slot.get();
        ADD_FAILURE();
      } catch (const ZoComException& e) {
        EXPECT_TRUE(std::wstring_view(e.message()).starts_with(L"No services: call zoComDll"));
        EXPECT_EQ(_wcsicmp((std::wstring(L"Zo") + e.funcName()).c_str(), slot.type), 0);
        EXPECT_EQ(e.report(), ZoComException::kInternalError) << "to nobody";
      }
    }
    reactor.onNotice(ZoSysNotice::moduleReleased, moduleNamed(L"m"));
    search.onReactor(ZoSysNotice::moduleLoaded, moduleNamed(L"zo_com"));
    EXPECT_EQ(ZoSystem::setTolerance(ZoSystem::tolerance()), 0);
  };
  expectNone();
  {
    const Attached attached;
  }
  expectNone();
}

TEST(Registry, InstallsAnnouncesAndGivesBackEveryService) {
  const Attached attached;
  for (const Slot& slot : slots()) {
    const std::string type = narrow(slot.type);
    SCOPED_TRACE(type);
    ZoSysObj* const standard = slot.get();
    ZoSysObj* const first = slot.make("first");
    ZoSysObj* const second = slot.make("second");
    const Listener listener;
    const auto set = [&](ZoSysObj* service) {
      events.clear();
      EXPECT_EQ(slot.set(service), 0);
      return events;
    };
    // A dispatcher's notice goes by the new one, which does not know the listener.
    const bool isHeard = type != "ZoSysDisp";
    const Events changed = isHeard ? Events{"changed " + type} : Events{};
    Events expected = changed;
    expected.emplace_back("notice 30 to first");
    EXPECT_EQ(set(first), expected);
    EXPECT_EQ(slot.get(), first);
    expected = changed;
    expected.insert(expected.begin(), "end of first");
    expected.emplace_back("notice 30 to second");
    EXPECT_EQ(set(second), expected);
    EXPECT_EQ(set(nullptr), Events{}) << "neither destroyed nor announced";
    EXPECT_EQ(slot.get(), standard);
    delete second;
  }
}

TEST(Registry, SetToleranceTellsReactorsAndServices) {
  const Attached attached;
  const ZoTol before = ZoSystem::tolerance();
  ZoSystem::setCad(new Probe<ZoStdCad>("cad"));
  const Listener listener;
  events.clear();
  EXPECT_EQ(ZoSystem::setTolerance(ZoTol(0.5, 0.25)), 0);
  EXPECT_EQ(events, (Events{"changed ZoTol", "notice 30 to cad"}));
  EXPECT_TRUE(ZoSystem::tolerance() == ZoTol(0.5, 0.25));
  ZoSystem::setTolerance(before);
  delete &ZoSystem::cad();
}

TEST(Registry, AReleaseThatThrowsIsAnAnswerToStayAndHoldsNobodyUp) {
  struct Throwing : Probe<ZoStdCad> {
    using Probe::Probe;
    int release(const wchar_t*) override { throw std::runtime_error("stays"); }
  };
  const Attached attached;
  Throwing cad("cad");
  ZoSystem::setCad(&cad);
  ZoSystem::setError(new Probe<ZoStdError>("error"));
  const auto send = [] {
    return ZoSystem::sysDisp().sendNotice(ZoSysNotice::moduleReleased, moduleNamed(L"zo_com"));
  };
  EXPECT_THROW(static_cast<void>(send()), std::runtime_error);
  EXPECT_TRUE(&ZoSystem::cad() == &cad);
  EXPECT_EQ(events.back(), "end of error");
  ZoSystem::setCad(nullptr);
  EXPECT_EQ(send(), 0) << "nothing is locked";
}

TEST(LifeCycle, DetachLeavesInstalledServicesToTheirOwnersAndInstalled) {
  Probe<ZoStdCad> cad("cad");
  Probe<ZoStdSysDisp> dispatcher("dispatcher");
  {
    const Attached attached;
    ZoSystem::setCad(&cad);
    ZoSystem::setSysDisp(&dispatcher);
    events.clear();
    ASSERT_EQ(zoComDllDetach(), 0);
    EXPECT_TRUE(&ZoSystem::cad() == &cad && &ZoSystem::sysDisp() == &dispatcher);
    EXPECT_THROW(static_cast<void>(ZoSystem::cfg()), ZoComException);
    EXPECT_EQ(ZoSystem::sysDisp().sendNotice(77, ZoVariant()), 0);
    ASSERT_EQ(zoComDllAttach(), 0);
    EXPECT_TRUE(&ZoSystem::cad() == &cad && &ZoSystem::sysDisp() == &dispatcher);
  }
  EXPECT_EQ(events, (Events{"notice 77 to cad", "notice 77 to dispatcher"}));
}

TEST(Registry, AReleasedModuleTakesItsServicesWithIt) {
  const Attached attached;
  const std::pair<ZoVariant, bool> cases[] = {{moduleNamed(L"other"), false},
                                              {moduleNamed(7), false},
                                              {ZoVariant(L"zo_com"), false},
                                              {moduleNamed(L"zo_com "), false},
                                              {moduleNamed(L"Zo_cOM"), true}};
  for (const auto& [data, goes] : cases) {
    for (const Slot& slot : slots()) {
      SCOPED_TRACE(narrow(slot.type));
      ZoSysObj* const standard = slot.get();
      ZoSysObj* const service = slot.make("ours");
      slot.set(service);
      EXPECT_EQ(ZoSystem::sysDisp().sendNotice(ZoSysNotice::moduleReleased, data), 0);
      const bool gone = goes && slot.goesWithLibrary;
      EXPECT_EQ(slot.get(), gone ? standard : service);
      EXPECT_EQ(events.back() == "end of ours", gone);
      if (gone) continue;
      slot.set(nullptr);
      delete service;
    }
  }
}

}  // namespace
