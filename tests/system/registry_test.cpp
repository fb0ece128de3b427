#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

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
    if (atNotice) atNotice();
    Standard::onReactor(notice, data);
  }
  int release(const wchar_t* module) override {
    note("release '" + narrow(module ? module : L"null") + "' of", name_);
    return Standard::release(module);
  }
  std::function<void()> atNotice;

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

// Tells of each serviceChanged what stands in it. Registered with the dispatcher in force for as
// long as it lives.
class Listener : public ZoSystemReactor {
 public:
  Listener() : disp_(ZoSystem::sysDisp()) { EXPECT_EQ(disp_.addReactor(this), 0); }
  ~Listener() override { EXPECT_EQ(disp_.removeReactor(this), 0); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void onNotice(ZoSysNotice notice, const ZoVariant& data) override {
    if (notice != ZoSysNotice::serviceChanged) return;
    ASSERT_TRUE(data.entries() == 2 && data.at(L"Type") && data.at(L"Class"));
    className = narrow(data.at(L"Class")->asString().view());
    note("changed", narrow(data.at(L"Type")->asString().view()));
  }
  double priority() override { return -1; }
  int release(const wchar_t*) override { return 1; }

  std::string className;

 private:
  ZoSysDisp& disp_;
};

ZoVariant moduleNamed(const ZoVariant& name) {
  ZoVariant data(ZoVariant::kDict);
  EXPECT_EQ(data.put(L"Module", name), 0);
  return data;
}

int send(ZoSysNotice notice, const ZoVariant& data = {}) {
  return ZoSystem::sysDisp().sendNotice(notice, data);
}
constexpr auto kSome = static_cast<ZoSysNotice>(5);

using Events = std::vector<std::string>;

// What happens during some work.
template <class Work>
Events eventsOf(Work work) {
  events.clear();
  work();
  return events;
}

TEST(LifeCycle, AttachesAndDetachesOnceAndLeavesNoKernelObjectBehind) {
  unsigned long before = 0;
  for (int i = 0; i < kCycles; ++i) {
    ASSERT_EQ(zoComDllDetach(), ZoResult::refused);
    ASSERT_EQ(zoComDllAttach(), 0);
    ZoSysDisp* const disp = &ZoSystem::sysDisp();
    ASSERT_EQ(zoComDllAttach(), ZoResult::refused);
    ASSERT_EQ(&ZoSystem::sysDisp(), disp);
    disp->addReactor(new ZoFileSearchReactor);
    ASSERT_EQ(zoFreeGlobalMemory(), 0);
    ASSERT_FALSE(ZoFileSearchReactor::isAlive());
    ASSERT_EQ(ZoSystem::construction(), 0);
    ZoCfg* const cfg = &ZoSystem::cfg();
    ASSERT_EQ(ZoSystem::construction(), 0) << "makes what is missing only";
    ASSERT_EQ(&ZoSystem::cfg(), cfg);
    ASSERT_EQ(zoSWMRGWaitToWrite(&zo::processLocks.guard, 0), ZoWait::obtained);
    zoSWMRGDoneWriting(&zo::processLocks.guard);
    ASSERT_TRUE(TryEnterCriticalSection(&zo::processLocks.files));
    LeaveCriticalSection(&zo::processLocks.files);
    ASSERT_EQ(zoComDllDetach(), 0);
    if (i == 0) before = openHandles();  // the first round warms the platform up
  }
  EXPECT_EQ(openHandles(), before);
}

TEST(LifeCycle, InstalledServicesOutliveADetachAndStayInForce) {
  Probe<ZoStdLayer> layer("layer");
  Probe<ZoStdSysDisp> disp("disp");
  ASSERT_EQ(ZoSystem::setLayer(&layer), 0) << "before the attach, without a notice";
  ASSERT_EQ(zoComDllAttach(), 0);
  EXPECT_EQ(&ZoSystem::layer(), &layer);
  ZoSystem::setSysDisp(&disp);
  EXPECT_EQ(zoComDllDetach(), 0);
  EXPECT_EQ(&ZoSystem::layer(), &layer);
  EXPECT_EQ(eventsOf([] { ZoSystem::setTolerance(ZoTol()); }),
            (Events{"notice 30 to layer", "notice 30 to disp"}));
  ZoSystem::setLayer(nullptr);
  ZoSystem::setSysDisp(nullptr);
}

// Attaches, with an allocation failing, and detaches again. Gives the handles that were open
// between; none when nothing failed.
std::optional<unsigned long> handlesAfterFailure(int allocations) {
  zo::test::failAllocationAfter(allocations);
  EXPECT_EQ(zoComDllAttach(), 0);
  const bool failed = zo::test::allocationFailed();
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
    const std::string type = narrow(slot.type);
    SCOPED_TRACE(type);
    ZoSysObj* const standard = slot.get();
    ZoSysObj* const first = slot.make("first");
    ZoSysObj* const second = slot.make("second");
    const Listener listener;
    const auto set = [&](ZoSysObj* service) {
      return eventsOf([&] { EXPECT_EQ(slot.set(service), 0); });
    };
    // A dispatcher's notice goes by the new one, which does not know the listener.
    Events announced{"changed " + type};
    if (type == "ZoSysDisp") announced.clear();
    const auto with = [&announced](Events all, const char* told) {
      all.insert(all.end(), announced.begin(), announced.end());
      all.emplace_back(told);
      return all;
    };
    EXPECT_EQ(set(first), with({}, "notice 30 to first"));
    EXPECT_EQ(slot.get(), first);
    EXPECT_NE(listener.className.find(announced.empty() ? "" : "Probe"), std::string::npos);
    EXPECT_EQ(set(second), with({"end of first"}, "notice 30 to second"));
    EXPECT_EQ(set(second), with({}, "notice 30 to second")) << "the one that is installed";
    EXPECT_EQ(set(nullptr), Events{}) << "neither destroyed nor announced";
    EXPECT_EQ(slot.get(), standard);
    delete second;
  }
}

