#include <gtest/gtest.h>
#include <zo/files/std_file_open.h>
#include <zo/files/std_file_search.h>
#include <zo/files/std_file_system.h>
#include <zo/results.h>
#include <zo/system/cad.h>
#include <zo/system/cfg.h>
#include <zo/system/codepage.h>
#include <zo/system/exception.h>
#include <zo/system/execute.h>
#include <zo/system/layer.h>
#include <zo/system/life_cycle.h>
#include <zo/system/macro_lib.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>
#include <zo/system/standard_mgr.h>
#include <zo/system/std_error.h>
#include <zo/system/std_sys_disp.h>
#include <zo/system/sys_info.h>
#include <zo/system/units.h>
#include <zo/variant/variant.h>

#include <cwchar>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/open_handles.h"
#include "support/printers.h"
#include "system/attached.h"
#include "system/failing_new.h"
#include "system/other_thread.h"
#include "system/process_locks.h"

namespace {

using zo::test::Attached;
using zo::test::openHandles;

#ifdef ZO_GUARDED
constexpr int kCycles = 100;
#else
constexpr int kCycles = 1000;
#endif

std::vector<std::string> events;

void note(const std::string& what, const std::string& of) { events.push_back(what + " " + of); }

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
    if (atNotice) atNotice();
    Standard::onReactor(notice, data);
  }
  int release(const wchar_t* module) override {
    const std::wstring_view text(module);
    note("release '" + std::string(text.begin(), text.end()) + "' of", name_);
    return Standard::release(module);
  }
  std::function<void()> atNotice;

 private:
  std::string name_;
};

// Every slot with all that the tests ask of it.
struct Slot {
  const wchar_t* type;
  std::function<ZoSysObj*(std::string)> make;
  std::function<int(ZoSysObj*)> set;
  std::function<ZoSysObj*()> get;
  const char* className;
  bool goesWithLibrary;
};

