#include <gtest/gtest.h>
#include <windows.h>
#include <zo/system/guard.h>

#include <chrono>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/handle.h"
#include "support/child_process.h"
#include "system/guard_scope.h"

namespace {

constexpr unsigned long kTry = 0;

// A name that no other run and no other test has, padded to `length`.
std::wstring newName(std::size_t length = 0) {
  static int count = 0;
  std::wstring name =
      L"zo-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count) + L"-";
  if (name.size() < length) name.append(length - name.size(), L'x');
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
  friend std::ostream& operator<<(std::ostream& out, const View& view) {
    return out << view.readers << " readers, event " << view.eventSignalled << ", admits reader "
               << view.admitsReader << ", writer " << view.admitsWriter;
  }
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
    seen.admitsWriter = zoSWMRGWaitToWrite(&guard, kTry) == ZoWait::obtained;
    if (seen.admitsWriter) zoSWMRGDoneWriting(&guard);
    seen.admitsReader = zoSWMRGWaitToRead(&guard, kTry) == ZoWait::obtained;
    if (seen.admitsReader) zoSWMRGDoneReading(&guard);
  });
  return seen;
}

DWORD openHandles() {
  DWORD count = 0;
  EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &count));
  return count;
}

bool isOpen(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) != 0;
}

}  // namespace

TEST(Guard, AdmitsReadersTogetherAndAWriterAlone) {
  Guard guard;
  EXPECT_EQ(view(guard), kFree);
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(view(guard), reading(1));
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(view(guard), reading(2));
  inThread([&] { zoSWMRGDoneReading(&guard); });  // a reader may leave through any thread
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);
  EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(view(guard), kWriting);
  zoSWMRGDoneWriting(&guard);
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, KeepsItsPromiseUnderContention) {
  Guard guard;
  int value = 0, copy = 0, torn = 0;  // written by writers only, `torn` too
  const auto work = [&](bool writes) {
    for (int round = 0; round < 40; ++round) {
      if (writes) {
        zo::WriteScope writing(guard, ZoWait::forever);
        torn += value != copy;
        ++value;
        std::this_thread::yield();
        ++copy;
      } else {
        bool same = true;
        {
          zo::ReadScope reading(guard, ZoWait::forever);
          const int before = value;
          std::this_thread::yield();
          same = before == copy && before == value;
        }
        zo::WriteScope writing(guard, ZoWait::forever);
        torn += !same;
      }
    }
  };
  std::vector<std::thread> threads;
  for (bool writes : {true, false, true, false}) threads.emplace_back(work, writes);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(value, 80);
  EXPECT_EQ(copy, 80);
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, AWaitThatTimesOutWaitedAndTookNothing) {
  using std::chrono::steady_clock;
  Guard guard;
  const auto expectTimeOut = [&](auto wait, const View& holders) {
    inThread([&] {
      const auto start = steady_clock::now();
      EXPECT_EQ(wait(&guard, 30), ZoWait::timeOut);
      // Clocks tick; a wait may end one tick early.
      EXPECT_GE(steady_clock::now() - start, std::chrono::milliseconds(14));
    });
    EXPECT_EQ(view(guard), holders);
  };
  ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  expectTimeOut(zoSWMRGWaitToWrite, reading(1));
  zoSWMRGDoneReading(&guard);
  ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  expectTimeOut(zoSWMRGWaitToWrite, kWriting);
  expectTimeOut(zoSWMRGWaitToRead, kWriting);
  zoSWMRGDoneWriting(&guard);
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, AWaiterGetsInWhenTheHolderIsDone) {
  Guard guard;
  const auto passesOn = [&](const Side& from, const Side& to) {
    ASSERT_EQ(from.wait(&guard, kTry), ZoWait::obtained);
    std::thread next([&] {
      EXPECT_EQ(to.wait(&guard, ZoWait::forever), ZoWait::obtained);
      EXPECT_EQ(view(guard), to.held);
      to.done(&guard);
    });
    from.done(&guard);
    next.join();
    EXPECT_EQ(view(guard), kFree);
  };
  passesOn(kReader, kWriter);
  passesOn(kWriter, kWriter);
  passesOn(kWriter, kReader);
}

