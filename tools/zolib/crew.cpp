#include "crew.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace zolib {
namespace {

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
      const std::lock_guard lock(mutex_);
      ends_ = true;
    }
    forWorkers_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  // In order; waits until there is memory for it.
  void hand(std::size_t i, std::uint64_t memory) {
    std::unique_lock lock(mutex_);
    wait(lock, [&] { return used_ == 0 || used_ + memory <= memory_; });
    used_ += memory;
    jobs_.push_back({i, memory});
    ++handed_;
    queue_.push_back(&jobs_.back());
    forWorkers_.notify_one();
  }

  // The one that was handed out first and not yet given back; waits for it.
  std::size_t next() {
    std::unique_lock lock(mutex_);
    wait(lock, [&] { return jobs_.front().isDone; });
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

  template <class Condition>
  void wait(std::unique_lock<std::mutex>& lock, const Condition& holds) {
    while (!forCaller_.wait_for(lock, std::chrono::milliseconds(200), holds)) {
      lock.unlock();
      idle_();
      lock.lock();
    }
  }

  void serve(unsigned int worker) {
    std::unique_lock lock(mutex_);
    for (;;) {
      forWorkers_.wait(lock, [&] { return ends_ || !queue_.empty(); });
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
      forCaller_.notify_all();
    }
  }

  std::uint64_t memory_, used_ = 0;
  const Work& work_;
  const std::function<void()>& idle_;
  std::mutex mutex_;
  std::condition_variable forWorkers_, forCaller_;
  std::deque<Job> jobs_;    // in order; a reference to one stays valid
  std::deque<Job*> queue_;  // of these, what nobody works on yet
  std::size_t handed_ = 0;  // the caller's own count of jobs_
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