template <class Interface, class Standard, class... Arguments>
Slot slot(const wchar_t* type, Interface& (*get)(), int (*set)(Interface*), bool goesWithLibrary,
          Arguments... arguments) {
  return {type,
          [=](std::string name) { return new Probe<Standard>(std::move(name), arguments...); },
          [=](ZoSysObj* service) { return set(static_cast<Interface*>(service)); },
          [=]() -> ZoSysObj* { return &get(); },
          typeid(Probe<Standard>).name(),
          goesWithLibrary};
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

// Tells of each serviceChanged what stands in it.
class Listener : public ZoSystemReactor {
 public:
  void onNotice(ZoSysNotice notice, const ZoVariant& data) override {
    if (notice != ZoSysNotice::serviceChanged) return;
    ASSERT_TRUE(data.isTypeOf(ZoVariant::kDict));
    EXPECT_EQ(data.entries(), 2u);
    ASSERT_TRUE(data.at(L"Type") && data.at(L"Class"));
    type = data.at(L"Type")->asString();
    className = data.at(L"Class")->asString();
    note("changed", narrow(type));
  }
  double priority() override { return -1; }
  int release(const wchar_t*) override { return 1; }

  static std::string narrow(const ZoString& text) { return {text.begin(), text.end()}; }
  ZoString type, className;
};

// Registered with the dispatcher in force, and taken back.
class Listening {
 public:
  Listening() : disp_(ZoSystem::sysDisp()) { EXPECT_EQ(disp_.addReactor(&listener), 0); }
  ~Listening() { EXPECT_EQ(disp_.removeReactor(&listener), 0); }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;
  Listener listener;

 private:
  ZoSysDisp& disp_;
};

ZoVariant moduleNamed(const wchar_t* name) {
  ZoVariant data(ZoVariant::kDict);
  EXPECT_EQ(data.put(L"Module", ZoVariant(name)), 0);
  return data;
}

int send(ZoSysNotice notice, const ZoVariant& data) {
  return ZoSystem::sysDisp().sendNotice(notice, data);
}

TEST(LifeCycle, AttachesOnceAndDetachesOnce) {
  EXPECT_EQ(zoComDllDetach(), ZoResult::refused);
  ASSERT_EQ(zoComDllAttach(), 0);
  ZoSysDisp* const disp = &ZoSystem::sysDisp();
  EXPECT_EQ(zoComDllAttach(), ZoResult::refused);
  EXPECT_EQ(&ZoSystem::sysDisp(), disp);
  ZoSingleWriterMultiReaderGuard& guard = zo::processLocks.guard;
  EXPECT_EQ(zoSWMRGWaitToWrite(&guard, 0), ZoWait::obtained);
  zoSWMRGDoneWriting(&guard);
  EXPECT_TRUE(TryEnterCriticalSection(&zo::processLocks.files));
  LeaveCriticalSection(&zo::processLocks.files);
  EXPECT_EQ(zoComDllDetach(), 0);
  EXPECT_EQ(zoComDllDetach(), ZoResult::refused);
}

TEST(LifeCycle, LeavesNoKernelObjectBehind) {
  {
    const Attached warm;
  }
  const auto before = openHandles();
  for (int i = 0; i < kCycles; ++i) {
    ASSERT_EQ(zoComDllAttach(), 0);
    ASSERT_EQ(zoComDllDetach(), 0);
  }
  EXPECT_EQ(openHandles(), before);
}

TEST(LifeCycle, FreeingMemoryDestroysTheServicesAndLeavesTheLocks) {
  ASSERT_EQ(zoComDllAttach(), 0);
  ZoSystem::sysDisp().addReactor(new ZoFileSearchReactor);
  EXPECT_EQ(zoFreeGlobalMemory(), 0);
  EXPECT_FALSE(ZoFileSearchReactor::isAlive());
  EXPECT_EQ(zoSWMRGWaitToWrite(&zo::processLocks.guard, 0), ZoWait::obtained);
  zoSWMRGDoneWriting(&zo::processLocks.guard);
  EXPECT_EQ(zoFreeGlobalMemory(), 0);
  EXPECT_EQ(ZoSystem::construction(), 0);
  ZoCfg* const cfg = &ZoSystem::cfg();
  EXPECT_EQ(ZoSystem::construction(), 0) << "makes what is missing only";
  EXPECT_EQ(&ZoSystem::cfg(), cfg);
  EXPECT_EQ(zoComDllDetach(), 0);
}

TEST(LifeCycle, InstalledServicesOutliveADetachAndStayInForce) {
  events.clear();
  Probe<ZoStdLayer> layer("layer");
  Probe<ZoStdSysDisp> disp("disp");
  ASSERT_EQ(ZoSystem::setLayer(&layer), 0) << "before the attach, without a notice";
  {
    ASSERT_EQ(zoComDllAttach(), 0);
    EXPECT_EQ(&ZoSystem::layer(), &layer);
    ZoSystem::setSysDisp(&disp);
    EXPECT_EQ(zoComDllDetach(), 0);
  }
  EXPECT_EQ(&ZoSystem::layer(), &layer);
  events.clear();
  ZoSystem::setTolerance(ZoTol());
  EXPECT_EQ(events, (std::vector<std::string>{"notice 30 to layer", "notice 30 to disp"}));
  ZoSystem::setLayer(nullptr);
  ZoSystem::setSysDisp(nullptr);
}

// Attaches, with an allocation failing, and detaches again. Gives the handles that were open
// between; none when nothing failed.
std::optional<unsigned long> handlesAfterFailure(int allocations) {
  bool failed;
  {
    const zo::test::FailingNew failing(allocations);
    EXPECT_EQ(zoComDllAttach(), 0);
    failed = failing.happened();
  }
  const auto handles = openHandles();
  // Notices pass over the empty slot; without a dispatcher there are none.
  EXPECT_EQ(ZoSystem::setTolerance(ZoTol()), 0);
  EXPECT_EQ(zoComDllDetach(), 0);
  return failed ? std::optional(handles) : std::nullopt;
}

TEST(LifeCycle, AServiceWithoutMemoryIsLeftOut) {
  for (int i = 0; i < 3; ++i) handlesAfterFailure(i);  // first throws and notices open handles, too
  const auto before = openHandles();
  unsigned long leftOut = 0;
  for (int i = 0; const auto handles = handlesAfterFailure(i); ++i) {
    EXPECT_EQ(openHandles(), before) << i;
    // A container in a service does without until it is used: the service is there then.
    if (*handles == before + 48) continue;
    EXPECT_EQ(*handles, before + 48 - 3) << "one guard is missing, at " << i;
    ++leftOut;
  }
  EXPECT_GE(leftOut, slots().size());
}

TEST(Registry, InstallsAnnouncesAndGivesBackEveryService) {
  const Attached attached;
  for (const Slot& slot : slots()) {
    SCOPED_TRACE(Listener::narrow(slot.type));
    ZoSysObj* const standard = slot.get();
    ZoSysObj* const first = slot.make("first");
    ZoSysObj* const second = slot.make("second");
    Listening listening;
    Listener& listener = listening.listener;
    const bool isDisp = std::wstring_view(slot.type) == L"ZoSysDisp";

    events.clear();
    EXPECT_EQ(slot.set(first), 0);
    EXPECT_EQ(slot.get(), first);
    // The dispatcher's notice goes by the new one, which does not know the listener.
    const std::string changed = "changed " + Listener::narrow(slot.type);
    std::vector<std::string> expected{"notice 30 to first"};
    if (!isDisp) {
      expected.insert(expected.begin(), changed);
      EXPECT_EQ(listener.type, slot.type);
      EXPECT_NE(Listener::narrow(listener.className).find(slot.className), std::string::npos);
    }
    EXPECT_EQ(events, expected);

    events.clear();
    EXPECT_EQ(slot.set(second), 0);
    expected.back() = "notice 30 to second";
    expected.insert(expected.begin(), "end of first");
    EXPECT_EQ(events, expected);

    events.clear();
    EXPECT_EQ(slot.set(second), 0) << "the one that is installed";
    expected.erase(expected.begin());
    EXPECT_EQ(events, expected);

    events.clear();
    EXPECT_EQ(slot.set(nullptr), 0);
    EXPECT_EQ(slot.get(), standard);
    EXPECT_EQ(events, std::vector<std::string>{}) << "neither destroyed nor announced";
    delete second;
  }
}

TEST(Registry, TellsAllServicesInTheOrderOfTheirSlots) {
  const Attached attached;
  std::vector<std::string> expected;
  for (const Slot& slot : slots()) {
    const std::string name(slot.type, slot.type + std::wcslen(slot.type));
    slot.set(slot.make(name));
    expected.push_back("notice 5 to " + name);
  }
  events.clear();
  EXPECT_EQ(send(static_cast<ZoSysNotice>(5), ZoVariant()), 0);
  EXPECT_EQ(events, expected);
  for (const Slot& slot : slots()) {
    ZoSysObj* const service = slot.get();
    slot.set(nullptr);
    delete service;
  }
}

TEST(Registry, ServicesThatThrowAtANoticeKeepNobodyElseFromIt) {
  const Attached attached;
  Probe<ZoStdCad> cad("cad");
  Probe<ZoStdSysInfo> info("info");
  cad.atNotice = [] { throw std::runtime_error("cad"); };
  EXPECT_THROW(ZoSystem::setCad(&cad), std::runtime_error);
  EXPECT_EQ(&ZoSystem::cad(), &cad) << "installed all the same";
  events.clear();
  EXPECT_THROW(ZoSystem::setSysInfo(&info), std::runtime_error);
  EXPECT_EQ(events, (std::vector<std::string>{"notice 30 to cad", "notice 30 to info"}));
  const int code = zo::test::inOtherThread([] {
    try {
      return send(static_cast<ZoSysNotice>(5), ZoVariant());
    } catch (const std::runtime_error&) {
      return -1;
    }
  });
  EXPECT_EQ(code, -1) << "the dispatcher's guard is free again";
}

TEST(Registry, AServiceMayReplaceAnotherWhileItIsTold) {
  const Attached attached;
  Probe<ZoStdCad> cad("cad");
  Probe<ZoStdSysInfo> info("info");
  ZoSystem::setCad(&cad);
  cad.atNotice = [&] {
    cad.atNotice = nullptr;
    ZoSystem::setSysInfo(&info);
  };
  events.clear();
  send(static_cast<ZoSysNotice>(5), ZoVariant());
  EXPECT_EQ(events, (std::vector<std::string>{"notice 5 to cad", "notice 30 to cad",
                                              "notice 30 to info", "notice 5 to info"}));
}

TEST(Registry, AReleasedModuleTakesItsServicesWithIt) {
  const Attached attached;
  ZoVariant number(ZoVariant::kDict);
  number.put(L"Module", ZoVariant(7));
  const struct {
    const char* name;
    ZoVariant data;
    bool goes;
  } cases[] = {
      {"other", moduleNamed(L"other"), false},     {"", moduleNamed(L""), false},
      {"", ZoVariant(ZoVariant::kDict), false},    {"", ZoVariant(), false},
      {"", ZoVariant(L"zo_com"), false},           {"", number, false},
      {"zo_com ", moduleNamed(L"zo_com "), false}, {"Zo_cOM", moduleNamed(L"Zo_cOM"), true},
  };
  for (const auto& c : cases) {
    for (const Slot& slot : slots()) {
      SCOPED_TRACE(Listener::narrow(slot.type) + " and module " + c.name);
      ZoSysObj* const standard = slot.get();
      ZoSysObj* const service = slot.make("ours");
      slot.set(service);
      events.clear();
      EXPECT_EQ(send(ZoSysNotice::moduleReleased, c.data), 0);
      std::vector<std::string> expected{"notice 1 to ours",
                                        "release '" + std::string(c.name) + "' of ours"};
      const bool gone = c.goes && slot.goesWithLibrary;
      if (gone) expected.push_back("end of ours");
      EXPECT_EQ(events, expected);
      EXPECT_EQ(slot.get(), gone ? standard : service);
      if (gone) continue;
      slot.set(nullptr);
      delete service;
    }
  }
}

// A module's own dispatcher goes while it delivers the very notice.
TEST(Registry, AReleasedModuleTakesItsDispatcherWithIt) {
  class Own : public Probe<ZoStdSysDisp> {
   public:
    using Probe::Probe;
    int release(const wchar_t* module) override {
      if (std::wstring_view(module) != L"own") return 1;
      delete this;
      return 0;
    }
  };
  const Attached attached;
  ZoSysDisp* const standard = &ZoSystem::sysDisp();
  ZoSystem::setSysDisp(new Own("dispatcher"));
  Probe<ZoStdSysInfo> info("info");
  ZoSystem::setSysInfo(&info);
  events.clear();
  EXPECT_EQ(send(ZoSysNotice::moduleReleased, moduleNamed(L"own")), 0);
  EXPECT_EQ(events, (std::vector<std::string>{"notice 1 to dispatcher", "notice 1 to info",
                                              "end of dispatcher", "release 'own' of info"}));
  EXPECT_EQ(&ZoSystem::sysDisp(), standard);
}

TEST(Registry, AReleaseThatThrowsMeansToStay) {
  class Failing : public Probe<ZoStdCad> {
   public:
    using Probe::Probe;
    int release(const wchar_t*) override { throw std::runtime_error("release"); }
  };
  const Attached attached;
  Failing cad("cad");
  ZoSystem::setCad(&cad);
  ZoSystem::setLayer(new Probe<ZoStdLayer>("layer"));
  events.clear();
  EXPECT_THROW(send(ZoSysNotice::moduleReleased, moduleNamed(L"zo_com")), std::runtime_error);
  EXPECT_EQ(events.back(), "end of layer");
  EXPECT_EQ(&ZoSystem::cad(), &cad);
}

TEST(Registry, InstallsWithoutANoticeWhileTheDispatcherIsHeldElsewhere) {
  const Attached attached;
  struct Disp : zo::test::Impatient<ZoStdSysDisp> {
  } disp;
  ZoSystem::setSysDisp(&disp);
  Probe<ZoStdLayer> layer("layer");
  events.clear();
  {
    const zo::test::HeldElsewhere held(disp);
    EXPECT_EQ(ZoSystem::setLayer(&layer), 0);
    EXPECT_EQ(send(ZoSysNotice::moduleReleased, moduleNamed(L"zo_com")), 1);
  }
  EXPECT_EQ(&ZoSystem::layer(), &layer);
  EXPECT_EQ(events, std::vector<std::string>{});
}

TEST(Registry, TheToleranceIsCopiedAndAnnounced) {
  const Attached attached;
  Listening listening;
  EXPECT_EQ(ZoSystem::tolerance(), ZoTol());
  EXPECT_EQ(ZoSystem::setTolerance(ZoTol(1e-3, 1e-4)), 0);
  EXPECT_EQ(ZoSystem::tolerance(), ZoTol(1e-3, 1e-4));
  EXPECT_EQ(listening.listener.type, L"ZoTol");
  EXPECT_EQ(listening.listener.className, L"ZoTol");
  EXPECT_EQ(ZoTol::s_default, ZoTol()) << "is another";
  ZoSystem::setTolerance(ZoTol());
}

TEST(Registry, TheFileSearchRegistersItsReactorOnceWhenTheLibraryIsLoaded) {
  struct Disp : ZoStdSysDisp {
    using ZoStdSysDisp::addReactor;
    int addReactor(ZoSystemReactor* reactor) override {
      ++added;
      return ZoStdSysDisp::addReactor(reactor);
    }
    int added = 0;
  };
  struct Search : ZoStdFileSearch {
    void poolRelease(const wchar_t* module) override { released = module; }
    ZoString released;
  } search;
  const Attached attached;
  {
    Disp disp;
    ZoSystem::setSysDisp(&disp);
    send(ZoSysNotice::moduleLoaded, moduleNamed(L"other"));
    EXPECT_EQ(disp.added, 0);
    for (int i = 0; i < 2; ++i) send(ZoSysNotice::moduleLoaded, moduleNamed(L"ZO_com"));
    EXPECT_EQ(disp.added, 1);

    // An installed search hears of released modules through it.
    ZoSystem::setFileSearch(&search);
    send(ZoSysNotice::moduleReleased, moduleNamed(L"other"));
    EXPECT_EQ(search.released, L"other");
    ZoSystem::setFileSearch(nullptr);
    ZoSystem::setSysDisp(nullptr);
  }
  EXPECT_FALSE(ZoFileSearchReactor::isAlive());
  send(ZoSysNotice::moduleLoaded, moduleNamed(L"zo_com"));
  EXPECT_TRUE(ZoFileSearchReactor::isAlive());
  send(ZoSysNotice::moduleReleased, moduleNamed(L"zo_com"));
  EXPECT_FALSE(ZoFileSearchReactor::isAlive()) << "it goes with the library";
}

}  // namespace
