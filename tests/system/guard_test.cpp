#include <gtest/gtest.h>
#include <windows.h>
#include <zo/system/guard.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/handle.h"
#include "support/child_process.h"
#include "support/open_handles.h"

namespace {

using zo::test::openHandles;

constexpr unsigned long kTry = 0;

// A name that no other run and no other test has, padded to `length`.
std::wstring newName(std::size_t length = 30) {
  static int count = 0;
  std::wstring name =
      L"zo-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count) + L"-";
  name.resize(length, L'x');
  return name;
}

struct Guard : ZoSingleWriterMultiReaderGuard {
  explicit Guard(const wchar_t* name = nullptr) { EXPECT_EQ(zoSWMRGInitialize(this, name), 1); }
  explicit Guard(const std::wstring& name) : Guard(name.c_str()) {}
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  ~Guard() { zoSWMRGDelete(this); }
};

// A thread that ends without giving back what it took.
template <typename Work>
void inThread(Work work) {
  std::thread(work).join();
}

// Everything that a thread which holds nothing can see of a guard.
struct View {
  long readers;
  bool eventSignalled, admitsReader, admitsWriter;

  bool operator==(const View&) const = default;
};
constexpr View kFree{0, true, true, true};
constexpr View kWriting{0, true, false, false};
constexpr View reading(long readers) { return {readers, false, true, false}; }

// A side of the guard, and what is seen while one holds it.
struct Side {
  unsigned long (*wait)(ZoSingleWriterMultiReaderGuard*, unsigned long);
  void (*done)(ZoSingleWriterMultiReaderGuard*);
  View held;
};
const Side kReader{zoSWMRGWaitToRead, zoSWMRGDoneReading, reading(1)};
const Side kWriter{zoSWMRGWaitToWrite, zoSWMRGDoneWriting, kWriting};

View view(ZoSingleWriterMultiReaderGuard& guard) {
  View seen{};
  inThread([&] {
    LONG count = -1;
    ReleaseSemaphore(guard.semNumReaders, 1, &count);
    WaitForSingleObject(guard.semNumReaders, 0);
    seen.readers = count;
    seen.eventSignalled = WaitForSingleObject(guard.eventNoReaders, 0) == WAIT_OBJECT_0;
    const auto admits = [&](const Side& side) {
      const bool obtained = side.wait(&guard, kTry) == ZoWait::obtained;
      if (obtained) side.done(&guard);
      return obtained;
    };
    seen.admitsWriter = admits(kWriter);
    seen.admitsReader = admits(kReader);
  });
  return seen;
}

TEST(Guard, AdmitsReadersTogetherAndAWriterAloneAsOftenAsItCame) {
  Guard guard;
  for (int reader = 0; reader < 2; ++reader)
    ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(view(guard), reading(2));
  inThread([&] { zoSWMRGDoneReading(&guard); });  // a reader may leave through any thread
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);

  for (int depth = 0; depth < 2; ++depth)
    ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  inThread([&] { zoSWMRGDoneWriting(&guard); });  // not the owner: nothing happens
  zoSWMRGDoneWriting(&guard);
  EXPECT_EQ(view(guard), kWriting);
  zoSWMRGDoneWriting(&guard);
  zoSWMRGDoneWriting(&guard);  // once too often: nothing happens
  EXPECT_EQ(view(guard), kFree);

  // A writer may read, and stays a reader; a reader that would write waits for itself.
  ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::timeOut);
  zoSWMRGDoneWriting(&guard);
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
}

