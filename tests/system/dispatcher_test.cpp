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

class Dispatcher : public zo::test::Impatient<ZoStdSysDisp> {
 public:
  using ZoStdSysDisp::removeReactor;
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
    if (atRelease) atRelease();
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

struct NoticeReactor : Reactor<ZoCustomReactor> {
  using Reactor::Reactor;
  void onNotice(const wchar_t* name, const ZoVariant& data) override {
    note(std::wstring_view(name) == L"event" && &data == &kData);
  }
  void onRequest(const wchar_t*, ZoVariant&) override { note(false); }
  static int send(ZoSysDisp& disp) { return disp.sendNotice(L"event", kData); }
};

struct RequestReactor : Reactor<ZoCustomReactor> {
  using Reactor::Reactor;
  void onNotice(const wchar_t*, const ZoVariant&) override { note(false); }
  void onRequest(const wchar_t* name, ZoVariant& data) override {
    data.set(data.asInt() + 1);
    note(std::wstring_view(name) == L"question");
  }
  static int send(ZoSysDisp& disp) {
    ZoVariant data(0);
    const int code = disp.sendRequest(L"question", data);
    told += std::to_string(data.asInt());
    return code;
  }
};

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
  // What a delivery told, without the answer of a request.
  std::string send(int code = 0) {
    told.clear();
    EXPECT_EQ(R::send(*disp_), code);
    return withoutAnswer();
  }
  static std::string withoutAnswer() {
    const std::size_t end = told.find_last_not_of("0123456789");
    return told.substr(0, end == std::string::npos ? 0 : end + 1);
  }

  std::unique_ptr<Dispatcher> disp_ = std::make_unique<Dispatcher>();
};

using Kinds = testing::Types<SystemReactor, NoticeReactor, RequestReactor>;
TYPED_TEST_SUITE(DispatcherTest, Kinds, );

TYPED_TEST(DispatcherTest, TellsInAscendingPriorityAndKeepsEqualOnes) {
  this->add('c', 3);
  this->add('a', -1);
  this->add('d', 1e300);
  this->add('b', 2);
  TypeParam* const again = this->add('B', 2);
  EXPECT_EQ(this->send(), "abBcd");
  EXPECT_EQ(this->disp_->addReactor(again), 0);
  EXPECT_EQ(this->send(), "abBBcd");
  EXPECT_EQ(this->disp_->removeReactor(again), 0);
  EXPECT_EQ(this->send(), "abBcd");
}

TYPED_TEST(DispatcherTest, RefusesWithoutAnyChange) {
  using Base = std::conditional_t<std::is_base_of_v<ZoSystemReactor, TypeParam>, ZoSystemReactor,
                                  ZoCustomReactor>;
  this->add('a', 1);
  TypeParam other('o', 0);
  EXPECT_EQ(this->disp_->addReactor(static_cast<Base*>(nullptr)), ZoResult::invalid);
  EXPECT_EQ(this->disp_->removeReactor(static_cast<Base*>(nullptr)), ZoResult::invalid);
  EXPECT_EQ(this->disp_->removeReactor(&other), ZoResult::refused);
  {
    const HeldElsewhere held(*this->disp_);
    EXPECT_EQ(this->disp_->addReactor(&other), ZoResult::refused);
    EXPECT_EQ(this->disp_->addReactor(static_cast<Base*>(nullptr)), ZoResult::refused);
    EXPECT_EQ(this->disp_->removeReactor(&other), ZoResult::refused);
    EXPECT_EQ(this->send(ZoResult::refused), "");
    this->disp_->poolRelease(L"mine");
  }
  EXPECT_EQ(this->send(), "a");
  this->disp_.reset();
  EXPECT_TRUE(told.ends_with("~a"));
}