TEST(Guard, TheWriterIsAdmittedAgainAndLeavesAsOftenAsItCame) {
  Guard guard;
  for (int depth = 0; depth < 3; ++depth)
    ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  inThread([&] { zoSWMRGDoneWriting(&guard); });  // not the owner: nothing happens
  for (int depth = 0; depth < 3; ++depth) {
    EXPECT_EQ(view(guard), kWriting);
    zoSWMRGDoneWriting(&guard);
  }
  EXPECT_EQ(view(guard), kFree);
  zoSWMRGDoneWriting(&guard);  // once too often: nothing happens
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, AWriterMayReadAndStaysAReaderButAReaderCannotWrite) {
  Guard guard;
  ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(view(guard), (View{1, false, false, false}));
  EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::timeOut);  // it waits for itself
  zoSWMRGDoneWriting(&guard);
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, ADoneReadingWithoutItsWaitBlocksUntilThereIsAReader) {
  Guard guard;
  std::thread unmatched([&] { zoSWMRGDoneReading(&guard); });
  // Whether it blocks already or will: it takes this reader's count, and only then ends.
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, ZoWait::forever), ZoWait::obtained);
  unmatched.join();
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, NamesOfUpTo80CharactersAreSharedUnderTheirObjectsNames) {
  for (std::size_t length : {0, 79, 80}) {
    const std::wstring name = length == 0 ? L"" : newName(length);
    const auto opens = [&] {
      const auto exists = [](HANDLE object) { return object && CloseHandle(object); };
      return std::vector<bool>{
          exists(OpenMutexW(SYNCHRONIZE, FALSE, (L"SWMRGMutexNoWriter" + name).c_str())),
          exists(OpenEventW(SYNCHRONIZE, FALSE, (L"SWMRGEventNoReaders" + name).c_str())),
          exists(OpenSemaphoreW(SYNCHRONIZE, FALSE, (L"SWMRGSemNumReaders" + name).c_str()))};
    };
    {
      Guard first(name);
      EXPECT_EQ(opens(), std::vector<bool>(3, true)) << length;
      ASSERT_EQ(zoSWMRGWaitToRead(&first, kTry), ZoWait::obtained);
      Guard second(name), other(newName()), unnamed;
      EXPECT_EQ(view(second), reading(1)) << length;
      EXPECT_EQ(view(other), kFree);
      EXPECT_EQ(view(unnamed), kFree);
      zoSWMRGDoneReading(&second);
      EXPECT_EQ(view(first), kFree);
    }
    EXPECT_EQ(opens(), std::vector<bool>(3, false)) << "deleting closes all; length " << length;
  }
}

TEST(Guard, ARefusedNameLeavesNothingOpenAndTheFieldsAsTheyWere) {
  const std::wstring taken[] = {newName(), newName(), newName()};
  const zo::Handle blockers[] = {
      zo::Handle(CreateEventW(nullptr, TRUE, TRUE, (L"SWMRGMutexNoWriter" + taken[0]).c_str())),
      zo::Handle(CreateMutexW(nullptr, FALSE, (L"SWMRGEventNoReaders" + taken[1]).c_str())),
      zo::Handle(CreateMutexW(nullptr, FALSE, (L"SWMRGSemNumReaders" + taken[2]).c_str()))};
  struct {
    std::wstring name;
    bool mutex, event, semaphore;  // which fields are set afterwards
  } const cases[] = {
      {newName(81), true, false, true},
      {newName(82), false, false, false},
      {newName(100), false, false, false},
      {newName(70000), false, false, false},
      {L"Local\\" + newName(), false, false, false},
      {taken[0], false, true, true},
      {taken[1], true, false, true},
      {taken[2], true, true, false},
  };
  for (const auto& c : cases) {
    ZoSingleWriterMultiReaderGuard guard{&guard, &guard, &guard};
    const DWORD before = openHandles();
    EXPECT_EQ(zoSWMRGInitialize(&guard, c.name.c_str()), 0);
    EXPECT_EQ(openHandles(), before) << c.name.size();
    EXPECT_EQ(guard.mutexNoWriter != nullptr, c.mutex) << c.name.size();
    EXPECT_EQ(guard.eventNoReaders != nullptr, c.event) << c.name.size();
    EXPECT_EQ(guard.semNumReaders != nullptr, c.semaphore) << c.name.size();
    for (HANDLE handle : {guard.mutexNoWriter, guard.eventNoReaders, guard.semNumReaders}) {
      EXPECT_NE(handle, &guard) << "left over from before";
      EXPECT_FALSE(isOpen(handle));
    }
  }
}

