#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/std_sys_disp.h>
#include <zo/variant/variant.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "support/printers.h"
#include "system/other_thread.h"

namespace {

using zo::test::HeldElsewhere;
using zo::test::inOtherThread;

struct Dispatcher : zo::test::Impatient<ZoStdSysDisp> {
  int removeReactor(ZoCustomReactor* reactor) override {
    ++removals;
    return ZoStdSysDisp::removeReactor(reactor);
  }
  int removeReactor(ZoSystemReactor* reactor) override {
    ++removals;
    return ZoStdSysDisp::removeReactor(reactor);
  }
  int removals = 0;
};

// What the reactors of a test saw, in order.
std::string told;

// A reactor that notes its name, and then does what the test tells it to.
template <class Base>
class Reactor : public Base {
 public:
  explicit Reactor(char name, double priority) : name_(name), priority_(priority) {}
  ~Reactor() override {
    told += '~';
    told += name_;
    if (atEnd) atEnd();
  }
  double priority() override { return priority_; }
  int release(const wchar_t* module) override {
    told += '?';
    told += name_;
    const std::string end{'~', name_};
    if (atRelease) atRelease();
    if (told.find(end) != std::string::npos) return 0;  // gone with its dispatcher
    if (std::wstring_view(module) != L"mine") return 1;
    delete this;
    return 0;
  }

  std::function<void()> action, atEnd, atRelease;

 protected:
  void note(bool rightPlace) {
    told += rightPlace ? name_ : '!';
    if (action) action();
  }

 private:
  char name_;
  double priority_;
};

const ZoVariant kData(42);

struct SystemReactor : Reactor<ZoSystemReactor> {
  using Reactor::Reactor;
  void onNotice(ZoSysNotice notice, const ZoVariant& data) override {
    note(notice == static_cast<ZoSysNotice>(77) && &data == &kData);
  }
  static int send(ZoSysDisp& disp) { return disp.sendNotice(static_cast<ZoSysNotice>(77), kData); }
};

// Of the custom reactors: told by notices, or by requests.
template <bool requested>
struct CustomReactor : Reactor<ZoCustomReactor> {
  using Reactor::Reactor;
  void onNotice(const wchar_t* name, const ZoVariant& data) override {
    note(!requested && std::wstring_view(name) == L"event" && &data == &kData);
  }
  void onRequest(const wchar_t* name, ZoVariant& data) override {
    data.set(data.asInt() + 1);
    note(requested && std::wstring_view(name) == L"event" && data.asInt() > 40);
  }
  static int send(ZoSysDisp& disp) {
    ZoVariant data(40);
    return requested ? disp.sendRequest(L"event", data) : disp.sendNotice(L"event", kData);
  }
};
using NoticeReactor = CustomReactor<false>;
using RequestReactor = CustomReactor<true>;

template <class R>
class DispatcherTest : public testing::Test {
 protected:
  DispatcherTest() { told.clear(); }

  // Registered: the dispatcher owns it.
  R* add(char name, double priority) {
    auto* const reactor = new R(name, priority);
    EXPECT_EQ(disp_->addReactor(reactor), 0);
    return reactor;
  }
  // What a delivery told.
  std::string send(int code = 0) {
    told.clear();
    EXPECT_EQ(R::send(*disp_), code);
    return told;
  }