// b, between a and c, does something while it is told; d comes and goes.
TYPED_TEST(DispatcherTest, WalksOnWhateverAReactorAddsRemovesOrSends) {
  struct Step {
    const char* what;
    std::function<void(Dispatcher&, TypeParam* a, TypeParam* b, TypeParam* c)> action;
    const char *first, *second;  // deliveries
  };
  std::vector<std::unique_ptr<TypeParam>> out;  // removed, and ours again
  const auto remove = [&out](Dispatcher& disp, TypeParam* reactor) {
    ASSERT_EQ(disp.removeReactor(reactor), 0);
    out.emplace_back(reactor);
  };
  const auto add = [](double priority) {
    return [priority](Dispatcher& disp, TypeParam*, TypeParam* b, TypeParam*) {
      b->action = nullptr;
      ASSERT_EQ(disp.addReactor(new TypeParam('d', priority)), 0);
    };
  };
  const Step steps[] = {
      {"removes itself", [&](auto& d, auto*, auto* b, auto*) { remove(d, b); }, "abc", "ac"},
      {"removes the one before",
       [&](auto& d, auto* a, auto* b, auto*) {
         b->action = nullptr;
         remove(d, a);
       },
       "abc", "bc"},
      {"removes the one behind",
       [&](auto& d, auto*, auto* b, auto* c) {
         b->action = nullptr;
         remove(d, c);
       },
       "ab", "ab"},
      {"removes all",
       [&](auto& d, auto* a, auto* b, auto* c) {
         for (TypeParam* reactor : {c, a, b}) remove(d, reactor);
       },
       "ab", ""},
      {"removes and adds itself",
       [](auto& d, auto*, auto* b, auto*) {
         b->action = nullptr;
         ASSERT_EQ(d.removeReactor(b), 0);
         ASSERT_EQ(d.addReactor(b), 0);
       },
       "abbc", "abc"},
      {"adds at the front", add(0), "abc", "dabc"},
      {"adds an equal one", add(2), "abdc", "abdc"},
      {"adds next", add(2.5), "abdc", "abdc"},
      {"adds at the end", add(9), "abcd", "abcd"},
      {"sends further",
       [](auto& d, auto*, auto* b, auto*) {
         b->action = nullptr;
         TypeParam::send(d);
       },
       "ababcc", "abc"},
      {"sends further, on which the first one goes",
       [&](auto& d, auto* a, auto* b, auto*) {
         b->action = nullptr;
         a->action = [&, a] { remove(d, a); };
         TypeParam::send(d);
       },
       "ababcc", "bc"},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    this->disp_ = std::make_unique<Dispatcher>();
    TypeParam* const a = this->add('a', 1);
    TypeParam* const b = this->add('b', 2);
    TypeParam* const c = this->add('c', 3);
    b->action = [&] {
      const auto action = step.action;  // the reactor may change its own
      action(*this->disp_, a, b, c);
    };
    std::string first = this->send();
    std::erase_if(first, [](char ch) { return ch >= '0' && ch <= '9'; });
    EXPECT_EQ(first, step.first);
    out.clear();
    EXPECT_EQ(this->send(), step.second);
  }
}

TYPED_TEST(DispatcherTest, TellsAllWhenSomeThrowAndGivesTheSenderTheFirst) {
  this->add('a', 1)->action = [] { throw std::runtime_error("first"); };
  this->add('b', 2)->action = [] { throw 2; };
  this->add('c', 3);
  told.clear();
  try {
    TypeParam::send(*this->disp_);
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "first");
  }
  EXPECT_EQ(this->withoutAnswer(), "abc");
  // The guard is free, also for another thread, and the lists are whole.
  EXPECT_EQ(inOtherThread([this] { return this->disp_->addReactor(new TypeParam('d', 4)); }), 0);
  EXPECT_THROW(TypeParam::send(*this->disp_), std::runtime_error);
}

TYPED_TEST(DispatcherTest, AFailingPriorityAddsNothing) {
  struct Failing : TypeParam {
    using TypeParam::TypeParam;
    double priority() override { throw std::runtime_error("priority"); }
  };
  this->add('a', 1);
  Failing failing('f', 0);
  EXPECT_THROW(this->disp_->addReactor(&failing), std::runtime_error);
  EXPECT_EQ(this->send(), "a");
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

// As when a client's own dispatcher goes with its module.
TYPED_TEST(DispatcherTest, SurvivesItsOwnEndDuringADelivery) {
  this->add('a', 1)->action = [this] { this->disp_.reset(); };
  this->add('b', 2);
  told.clear();
  EXPECT_EQ(TypeParam::send(*this->disp_), 0);
  EXPECT_EQ(this->withoutAnswer(), "a~a~b");
}

TEST(Dispatcher, SystemReactorsAreDestroyedFirst) {
  told.clear();
  {
    Dispatcher disp;
    disp.addReactor(new NoticeReactor('c', 0));
    disp.addReactor(new SystemReactor('s', 1));
  }
  EXPECT_EQ(told, "~s~c");
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