TEST(Guard, WithoutHandlesItFailsAndIsLeftAlone) {
  EXPECT_EQ(zoSWMRGInitialize(nullptr, L"x"), 0);
  const auto expectFailures = [](ZoSingleWriterMultiReaderGuard* guard) {
    for (auto wait : {zoSWMRGWaitToRead, zoSWMRGWaitToWrite}) {
      SetLastError(0);
      EXPECT_EQ(wait(guard, ZoWait::forever), ZoWait::failed);
      EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    }
    zoSWMRGDoneReading(guard);
    zoSWMRGDoneWriting(guard);
  };
  ZoSingleWriterMultiReaderGuard empty;
  expectFailures(nullptr);
  expectFailures(&empty);
  zoSWMRGDelete(nullptr);
  zoSWMRGDelete(&empty);

  Guard whole;
  ZoSingleWriterMultiReaderGuard headless = whole;
  headless.mutexNoWriter = nullptr;
  expectFailures(&headless);
  EXPECT_EQ(view(whole), kFree);
}

TEST(Guard, AReaderBeyondTheLargestCountIsRefusedAndLeavesTheMutex) {
  Guard guard;
  ASSERT_TRUE(ReleaseSemaphore(guard.semNumReaders, 2147483646, nullptr));
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  for (int i = 0; i < 2; ++i)
    inThread([&] { EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::failed); });
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
}

// Each kind of end is met by each kind of next holder.
TEST(Guard, AnEndOfTheMutexHolderIsToldOnceAndDoesNoHarm) {
  using End = void (*)(ZoSingleWriterMultiReaderGuard&);
  const End ends[] = {
      [](auto& guard) { EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained); },
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
  for (std::size_t i = 0; i < std::size(ends); ++i) {
    for (const Side& next : {kWriter, kReader}) {
      Guard guard;
      inThread([&] { ends[i](guard); });
      EXPECT_EQ(next.wait(&guard, kTry), ZoWait::abandoned) << i;
      EXPECT_EQ(view(guard), next.held) << i;
      next.done(&guard);
      EXPECT_EQ(view(guard), kFree) << i;
    }
  }
}

TEST(Guard, ReadersInsideKeepTheirCountWhenTheMutexHolderEnds) {
  Guard guard;
  const auto endHolding = [&] { WaitForSingleObject(guard.mutexNoWriter, INFINITE); };
  ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  inThread(endHolding);
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::abandoned);
  EXPECT_EQ(view(guard), reading(2));
  inThread(endHolding);
  zoSWMRGDoneReading(&guard);  // a leaving reader gets past it too
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, AReaderThatEndedInLeavingIsMadeGoodByTheNext) {
  Guard guard;
  inThread([&] {
    EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
    WaitForSingleObject(guard.mutexNoWriter, INFINITE);
    WaitForSingleObject(guard.semNumReaders, INFINITE);
  });
  EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::timeOut);
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::abandoned);
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, AScopeHoldsItsSideUntilItsEnd) {
  Guard guard;
  {
    zo::ReadScope first(guard, kTry);
    zo::ReadScope moved(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_TRUE(moved);
    EXPECT_EQ(view(guard), reading(1));
    zo::WriteScope refused(guard, kTry);
    EXPECT_FALSE(refused);
    EXPECT_EQ(refused.result(), ZoWait::timeOut);
  }
  EXPECT_EQ(view(guard), kFree);
  inThread([&] { EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained); });
  {
    zo::WriteScope writing(guard, kTry);
    EXPECT_TRUE(writing);
    EXPECT_EQ(writing.result(), ZoWait::abandoned);
    EXPECT_EQ(view(guard), kWriting);
  }
  EXPECT_EQ(view(guard), kFree);
}