TEST(Registry, TellsAllServicesInTheOrderOfTheirSlots) {
  const Attached attached;
  Events expected;
  for (const Slot& slot : slots()) {
    slot.set(slot.make(narrow(slot.type)));
    expected.push_back("notice 5 to " + narrow(slot.type));
  }
  EXPECT_EQ(eventsOf([] { EXPECT_EQ(send(kSome), 0); }), expected);
  for (const Slot& slot : slots()) {
    ZoSysObj* const service = slot.get();
    slot.set(nullptr);
    delete service;
  }
}

TEST(Registry, ServicesThatThrowKeepNobodyElseFromANoticeAndStay) {
  struct Failing : Probe<ZoStdCad> {
    using Probe::Probe;
    int release(const wchar_t*) override { throw std::runtime_error("release"); }
  };
  const Attached attached;
  Failing cad("cad");
  Probe<ZoStdSysInfo> info("info");
  cad.atNotice = [] { throw std::runtime_error("cad"); };
  EXPECT_THROW(ZoSystem::setCad(&cad), std::runtime_error);
  EXPECT_EQ(&ZoSystem::cad(), &cad) << "installed all the same";
  EXPECT_EQ(eventsOf([&] { EXPECT_THROW(ZoSystem::setSysInfo(&info), std::runtime_error); }),
            (Events{"notice 30 to cad", "notice 30 to info"}));
  zo::test::inOtherThread([] {
    EXPECT_THROW(send(kSome), std::runtime_error) << "the dispatcher's guard is free again";
    return 0;
  });
  ZoSystem::setSysInfo(nullptr);

  cad.atNotice = nullptr;
  ZoSystem::setLayer(new Probe<ZoStdLayer>("layer"));
  EXPECT_THROW(send(ZoSysNotice::moduleReleased, moduleNamed(L"zo_com")), std::runtime_error);
  EXPECT_EQ(events.back(), "end of layer");
  EXPECT_EQ(&ZoSystem::cad(), &cad);
}

TEST(Registry, AReleasedModuleTakesItsServicesWithIt) {
  const Attached attached;
  const struct {
    const char* name;
    ZoVariant data;
    bool goes;
  } cases[] = {
      {"other", moduleNamed(L"other"), false},     {"", moduleNamed(L""), false},
      {"", ZoVariant(ZoVariant::kDict), false},    {"", ZoVariant(), false},
      {"", ZoVariant(L"zo_com"), false},           {"", moduleNamed(7), false},
      {"zo_com ", moduleNamed(L"zo_com "), false}, {"Zo_cOM", moduleNamed(L"Zo_cOM"), true},
  };
  for (const auto& c : cases) {
    for (const Slot& slot : slots()) {
      SCOPED_TRACE(narrow(slot.type) + " and module " + c.name);
      ZoSysObj* const standard = slot.get();
      ZoSysObj* const service = slot.make("ours");
      slot.set(service);
      const bool gone = c.goes && slot.goesWithLibrary;
      Events expected{"notice 1 to ours", "release '" + std::string(c.name) + "' of ours"};
      if (gone) expected.emplace_back("end of ours");
      EXPECT_EQ(eventsOf([&] { EXPECT_EQ(send(ZoSysNotice::moduleReleased, c.data), 0); }),
                expected);
      EXPECT_EQ(slot.get(), gone ? standard : service);
      if (gone) continue;
      EXPECT_EQ(service->release(nullptr), 1);
      slot.set(nullptr);
      delete service;
    }
  }
}

