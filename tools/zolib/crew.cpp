#include "crew.h"

#include <windows.h>

#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace zolib {
namespace {

// The platform's own lock and condition: with those of the C++ library, a million tiny members took
// an eighth longer to test.
class Lock {
 public:
  void lock() noexcept { AcquireSRWLockExclusive(&lock_); }
  void unlock() noexcept { ReleaseSRWLockExclusive(&lock_); }

 private:
  friend class Condition;
  SRWLOCK lock_ = SRWLOCK_INIT;
};

class Condition {
 public:
  // Until it is told, or for so many milliseconds, or without a reason.
  void wait(std::unique_lock<Lock>& lock, DWORD most = INFINITE) noexcept {
    static_cast<void>(SleepConditionVariableSRW(&told_, &lock.mutex()->lock_, most, 0));
  }
  void tellOne() noexcept { WakeConditionVariable(&told_); }
  void tellAll() noexcept { WakeAllConditionVariable(&told_); }

 private:
  CONDITION_VARIABLE told_ = CONDITION_VARIABLE_INIT;
};

class Team {
 public:
  Team(const Crew& crew, const Work& work, const std::function<void()>& idle)
      : memory_(crew.memory), work_(work), idle_(idle) {
    for (unsigned int worker = 0; worker < crew.threads; ++worker)
      threads_.emplace_back([this, worker] { serve(worker); });
  }
  Team(const Team&) = delete;
  Team& operator=(const Team&) = delete;
  ~Team() {
    {
      const std::lock_guard lock(lock_);
      ends_ = true;
    }
    moreToDo_.tellAll();
    for (std::thread& thread : threads_) thread.join();
  }

  // In order; waits until there is memory for it.
  void hand(std::size_t i, std::uint64_t memory) {
    std::unique_lock lock(lock_);
    wait(lock, lessUsed_, [&] { return used_ == 0 || used_ + memory <= memory_; });
    used_ += memory;
    jobs_.push_back({i, memory});
    ++handed_;
    queue_.push_back(&jobs_.back());
    moreToDo_.tellOne();
  }

  // The one that was handed out first and not yet given back; waits for it.
  std::size_t next() {
    std::unique_lock lock(lock_);
    wait(lock, firstIsDone_, [&] { return jobs_.front().isDone; });
    const Job job = std::move(jobs_.front());
    jobs_.pop_front();
    --handed_;
    if (job.failure) std::rethrow_exception(job.failure);
    return job.i;
  }

  [[nodiscard]] std::size_t handed() const noexcept { return handed_; }

 private:
  struct Job {
    std::size_t i;
    std::uint64_t memory;
    bool isDone = false;
    std::exception_ptr failure = {};
  };

  // Of the caller.
  template <class Holds>
  void wait(std::unique_lock<Lock>& lock, Condition& condition, const Holds& holds) {
    constexpr DWORD kIdle = 200;
    for (DWORD begin = GetTickCount(); !holds();) {
      const DWORD waited = GetTickCount() - begin;
      if (waited < kIdle) {
        condition.wait(lock, kIdle - waited);
        continue;
      }
      lock.unlock();
      idle_();
      lock.lock();
      begin = GetTickCount();
    }
  }

  void serve(unsigned int worker) {
    std::unique_lock lock(lock_);
    for (;;) {
      while (!ends_ && queue_.empty()) moreToDo_.wait(lock);
      if (ends_) return;
      Job& job = *queue_.front();
      queue_.pop_front();
      lock.unlock();
      try {
        work_(job.i, worker);
      } catch (...) {
        job.failure = std::current_exception();
      }
      lock.lock();
      used_ -= job.memory;
      job.isDone = true;
      lessUsed_.tellOne();
      if (jobs_.front().isDone) firstIsDone_.tellOne();
    }
  }

  std::uint64_t memory_, used_ = 0;
  const Work& work_;
  const std::function<void()>& idle_;
  Lock lock_;
  Condition moreToDo_;                // the workers wait for it
  Condition lessUsed_, firstIsDone_;  // the caller does
  std::deque<Job> jobs_;              // in order; a reference to one stays valid
  std::deque<Job*> queue_;            // of these, what nobody works on yet
  std::size_t handed_ = 0;            // the caller's own count of jobs_
  bool ends_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace

void inOrder(std::size_t count, const Crew& crew, const HandOut& handOut, const Work& work,
             const Take& take, const std::function<void()>& idle) {
  if (crew.threads <= 1 || count <= 1) {
    for (std::size_t i = 0; i < count; ++i) {
      if (!handOut(i)) continue;
      work(i, 0);
      if (!take(i)) return;
    }
    return;
  }
  Team team(crew, work, idle);
  for (std::size_t i = 0; i < count; ++i) {
    if (const std::optional<std::uint64_t> memory = handOut(i)) team.hand(i, *memory);
    while (team.handed() > std::size_t{2} * crew.threads)
      if (!take(team.next())) return;
  }
  while (team.handed() > 0)
    if (!take(team.next())) return;
}

}  // namespace zolib
