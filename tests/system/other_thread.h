// Work in a second thread, for what guards promise.
#pragma once

#include <gtest/gtest.h>
#include <zo/system/sys_obj.h>

#include <future>
#include <thread>

namespace zo::test {

// What the work answers in a thread of its own, which has ended then.
template <class Work>
auto inOtherThread(Work work) {
  return std::async(std::launch::async, work).get();
}

// A second thread that holds a service's guard as a writer for as long as this lives.
class HeldElsewhere {
 public:
  explicit HeldElsewhere(ZoSysObj& service)
      : thread_([&service, this] {
          held_.set_value(service.waitToWrite());
          letGo_.get_future().wait();
          service.doneWriting();
        }) {
    EXPECT_EQ(held_.get_future().get(), 0);
  }
  ~HeldElsewhere() {
    letGo_.set_value();
    thread_.join();
  }
  HeldElsewhere(const HeldElsewhere&) = delete;
  HeldElsewhere& operator=(const HeldElsewhere&) = delete;

 private:
  std::promise<int> held_;
  std::promise<void> letGo_;
  std::thread thread_;  // last: it uses the others
};

// A service that does not wait for its guard, so that a test need not.
template <class Service>
class Impatient : public Service {
 public:
  using Service::Service;
  int timeOut() override { return 0; }
};

}  // namespace zo::test