TEST(Guard, KeepsItsPromiseUnderContention) {
  Guard guard;
  int value = 0, copy = 0;  // written by writers only
  std::atomic<int> torn = 0;
  const auto work = [&] {
    for (int round = 0; round < 40; ++round) {
      EXPECT_EQ(zoSWMRGWaitToWrite(&guard, ZoWait::forever), ZoWait::obtained);
      torn += value++ != copy;
      std::this_thread::yield();
      ++copy;
      zoSWMRGDoneWriting(&guard);
      EXPECT_EQ(zoSWMRGWaitToRead(&guard, ZoWait::forever), ZoWait::obtained);
      const int before = value;
      std::this_thread::yield();
      torn += before != copy || before != value;
      zoSWMRGDoneReading(&guard);
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(torn == 0 && value == 160 && copy == 160) << value;
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, NamesOfUpTo80CharactersAreSharedUnderTheirObjectsNames) {
  for (const std::wstring& name : {std::wstring(), newName(80)}) {
    Guard first(name), second(name), other(newName()), unnamed;
    const zo::Handle mutex(OpenMutexW(SYNCHRONIZE, FALSE, (L"SWMRGMutexNoWriter" + name).c_str()));
    const zo::Handle event(OpenEventW(SYNCHRONIZE, FALSE, (L"SWMRGEventNoReaders" + name).c_str()));
    const zo::Handle count(
        OpenSemaphoreW(SYNCHRONIZE, FALSE, (L"SWMRGSemNumReaders" + name).c_str()));
    EXPECT_TRUE(mutex && event && count);
    ASSERT_EQ(zoSWMRGWaitToRead(&first, kTry), ZoWait::obtained);
    EXPECT_EQ(view(second), reading(1));
    EXPECT_EQ(view(other), kFree);
    EXPECT_EQ(view(unnamed), kFree);
    zoSWMRGDoneReading(&second);
    EXPECT_EQ(view(first), kFree);
  }
}

TEST(Guard, ARefusedNameLeavesNothingOpenAndNoGuardIsNone) {
  ZoSingleWriterMultiReaderGuard guard;
  const std::wstring taken = newName();
  const zo::Handle blocker(CreateMutexW(nullptr, FALSE, (L"SWMRGSemNumReaders" + taken).c_str()));
  for (const std::wstring& name : {taken, newName(81), newName(82), newName(70000)}) {
    const auto before = openHandles();
    EXPECT_EQ(zoSWMRGInitialize(&guard, name.c_str()), 0);
    EXPECT_EQ(openHandles(), before);
  }
  guard = {};
  for (ZoSingleWriterMultiReaderGuard* none : {&guard, decltype(&guard){}}) {
    for (const Side& side : {kReader, kWriter}) {
      EXPECT_EQ(side.wait(none, ZoWait::forever), ZoWait::failed);
      EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
      side.done(none);
    }
  }
}

// Each kind of end is met by each kind of next holder.
TEST(Guard, AnEndOfTheMutexHolderIsToldOnceAndDoesNoHarm) {
  using End = void (*)(ZoSingleWriterMultiReaderGuard&);
  const End ends[] = {
      [](auto& guard) {
        for (int depth = 0; depth < 2; ++depth)
          EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
      },
      // a reader between counting itself in and resetting the event
      [](auto& guard) {
        WaitForSingleObject(guard.mutexNoWriter, INFINITE);
        ReleaseSemaphore(guard.semNumReaders, 1, nullptr);
      },
      // a reader before it has counted itself in, or after it has let writers in
      [](auto& guard) { WaitForSingleObject(guard.mutexNoWriter, INFINITE); },
  };
  for (const End end : ends) {
    for (const Side& next : {kWriter, kReader}) {
      SCOPED_TRACE(std::to_string(&end - ends));
      Guard guard;
      inThread([&] { end(guard); });
      EXPECT_EQ(next.wait(&guard, kTry), ZoWait::abandoned);
      EXPECT_EQ(view(guard), next.held);
      next.done(&guard);
      EXPECT_EQ(view(guard), kFree);
    }
  }
}

// Opens the guard that its argument names, then does what each line says and answers its result.
ZO_TEST_CHILD(guardPeer) {
  ZoSingleWriterMultiReaderGuard guard;
  if (!zoSWMRGInitialize(&guard, parent.argument(0).c_str())) return 1;
  while (const auto line = parent.hear()) {
    unsigned long result = 0;
    if (line == "read") result = zoSWMRGWaitToRead(&guard, kTry);
    if (line == "write") result = zoSWMRGWaitToWrite(&guard, kTry);
    parent.say(std::to_string(result));
  }
  return 0;
}

struct Peer : zo::test::ChildProcess {
  explicit Peer(const std::wstring& name) : ChildProcess(L"guardPeer", {name}) {}
  unsigned long ask(std::string_view line) {
    say(line);
    return std::stoul(hear().value());
  }
};

TEST(GuardOfTwoProcesses, IsOneGuardAndAKilledWriterHandsOverToWhoeverWaits) {
  for (const Side& side : {kWriter, kReader}) {
    const std::wstring name = newName();
    Guard guard(name);
    Peer peer(name);
    ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
    EXPECT_EQ(peer.ask("write"), ZoWait::timeOut);
    zoSWMRGDoneReading(&guard);
    ASSERT_EQ(peer.ask("write"), ZoWait::obtained);
    EXPECT_EQ(view(guard), kWriting);
    std::thread waiter([&] {
      EXPECT_EQ(side.wait(&guard, ZoWait::forever), ZoWait::abandoned);
      EXPECT_EQ(view(guard), side.held);
      side.done(&guard);
    });
    peer.kill();
    waiter.join();
    EXPECT_EQ(view(guard), kFree);
  }
}

TEST(GuardOfTwoProcesses, AKilledReaderStaysCountedUntilSomebodyIsDoneInItsPlace) {
  const std::wstring name = newName();
  Guard guard(name);
  Peer peer(name);
  ASSERT_EQ(peer.ask("read"), ZoWait::obtained);
  peer.kill();
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);
}

}  // namespace