// Opens the guard that its argument names, then does what each line says and answers its result.
ZO_TEST_CHILD(guardPeer) {
  ZoSingleWriterMultiReaderGuard guard;
  if (!zoSWMRGInitialize(&guard, parent.argument(0).c_str())) return 1;
  while (const auto line = parent.hear()) {
    unsigned long result = 0;
    if (line == "read") result = zoSWMRGWaitToRead(&guard, kTry);
    if (line == "write") result = zoSWMRGWaitToWrite(&guard, kTry);
    if (line == "done reading") zoSWMRGDoneReading(&guard);
    if (line == "done writing") zoSWMRGDoneWriting(&guard);
    parent.say(std::to_string(result));
  }
  zoSWMRGDelete(&guard);
  return 0;
}

namespace {

struct Peer : zo::test::ChildProcess {
  explicit Peer(const std::wstring& name) : ChildProcess(L"guardPeer", {name}) {}
  unsigned long ask(std::string_view line) {
    say(line);
    return std::stoul(hear().value());
  }
};

}  // namespace

TEST(GuardOfTwoProcesses, IsOneGuard) {
  const std::wstring name = newName();
  Guard guard(name);
  Peer peer(name);
  EXPECT_EQ(peer.ask("read"), ZoWait::obtained);
  EXPECT_EQ(view(guard), reading(1));
  ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(peer.ask("write"), ZoWait::timeOut);
  peer.ask("done reading");
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(peer.ask("write"), ZoWait::obtained);
  EXPECT_EQ(view(guard), kWriting);
  peer.ask("done writing");
  ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  EXPECT_EQ(peer.ask("read"), ZoWait::timeOut);
  zoSWMRGDoneWriting(&guard);
  EXPECT_EQ(peer.wait(), 0);
  EXPECT_EQ(view(guard), kFree);
}

TEST(GuardOfTwoProcesses, AKilledWriterHandsOverToWhoeverWaits) {
  for (const Side& side : {kWriter, kReader}) {
    const std::wstring name = newName();
    Guard guard(name);
    Peer peer(name);
    ASSERT_EQ(peer.ask("write"), ZoWait::obtained);
    ASSERT_EQ(side.wait(&guard, kTry), ZoWait::timeOut);
    std::thread waiter([&] {
      EXPECT_EQ(side.wait(&guard, ZoWait::forever), ZoWait::abandoned);
      EXPECT_EQ(view(guard), side.held);
      side.done(&guard);
    });
    peer.kill();
    waiter.join();
    EXPECT_EQ(view(guard), kFree);
    EXPECT_EQ(side.wait(&guard, kTry), ZoWait::obtained);
    side.done(&guard);
  }
}

TEST(GuardOfTwoProcesses, AKilledReaderStaysCountedUntilSomebodyIsDoneInItsPlace) {
  const std::wstring name = newName();
  {
    Guard guard(name);
    Peer peer(name);
    ASSERT_EQ(peer.ask("read"), ZoWait::obtained);
    peer.kill();
    EXPECT_EQ(view(guard), reading(1));
    zoSWMRGDoneReading(&guard);
    EXPECT_EQ(view(guard), kFree);

    Peer second(name);
    ASSERT_EQ(second.ask("read"), ZoWait::obtained);
    second.kill();
    EXPECT_EQ(view(guard), reading(1));
  }
  Guard afresh(name);
  EXPECT_EQ(view(afresh), kFree) << "with the last guard of the name the count goes";
}
