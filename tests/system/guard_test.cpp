#include <gtest/gtest.h>
#include <windows.h>
#include <zo/system/guard.h>

#include <ostream>
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
  for (const long readers : {1, 2}) {
    ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
    EXPECT_EQ(view(guard), reading(readers));
  }
  inThread([&] { zoSWMRGDoneReading(&guard); });  // a reader may leave through any thread
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
  EXPECT_EQ(view(guard), kFree);

  for (int depth = 0; depth < 3; ++depth)
    ASSERT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::obtained);
  inThread([&] { zoSWMRGDoneWriting(&guard); });  // not the owner: nothing happens
  for (int depth = 0; depth < 3; ++depth) {
    EXPECT_EQ(view(guard), kWriting);
    zoSWMRGDoneWriting(&guard);
  }
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
  int value = 0, copy = 0, torn = 0;  // written by writers only, `torn` too
  const auto write = [&](bool broken) {
    EXPECT_EQ(zoSWMRGWaitToWrite(&guard, ZoWait::forever), ZoWait::obtained);
    torn += broken || value != copy;
    ++value;
    std::this_thread::yield();
    ++copy;
    zoSWMRGDoneWriting(&guard);
  };
  const auto read = [&] {
    EXPECT_EQ(zoSWMRGWaitToRead(&guard, ZoWait::forever), ZoWait::obtained);
    const int before = value;
    std::this_thread::yield();
    const bool broken = before != copy || before != value;
    zoSWMRGDoneReading(&guard);
    return broken;
  };
  std::vector<std::thread> threads;
  for (const bool reads : {false, true, false, true}) {
    threads.emplace_back([=] {
      for (int round = 0; round < 40; ++round) write(reads && read());
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(torn, 0);
  EXPECT_TRUE(value == 160 && copy == 160) << value;
  EXPECT_EQ(view(guard), kFree);
}

TEST(Guard, AWaitLastsItsTimeAndEndsWhenTheHolderIsDone) {
  Guard guard;
  const std::pair<Side, Side> turns[] = {
      {kReader, kWriter}, {kWriter, kWriter}, {kWriter, kReader}};
  for (const auto& [holder, next] : turns) {
    ASSERT_EQ(holder.wait(&guard, kTry), ZoWait::obtained);
    inThread([&] {
      const ULONGLONG start = GetTickCount64();
      EXPECT_EQ(next.wait(&guard, 40), ZoWait::timeOut);
      EXPECT_GE(GetTickCount64() - start, 20u);  // clocks tick
    });
    EXPECT_EQ(view(guard), holder.held) << "it took nothing";
    std::thread waiter([&] {
      EXPECT_EQ(next.wait(&guard, ZoWait::forever), ZoWait::obtained);
      EXPECT_EQ(view(guard), next.held);
      next.done(&guard);
    });
    holder.done(&guard);
    waiter.join();
    EXPECT_EQ(view(guard), kFree);
  }
}

TEST(Guard, NamesOfUpTo80CharactersAreSharedUnderTheirObjectsNames) {
  for (const std::wstring& name : {std::wstring(), newName(80)}) {
    const auto opens = [&name] {
      const zo::Handle objects[] = {
          zo::Handle(OpenMutexW(SYNCHRONIZE, FALSE, (L"SWMRGMutexNoWriter" + name).c_str())),
          zo::Handle(OpenEventW(SYNCHRONIZE, FALSE, (L"SWMRGEventNoReaders" + name).c_str())),
          zo::Handle(OpenSemaphoreW(SYNCHRONIZE, FALSE, (L"SWMRGSemNumReaders" + name).c_str()))};
      return int{!!objects[0]} + int{!!objects[1]} + int{!!objects[2]};
    };
    {
      Guard first(name), second(name), other(newName()), unnamed;
      EXPECT_EQ(opens(), 3);
      ASSERT_EQ(zoSWMRGWaitToRead(&first, kTry), ZoWait::obtained);
      EXPECT_EQ(view(second), reading(1));
      EXPECT_EQ(view(other), kFree);
      EXPECT_EQ(view(unnamed), kFree);
      zoSWMRGDoneReading(&second);
      EXPECT_EQ(view(first), kFree);
    }
    EXPECT_EQ(opens(), 0) << "deleting closes all";
  }
}

TEST(Guard, ARefusedNameLeavesNothingOpenAndSetsWhatCouldBeMade) {
  const std::wstring taken[] = {newName(), newName(), newName()};
  const zo::Handle blockers[] = {
      zo::Handle(CreateEventW(nullptr, TRUE, TRUE, (L"SWMRGMutexNoWriter" + taken[0]).c_str())),
      zo::Handle(CreateMutexW(nullptr, FALSE, (L"SWMRGEventNoReaders" + taken[1]).c_str())),
      zo::Handle(CreateMutexW(nullptr, FALSE, (L"SWMRGSemNumReaders" + taken[2]).c_str()))};
  const struct {
    std::wstring name;
    std::vector<bool> made;  // mutex, event, semaphore
  } cases[] = {
      {newName(81), {true, false, true}},      {newName(82), {false, false, false}},
      {newName(70000), {false, false, false}}, {L"Local\\" + newName(), {false, false, false}},
      {taken[0], {false, true, true}},         {taken[1], {true, false, true}},
      {taken[2], {true, true, false}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name.size());
    ZoSingleWriterMultiReaderGuard guard{&guard, &guard, &guard};
    const auto before = openHandles();
    EXPECT_EQ(zoSWMRGInitialize(&guard, c.name.c_str()), 0);
    EXPECT_EQ(openHandles(), before);
    void* const fields[] = {guard.mutexNoWriter, guard.eventNoReaders, guard.semNumReaders};
    for (size_t i = 0; i < 3; ++i)
      EXPECT_TRUE((fields[i] != nullptr) == c.made[i] && fields[i] != &guard) << i;
  }
}

TEST(Guard, WithoutHandlesOrRoomItFailsAndIsLeftAlone) {
  Guard guard;
  ZoSingleWriterMultiReaderGuard empty, headless = guard;
  headless.mutexNoWriter = nullptr;
  EXPECT_EQ(zoSWMRGInitialize(nullptr, L"x"), 0);
  ZoSingleWriterMultiReaderGuard* const useless[] = {nullptr, &empty, &headless};
  for (ZoSingleWriterMultiReaderGuard* const none : useless) {
    for (const Side& side : {kReader, kWriter}) {
      SetLastError(0);
      EXPECT_EQ(side.wait(none, ZoWait::forever), ZoWait::failed);
      EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
      side.done(none);
    }
  }
  zoSWMRGDelete(nullptr);
  zoSWMRGDelete(&empty);
  EXPECT_EQ(view(guard), kFree);

  ASSERT_TRUE(ReleaseSemaphore(guard.semNumReaders, 2147483646, nullptr));
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  for (int i = 0; i < 2; ++i)  // the second finds the mutex free
    inThread([&] { EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::failed); });
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

TEST(Guard, ReadersKeepTheirCountWhenAnotherEndsInComingOrLeaving) {
  Guard guard;
  const auto endHolding = [&] { WaitForSingleObject(guard.mutexNoWriter, INFINITE); };
  ASSERT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::obtained);
  inThread(endHolding);
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::abandoned);
  EXPECT_EQ(view(guard), reading(2));
  inThread(endHolding);
  zoSWMRGDoneReading(&guard);  // a leaving reader gets past it too
  EXPECT_EQ(view(guard), reading(1));
  inThread([&] {  // ends before it would have let writers in: the next reader makes it good
    endHolding();
    WaitForSingleObject(guard.semNumReaders, INFINITE);
  });
  EXPECT_EQ(zoSWMRGWaitToWrite(&guard, kTry), ZoWait::timeOut);
  EXPECT_EQ(zoSWMRGWaitToRead(&guard, kTry), ZoWait::abandoned);
  EXPECT_EQ(view(guard), reading(1));
  zoSWMRGDoneReading(&guard);
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
    EXPECT_EQ(peer.ask("read"), ZoWait::obtained);
    EXPECT_EQ(view(guard), reading(2));
    peer.ask("done reading");
    zoSWMRGDoneReading(&guard);
    EXPECT_EQ(view(guard), kFree);
    ASSERT_EQ(peer.ask("write"), ZoWait::obtained);
    EXPECT_EQ(view(guard), kWriting);
    std::thread waiter([&] {
      EXPECT_EQ(side.wait(&guard, ZoWait::forever), ZoWait::abandoned);
      EXPECT_EQ(view(guard), side.held);
      side.done(&guard);
    });
    peer.kill();
    waiter.join();
    EXPECT_EQ(side.wait(&guard, kTry), ZoWait::obtained);
    side.done(&guard);
    EXPECT_EQ(view(guard), kFree);
  }
}

TEST(GuardOfTwoProcesses, AKilledReaderStaysCountedUntilSomebodyIsDoneInItsPlace) {
  const std::wstring name = newName();
  for (const bool doneInItsPlace : {false, true}) {
    Guard guard(name);
    EXPECT_EQ(view(guard), kFree) << "with the last guard of the name the count goes";
    Peer peer(name);
    ASSERT_EQ(peer.ask("read"), ZoWait::obtained);
    peer.kill();
    EXPECT_EQ(view(guard), reading(1));
    if (doneInItsPlace) zoSWMRGDoneReading(&guard);
    EXPECT_EQ(view(guard), doneInItsPlace ? kFree : reading(1));
  }
}

}  // namespace
