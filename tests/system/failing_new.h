// Allocations of this test program that fail when told to: its operator new is this folder's own.
#pragma once

namespace zo::test {

// While one lives, the allocation of this thread that comes after `before` others throws
// std::bad_alloc.
class FailingNew {
 public:
  explicit FailingNew(int before);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  // Whether it came to that.
  [[nodiscard]] bool happened() const;
};

}  // namespace zo::test
