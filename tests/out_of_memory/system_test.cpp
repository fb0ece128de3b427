// Services when memory runs out.
#include <gtest/gtest.h>
#include <zo/files.h>
#include <zo/system.h>

#include <sstream>

#include "support/failing_memory.h"
#include "support/registry_base.h"
#include "system/attached.h"

namespace {

using zo::test::Attached;
using zo::test::failEveryRequest;

TEST(OutOfMemory, UnitsPrintOrLeaveTheText) {
  const Attached attached;
  failEveryRequest(
      "print", [] { return ZoString(L"old"); },
      [](ZoString& text) {
        return ZoSystem::units().print(1234567.123456789, ZoTypeCode::Length, text);
      },
      [](const ZoString& text, bool done) { EXPECT_EQ(text != L"old", done); });
}

TEST(OutOfMemory, SettingsAreWrittenAndReadOrNot) {
  const Attached attached;
  const zo::test::RegistryBase base;
  ASSERT_EQ(ZoSystem::cfg().init(base.path().c_str(), nullptr), 0);
  ASSERT_EQ(ZoSystem::cfg().insertAt(L"Parts@Name", L"old"), 0);
  failEveryRequest(
      "write", [] { return ZoSystem::cfg().setAt(L"Parts@Name", L"old"); },
      [](int&) { return ZoSystem::cfg().setAt(L"Parts@Name", L"new"); },
      [](int, bool done) {
        const ZoString now = ZoSystem::cfg().at(L"Parts@Name", false).asString();
        EXPECT_TRUE(now == L"new" || (!done && now == L"old")) << now.data();
      });
  failEveryRequest(
      "read", [] { return ZoVariant(L"old"); },
      [](ZoVariant& value) { return ZoSystem::cfg().getAt(L"Parts", value, true); },
      [](const ZoVariant& value, bool done) {
        if (done) {
          EXPECT_TRUE(value.asDict());
        }
      });
}

struct Listener final : ZoSystemReactor {
  void onNotice(ZoSysNotice, const ZoVariant&) override { ++heard; }
  double priority() override { return 1; }
  int release(const wchar_t*) override { return 1; }
  int heard = 0;
};

TEST(OutOfMemory, NoticesAndServicesStayInOrder) {
  const Attached attached;
  struct Registered {
    std::unique_ptr<Listener> listener = std::make_unique<Listener>();
    Registered() = default;
    Registered(Registered&&) = default;
    ~Registered() {
      if (listener) static_cast<void>(ZoSystem::sysDisp().removeReactor(listener.get()));
    }
  };
  failEveryRequest(
      "reactor", [] { return Registered(); },
      [](Registered& r) { return ZoSystem::sysDisp().addReactor(r.listener.get()); },
      [](Registered& r, bool done) {
        const int before = r.listener->heard;
        ZoVariant data(ZoVariant::kDict);
        EXPECT_EQ(ZoSystem::sysDisp().sendNotice(static_cast<ZoSysNotice>(77), data), 0);
        EXPECT_EQ(r.listener->heard - before, done ? 1 : 0);
      });
  failEveryRequest(
      "install", [] { return std::make_unique<ZoErrLog>(); },
      [](std::unique_ptr<ZoErrLog>& log) {
        ZoErrLog* const given = log.get();
        return ZoSystem::setError(given);
      },
      [](std::unique_ptr<ZoErrLog>& log, bool) {
        EXPECT_EQ(&ZoSystem::error(), log.get()) << "the service counts, told or not";
        ZoSystem::setError(nullptr);
      });
}

TEST(OutOfMemory, ReportsAndExceptionsStillSpeak) {
  const Attached attached;
  struct Log {
    std::unique_ptr<std::wostringstream> text = std::make_unique<std::wostringstream>();
  };
  failEveryRequest(
      "log", [] { return Log(); },
      [](Log& log) {
        log.text->clear();
        ZoErrLog out(log.text.get());
        return out.warning(L"file.cpp", 5, L"%s", L"a text of some length");
      },
      [](const Log& log, bool done) {
        if (done) {
          EXPECT_NE(log.text->str().find(L"a text of some length"), std::wstring::npos);
        }
      });
  failEveryRequest(
      "throw", [] { return 0; },
      [](int& code) {
        try {
          zoThrow(ZoComException(L"file.cpp", L"function", L"text", 7, true));
        } catch (const ZoComException& thrown) {
          code = thrown.message() == std::wstring_view(L"text") && thrown.position() == 7 ? 0 : 1;
        }
        return code;
      },
      [](int, bool) {});
}

}  // namespace
