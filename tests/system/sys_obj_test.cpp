#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/cad.h>
#include <zo/system/error.h>
#include <zo/system/exception.h>
#include <zo/system/execute.h>
#include <zo/system/sys_disp.h>
#include <zo/system/sys_obj.h>
#include <zo/system/sys_str.h>

#include <cstring>
#include <sstream>
#include <utility>

#include "support/open_handles.h"
#include "support/printers.h"
#include "system/other_thread.h"

namespace {

using zo::test::HeldElsewhere;
using zo::test::inOtherThread;
using zo::test::openHandles;

class Service : public zo::test::Impatient<ZoSysObj> {
 public:
  using ZoSysObj::guard;
};

// Whether a second thread gets the writer side.
bool isFree(ZoSysObj& service) {
  return inOtherThread([&] {
    const int code = service.waitToWrite();
    if (code == 0) service.doneWriting();
    return code == 0;
  });
}

TEST(SysObj, OwnsThreeKernelObjectsWhoseWaitsAnswerObtainedTimeOutOrRefused) {
  const auto before = openHandles();
  {
    Service service;
    EXPECT_EQ(openHandles(), before + 3);
    EXPECT_EQ(service.ZoSysObj::timeOut(), 1000);
    EXPECT_EQ(service.release(nullptr), 1);
    {
      const HeldElsewhere held(service);
      ASSERT_EQ(held.result(), 0);
      EXPECT_EQ(service.waitToWrite(), ZoResult::timeOut);
      EXPECT_EQ(service.waitToRead(), ZoResult::timeOut);
    }
    EXPECT_EQ(service.waitToRead(), ZoResult::ok);
    EXPECT_EQ(service.waitToWrite(), ZoResult::timeOut);  // it waits for itself
    service.doneReading();
    inOtherThread([&] { return service.waitToWrite(); });  // ends holding it
    EXPECT_EQ(service.waitToWrite(), ZoResult::ok);
    service.doneWriting();
    const auto kept = std::exchange(service.guard(), {});
    EXPECT_EQ(service.waitToWrite(), ZoResult::refused);
    EXPECT_EQ(service.waitToRead(), ZoResult::refused);
    service.guard() = kept;
  }
  EXPECT_EQ(openHandles(), before);
}

TEST(SysObj, ValuesPassThroughUnchangedAndTheGuardIsGivenBack) {
  Service service;
  const ZoString text(L"text");
  const auto expectBoth = [&](const auto& value) {
    ASSERT_EQ(service.waitToWrite(), 0);
    EXPECT_EQ(service.doneWriting(value), value);
    EXPECT_TRUE(isFree(service));
    ASSERT_EQ(service.waitToRead(), 0);
    EXPECT_EQ(service.doneReading(value), value);
    EXPECT_TRUE(isFree(service));
  };
  expectBoth(-7);
  expectBoth(~0u);
  expectBoth(0.5);
  expectBoth(true);
  expectBoth(text.data() + 1);
  expectBoth(text);
}

TEST(SysObj, ACopySharesTheGuardOfItsSource) {
  Service source;
  const auto before = openHandles();
  Service copy(source);
  Service assigned;
  zoSWMRGDelete(&assigned.guard());  // an assignment forgets what it had
  assigned = source;
  EXPECT_EQ(openHandles(), before);
  for (Service* other : {&copy, &assigned}) {
    EXPECT_EQ(std::memcmp(&other->guard(), &source.guard(), sizeof source.guard()), 0);
    ASSERT_EQ(other->waitToWrite(), 0);
    EXPECT_FALSE(isFree(source));
    other->doneWriting();
    EXPECT_TRUE(isFree(source));
    other->guard() = {};
  }
}

TEST(SysStr, CopiesDeeplyAndKeepsNull) {
  wchar_t buffer[] = L"part";
  const ZoSysStr text(buffer);
  buffer[0] = L'x';
  EXPECT_STREQ(text, L"part");

  const ZoSysStr null;
  for (const ZoSysStr* from : {&text, &null}) {
    for (const wchar_t* before : {L"before", static_cast<const wchar_t*>(nullptr)}) {
      ZoSysStr to(before);
      to = *from;
      to = *&to;
      EXPECT_STREQ(to, *from);
      EXPECT_TRUE(!*from || static_cast<const wchar_t*>(to) != *from);
      EXPECT_STREQ(ZoSysStr(std::move(to)), *from);
    }
  }
  EXPECT_STREQ(ZoSysStr(L""), L"");
  std::wostringstream out;
  out << text << null << L'|';
  EXPECT_EQ(out.str(), L"part|");
}

// Modules that were built before call by position. The two entries of a destructor count as one.
#if defined(__GNUC__)
template <class Member>
std::intptr_t entryOf(Member member) {
  std::intptr_t words[2];
  static_assert(sizeof member == sizeof words);
  std::memcpy(words, &member, sizeof words);
  return words[0] / static_cast<std::intptr_t>(sizeof(void*));
}

template <class... Members>
void expectOrder(std::intptr_t first, Members... members) {
  for (const std::intptr_t entry : {entryOf(members)...}) EXPECT_EQ(entry, first++);
}

struct OpenExecute : ZoExecute {
  using ZoExecute::convertErr;
};

TEST(Interfaces, KeepTheOrderOfTheirVirtualFunctions) {
  expectOrder(2, &ZoSysObj::onReactor, &ZoSysObj::release, &ZoSysObj::poolRelease,
              &ZoSysObj::timeOut);
  using Name = const wchar_t*;
  expectOrder(
      6, static_cast<int (ZoSysDisp::*)(Name, const ZoVariant&)>(&ZoSysDisp::sendNotice),
      static_cast<int (ZoSysDisp::*)(ZoSysNotice, const ZoVariant&)>(&ZoSysDisp::sendNotice),
      &ZoSysDisp::sendRequest,
      static_cast<int (ZoSysDisp::*)(ZoCustomReactor*)>(&ZoSysDisp::addReactor),
      static_cast<int (ZoSysDisp::*)(ZoSystemReactor*)>(&ZoSysDisp::addReactor),
      static_cast<int (ZoSysDisp::*)(ZoCustomReactor*)>(&ZoSysDisp::removeReactor),
      static_cast<int (ZoSysDisp::*)(ZoSystemReactor*)>(&ZoSysDisp::removeReactor));
  expectOrder(6, &ZoError::error, &ZoError::warning, &ZoError::trace, &ZoError::prompt,
              &ZoError::taskDialog);
  expectOrder(6, &ZoExecute::automatic, &ZoExecute::process, &ZoExecute::shell,
              &OpenExecute::convertErr);
  expectOrder(2, &ZoSystemReactor::onNotice, &ZoSystemReactor::priority, &ZoSystemReactor::release);
  expectOrder(2, &ZoCustomReactor::onNotice, &ZoCustomReactor::priority, &ZoCustomReactor::release,
              &ZoCustomReactor::onRequest);
  expectOrder(0, &ZoComException::message, &ZoComException::report);
}
#endif

}  // namespace
