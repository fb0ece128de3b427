#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/cfg.h>
#include <zo/system/error.h>
#include <zo/system/exception.h>
#include <zo/system/execute.h>
#include <zo/system/sys_disp.h>
#include <zo/system/sys_obj.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "support/slots.h"
#include "system/other_thread.h"

namespace {

class Service : public zo::test::Impatient<ZoSysObj> {
 public:
  using ZoSysObj::guard;
};

TEST(SysObj, WaitsAnswerObtainedOrTimeOut) {
  Service service;
  EXPECT_EQ(service.waitToRead(), ZoResult::ok);
  EXPECT_EQ(service.waitToWrite(), ZoResult::timeOut);  // it waits for itself
  service.doneReading();
  zo::test::inOtherThread([&] { return service.waitToWrite(); });  // ends holding it
  EXPECT_EQ(service.waitToWrite(), ZoResult::ok);
  service.doneWriting();
}

// Threads that wait at once for a guard that is not there yet must get the same one.
TEST(SysObj, FirstWaitsOfManyThreadsMeetOneGuard) {
  for (int round = 0; round < 50; ++round) {
    Service service;
    std::atomic<int> inside = 0, met = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
      threads.emplace_back([&] {
        while (service.waitToWrite() != ZoResult::ok) {
        }
        met += inside++ != 0;
        std::this_thread::yield();
        --inside;
        service.doneWriting();
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(met, 0);
  }
}

TEST(SysObj, ACopySharesTheGuardOfItsSource) {
  Service source;
  Service copy(source);
  EXPECT_EQ(std::memcmp(&copy.guard(), &source.guard(), sizeof source.guard()), 0);
  copy.guard() = {};
  EXPECT_EQ(copy.waitToWrite(), ZoResult::refused) << "given up";
  EXPECT_EQ(source.waitToWrite(), ZoResult::ok);
  source.doneWriting();
}

#if !defined(_MSC_VER)
struct OpenExecute : ZoExecute {
  using ZoExecute::convertErr;
};
struct OpenCfg : ZoCfg {
  using ZoCfg::close;
  using ZoCfg::fullKey;
  using ZoCfg::getValue;
  using ZoCfg::insert;
  using ZoCfg::isKey;
  using ZoCfg::isValue;
  using ZoCfg::open;
  using ZoCfg::remove;
};

TEST(Interfaces, KeepTheOrderOfTheirVirtualFunctions) {
  using zo::test::expectSlots;
  expectSlots(2, &ZoSysObj::onReactor, &ZoSysObj::release, &ZoSysObj::poolRelease,
              &ZoSysObj::timeOut);
  using Name = const wchar_t*;
  expectSlots(
      6, static_cast<int (ZoSysDisp::*)(Name, const ZoVariant&)>(&ZoSysDisp::sendNotice),
      static_cast<int (ZoSysDisp::*)(ZoSysNotice, const ZoVariant&)>(&ZoSysDisp::sendNotice),
      &ZoSysDisp::sendRequest,
      static_cast<int (ZoSysDisp::*)(ZoCustomReactor*)>(&ZoSysDisp::addReactor),
      static_cast<int (ZoSysDisp::*)(ZoSystemReactor*)>(&ZoSysDisp::addReactor),
      static_cast<int (ZoSysDisp::*)(ZoCustomReactor*)>(&ZoSysDisp::removeReactor),
      static_cast<int (ZoSysDisp::*)(ZoSystemReactor*)>(&ZoSysDisp::removeReactor));
  using Slots = ZoErrorSlots;
  expectSlots(6, &Slots::error, static_cast<int (Slots::*)(Name, int, Name, ...)>(&Slots::warning),
              static_cast<int (Slots::*)(Name, ...)>(&Slots::trace),
              static_cast<int (Slots::*)(Name, ...)>(&Slots::prompt), &Slots::taskDialog);
  using Change = int (ZoCfg::*)(Name, const ZoVariant&);
  expectSlots(6, &ZoCfg::operator[],
              static_cast<ZoVariant (ZoCfg::*)(Name, const ZoVariant&, bool)>(&ZoCfg::at),
              static_cast<ZoVariant (ZoCfg::*)(Name, bool)>(&ZoCfg::at), &ZoCfg::getAt,
              &ZoCfg::isValid, static_cast<Change>(&ZoCfg::insertAt), &ZoCfg::removeAt,
              static_cast<Change>(&ZoCfg::replaceAt), static_cast<Change>(&ZoCfg::setAt),
              &ZoCfg::write, &ZoCfg::init, &OpenCfg::insert, &OpenCfg::remove, &OpenCfg::fullKey,
              &OpenCfg::open, &OpenCfg::close, &OpenCfg::isValue, &OpenCfg::isKey,
              &OpenCfg::getValue);
  expectSlots(6, &ZoExecute::automatic, &ZoExecute::process, &ZoExecute::shell,
              &OpenExecute::convertErr);
  expectSlots(2, &ZoSystemReactor::onNotice, &ZoSystemReactor::priority, &ZoSystemReactor::release);
  expectSlots(2, &ZoCustomReactor::onNotice, &ZoCustomReactor::priority, &ZoCustomReactor::release,
              &ZoCustomReactor::onRequest);
  expectSlots(0, &ZoComException::message, &ZoComException::report);
}
#endif

}  // namespace
