#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/std_sys_disp.h>
#include <zo/variant/variant.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "system/other_thread.h"

namespace {

using Dispatcher = zo::test::Impatient<ZoStdSysDisp>;

// What the reactors of a test saw, in order.
std::string told;

// A reactor that notes its name, and then does what the test tells it to.
template <class Base>
class Reactor : public Base {
 public:
  Reactor(char name, double priority) : name_(name), priority_(priority) {}
  ~Reactor() override {
    told += '~';
    told += name_;
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

  std::function<void()> action, atRelease;

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

struct RequestReactor : NoticeReactor {
  using NoticeReactor::NoticeReactor;
  void onRequest(const wchar_t* name, ZoVariant& data) override {
    data = data.asInt() + 1;  // the answer goes from reactor to reactor
    note(std::wstring_view(name) == L"event" && data.asInt() > 40);
  }
  static int send(ZoSysDisp& disp) {
    ZoVariant data(40);
    return disp.sendRequest(L"event", data);
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
  this->add('c', 3);
  this->add('a', -1);
  this->add('d', 1e300);
  this->add('b', 2);
  TypeParam* const again = this->add('B', 2);
  EXPECT_EQ(this->disp_->addReactor(again), 0);
  EXPECT_EQ(this->send(), "abBBcd");
  EXPECT_EQ(this->disp_->removeReactor(again), 0);

  TypeParam other('o', 0);
  EXPECT_EQ(this->disp_->removeReactor(&other), ZoResult::refused);
  {
    const zo::test::HeldElsewhere held(*this->disp_);
    EXPECT_EQ(this->disp_->addReactor(&other), ZoResult::refused);
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
  const struct {
    const char* what;
    std::function<void()> action;
    const char *first, *second;  // deliveries
  } steps[] = {
      {"removes itself", [&] { remove(b); }, "abc", "ac"},
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
      {"sends further, on which the first one goes",
       [&] {
         a->action = [&] { remove(a); };
         TypeParam::send(*this->disp_);
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
  // The guard is free again, and the lists are whole.
  EXPECT_EQ(
      zo::test::inOtherThread([this] { return this->disp_->addReactor(new TypeParam('d', 4)); }),
      0);
  EXPECT_THROW(TypeParam::send(*this->disp_), std::runtime_error);
  EXPECT_EQ(told, "abcabcd");
}

TYPED_TEST(DispatcherTest, AReleasedModuleTakesItsReactorsWithIt) {
  TypeParam* const a = this->add('a', 1);
  this->add('b', 2)->atRelease = [] { throw std::runtime_error("stays"); };
  this->add('c', 3);
  this->disp_->addReactor(a);
  this->disp_->poolRelease(nullptr);
  EXPECT_EQ(told, "");
  EXPECT_THROW(this->disp_->poolRelease(L"other"), std::runtime_error);
  EXPECT_EQ(told, "?a?a?b?c");
  EXPECT_THROW(this->disp_->poolRelease(L"mine"), std::runtime_error);
  EXPECT_EQ(this->send(), "b") << "the others are asked all the same";
}

// As when a client's own dispatcher goes with its module: its end destroys the very reactor that is
// being told or asked, which may not look at itself afterwards.
TYPED_TEST(DispatcherTest, SurvivesItsOwnEndDuringADeliveryAndWhileAModuleIsReleased) {
  for (const bool releasing : {false, true}) {
    this->disp_ = std::make_unique<Dispatcher>();
    TypeParam* const a = this->add('a', 1);
    this->add('b', 2);
    a->action = a->atRelease = [this] { this->disp_.reset(); };
    told.clear();
    releasing ? this->disp_->poolRelease(L"mine") : void(TypeParam::send(*this->disp_));
    EXPECT_EQ(told, releasing ? "?a~a~b" : "a~a~b");
  }
}

}  // namespace