// A module's own dispatcher goes while it delivers the very notice: by itself, or because one of
// its reactors puts another in its place when it is asked to go.
TEST(Registry, AReleasedModuleTakesItsDispatcherWithIt) {
  struct Own : Probe<ZoStdSysDisp> {
    using Probe::Probe;
    int release(const wchar_t* module) override {
      const Own* const self = this;
      poolRelease(module);
      if (&ZoSystem::sysDisp() == self) delete this;
      return 0;
    }
  };
  struct Replacing : ZoSystemReactor {
    ~Replacing() override { note("end of", "reactor"); }
    void onNotice(ZoSysNotice, const ZoVariant&) override {}
    double priority() override { return 0; }
    // Its dispatcher's end is its own.
    int release(const wchar_t*) override {
      return ZoSystem::setSysDisp(new Probe<ZoStdSysDisp>("successor"));
    }
  };
  const Attached attached;
  ZoSysDisp* const standard = &ZoSystem::sysDisp();
  Probe<ZoStdSysInfo> info("info");
  ZoSystem::setSysInfo(&info);
  const auto release = [] { EXPECT_EQ(send(ZoSysNotice::moduleReleased, moduleNamed(L"own")), 0); };
  ZoSystem::setSysDisp(new Own("dispatcher"));
  EXPECT_EQ(eventsOf(release), (Events{"notice 1 to dispatcher", "notice 1 to info",
                                       "end of dispatcher", "release 'own' of info"}));
  EXPECT_EQ(&ZoSystem::sysDisp(), standard);

  ZoSystem::setSysDisp(new Own("dispatcher"));
  ZoSystem::sysDisp().addReactor(new Replacing);
  EXPECT_EQ(
      eventsOf(release),
      (Events{"notice 1 to dispatcher", "notice 1 to info", "end of dispatcher", "end of reactor",
              "notice 30 to successor", "notice 30 to info", "release 'own' of info"}));
  ZoSysDisp* const successor = &ZoSystem::sysDisp();
  EXPECT_NE(successor, standard);
  ZoSystem::setSysDisp(nullptr);
  delete successor;
}

TEST(Registry, TheToleranceIsCopiedAndAnnouncedUnlessTheDispatcherIsHeldElsewhere) {
  const Attached attached;
  zo::test::Impatient<ZoStdSysDisp> disp;
  ZoSystem::setSysDisp(&disp);
  const Listener listener;
  EXPECT_EQ(eventsOf([] { ZoSystem::setTolerance(ZoTol(1e-3, 1e-4)); }), Events{"changed ZoTol"});
  EXPECT_EQ(ZoSystem::tolerance(), ZoTol(1e-3, 1e-4));
  EXPECT_EQ(listener.className, "ZoTol");
  EXPECT_EQ(ZoTol::s_default, ZoTol()) << "is another";
  const zo::test::HeldElsewhere held(disp);
  EXPECT_EQ(eventsOf([] { ZoSystem::setTolerance(ZoTol()); }), Events{});
  EXPECT_EQ(ZoSystem::tolerance(), ZoTol());
  EXPECT_EQ(send(kSome), ZoResult::refused);
}

TEST(Registry, TheFileSearchHearsOfReleasedModulesFromTheTimeTheLibraryIsLoaded) {
  struct Search : ZoStdFileSearch {
    void poolRelease(const wchar_t* module) override { note("release", narrow(module)); }
  } search;
  const Attached attached;
  ZoSystem::setFileSearch(&search);
  send(ZoSysNotice::moduleLoaded, moduleNamed(L"other"));
  EXPECT_FALSE(ZoFileSearchReactor::isAlive());
  for (int i = 0; i < 2; ++i) send(ZoSysNotice::moduleLoaded, moduleNamed(L"ZO_com"));
  EXPECT_EQ(eventsOf([] { send(ZoSysNotice::moduleReleased, moduleNamed(L"other")); }),
            Events{"release other"});
  ZoSystem::setFileSearch(nullptr);
  send(ZoSysNotice::moduleReleased, moduleNamed(L"zo_com"));
  EXPECT_FALSE(ZoFileSearchReactor::isAlive()) << "it goes with the library";
}

}  // namespace