  std::unique_ptr<Dispatcher> disp_ = std::make_unique<Dispatcher>();
};

using Kinds = testing::Types<SystemReactor, NoticeReactor, RequestReactor>;
TYPED_TEST_SUITE(DispatcherTest, Kinds, );

TYPED_TEST(DispatcherTest, TellsInAscendingPriorityAndRefusesWithoutAnyChange) {
  using Base = std::conditional_t<std::is_base_of_v<ZoSystemReactor, TypeParam>, ZoSystemReactor,
                                  ZoCustomReactor>;
  struct Failing : TypeParam {
    using TypeParam::TypeParam;
    double priority() override { throw std::runtime_error("priority"); }
  } failing('f', 0);
  this->add('c', 3);
  this->add('a', -1);
  this->add('d', 1e300);
  this->add('b', 2);
  TypeParam* const again = this->add('B', 2);
  EXPECT_EQ(this->disp_->addReactor(again), 0);
  EXPECT_EQ(this->send(), "abBBcd");
  EXPECT_EQ(this->disp_->removeReactor(again), 0);

  TypeParam other('o', 0);
  Base* const none = nullptr;
  EXPECT_THROW(this->disp_->addReactor(&failing), std::runtime_error);
  EXPECT_EQ(this->disp_->addReactor(none), ZoResult::invalid);
  EXPECT_EQ(this->disp_->removeReactor(none), ZoResult::invalid);
  EXPECT_EQ(this->disp_->removeReactor(&other), ZoResult::refused);
  {
    const HeldElsewhere held(*this->disp_);
    EXPECT_EQ(this->disp_->addReactor(&other), ZoResult::refused);
    EXPECT_EQ(this->disp_->removeReactor(none), ZoResult::refused);
    EXPECT_EQ(this->send(ZoResult::refused), "");
    this->disp_->poolRelease(L"mine");
  }
  EXPECT_EQ(this->send(), "abBcd");
}

TYPED_TEST(DispatcherTest, WalksOnWhateverAReactorAddsRemovesOrSends) {
  std::vector<std::unique_ptr<TypeParam>> out;  // removed, and ours again
  const auto remove = [&](TypeParam* reactor) {
    ASSERT_EQ(this->disp_->removeReactor(reactor), 0);
    out.emplace_back(reactor);
  };
  TypeParam *a = nullptr, *b = nullptr, *c = nullptr;
  const auto add = [&](double priority) { return [this, priority] { this->add('d', priority); }; };
  const auto sendFurther = [&] { TypeParam::send(*this->disp_); };
  const struct {
    const char* what;
    std::function<void()> action;
    const char *first, *second;  // deliveries
  } steps[] = {
      {"removes itself", [&] { remove(b); }, "abc", "ac"},
      {"removes the one before", [&] { remove(a); }, "abc", "bc"},
      {"removes the one behind", [&] { remove(c); }, "ab", "ab"},
      {"removes all", [&] { remove(c), remove(a), remove(b); }, "ab", ""},
      {"removes and adds itself",
       [&] {
         ASSERT_EQ(this->disp_->removeReactor(b), 0);
         ASSERT_EQ(this->disp_->addReactor(b), 0);
       },
       "abbc", "abc"},
      {"adds at the front", add(0), "abc", "dabc"},
      {"adds an equal one", add(2), "abdc", "abdc"},
      {"adds next", add(2.5), "abdc", "abdc"},
      {"adds at the end", add(9), "abcd", "abcd"},
      {"sends further", sendFurther, "ababcc", "abc"},
      {"sends further, on which the first one goes",
       [&] {
         a->action = [&] { remove(a); };
         sendFurther();
       },
       "ababcc", "bc"},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.what);
    this->disp_ = std::make_unique<Dispatcher>();
    a = this->add('a', 1);
    b = this->add('b', 2);
    c = this->add('c', 3);
    b->action = [&] {
      b->action = nullptr;  // once
      step.action();
    };
    EXPECT_EQ(this->send(), step.first);
    out.clear();
    EXPECT_EQ(this->send(), step.second);
  }
}

TYPED_TEST(DispatcherTest, TellsAllWhenSomeThrowAndGivesTheSenderTheFirst) {
  this->add('a', 1)->action = [] { throw std::runtime_error("first"); };
  this->add('b', 2)->action = [] { throw 2; };
  this->add('c', 3);
  EXPECT_THROW(TypeParam::send(*this->disp_), std::runtime_error);
  EXPECT_EQ(told, "abc");
  // The guard is free, also for another thread, and the lists are whole.
  EXPECT_EQ(inOtherThread([this] { return this->disp_->addReactor(new TypeParam('d', 4)); }), 0);
  EXPECT_THROW(TypeParam::send(*this->disp_), std::runtime_error);
  EXPECT_EQ(told, "abcabcd");
}

TYPED_TEST(DispatcherTest, ItsEndDestroysWhatIsRegisteredOnce) {
  TypeParam* const a = this->add('a', 1);
  this->add('b', 2);
  this->disp_->addReactor(a);
  // Ends that call back find a dispatcher that still answers.
  a->atEnd = [&] {
    EXPECT_EQ(this->disp_->ZoStdSysDisp::removeReactor(a), ZoResult::refused);
    EXPECT_EQ(this->disp_->ZoStdSysDisp::addReactor(new TypeParam('z', 9)), 0);
  };
  told.clear();
  delete this->disp_.get();
  static_cast<void>(this->disp_.release());
  EXPECT_EQ(told, "~a~b~z");
}

TYPED_TEST(DispatcherTest, AReleasedModuleTakesItsReactorsWithIt) {
  const auto release = [this](const wchar_t* module) {
    told.clear();
    this->disp_->removals = 0;
    this->disp_->poolRelease(module);
    return told;
  };
  TypeParam* const a = this->add('a', 1);
  this->add('b', 2);
  this->add('c', 3);
  this->disp_->addReactor(a);
  EXPECT_EQ(release(nullptr), "");
  EXPECT_EQ(release(L"other"), "?a?a?b?c");
  EXPECT_EQ(this->disp_->removals, 0);
  EXPECT_EQ(release(L"mine"), "?a~a?b~b?c~c");
  EXPECT_EQ(this->disp_->removals, 3);  // through the virtual function
  EXPECT_EQ(this->send(), "");

  // One that throws stays, and the others are asked all the same.
  this->add('d', 1)->atRelease = [] { throw std::runtime_error("release"); };
  this->add('e', 2);
  EXPECT_THROW(release(L"mine"), std::runtime_error);
  EXPECT_EQ(told, "?d?e~e");
  EXPECT_EQ(this->send(), "d");
}

// As when a client's own dispatcher goes with its module: its end destroys the very reactor that is
// being told or asked, which may not look at itself afterwards.
TYPED_TEST(DispatcherTest, SurvivesItsOwnEndDuringADeliveryAndWhileAModuleIsReleased) {
  for (const bool releasing : {false, true}) {
    this->disp_ = std::make_unique<Dispatcher>();
    TypeParam* const a = this->add('a', 1);
    this->add('b', 2);
    (releasing ? a->atRelease : a->action) = [this] { this->disp_.reset(); };
    told.clear();
    if (releasing) {
      this->disp_->poolRelease(L"mine");
      EXPECT_EQ(told, "?a~a~b");
    } else {
      EXPECT_EQ(TypeParam::send(*this->disp_), 0);
      EXPECT_EQ(told, "a~a~b");
    }
  }
}

TEST(Dispatcher, SystemReactorsAreDestroyedFirstAndCustomOnesAreNotAskedAfterItsEnd) {
  auto disp = std::make_unique<Dispatcher>();
  disp->addReactor(new NoticeReactor('c', 0));
  auto* const system = new SystemReactor('s', 1);
  system->atRelease = [&] { disp.reset(); };
  disp->addReactor(system);
  told.clear();
  disp->poolRelease(L"mine");
  EXPECT_EQ(told, "?s~s~c");
}

TEST(Dispatcher, RequestsCarryTheAnswerFromReactorToReactor) {
  Dispatcher disp;
  disp.addReactor(new RequestReactor('a', 0));
  disp.addReactor(new RequestReactor('b', 1));
  ZoVariant data(40);
  EXPECT_EQ(disp.sendRequest(L"question", data), 0);
  EXPECT_EQ(data.asInt(), 42);
}

}  // namespace
