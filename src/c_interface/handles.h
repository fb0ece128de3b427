// Handles of the C interface: numbers that are looked up, never addresses that are followed.
//
// A handle is the place of its object in a table and a number that no other handle ever has, so
// that a closed one is told from one that has its place now.
//
// Threads: any.
#pragma once

#include <atomic>
#include <memory>

namespace zo::c {

enum class Kind : unsigned char { string, value, archive, library };

// What a handle stands for.
class Object {
 public:
  explicit Object(Kind kind) noexcept : kind_(kind) {}
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  // Whether this thread may close it, and the code of doing so, after which the handle is gone.
  [[nodiscard]] virtual bool mayClose() noexcept = 0;
  [[nodiscard]] virtual int close() { return 0; }

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  // One thread at a time, as often as it likes: false when another one has it.
  [[nodiscard]] bool enter() noexcept;
  void leave() noexcept;

 private:
  Kind kind_;
  std::atomic<unsigned long> owner_ = 0;
  unsigned int depth_ = 0;  // the owner's
};

[[nodiscard]] unsigned long currentThread() noexcept;  // never 0

// Throws std::bad_alloc.
[[nodiscard]] void* addHandle(std::shared_ptr<Object> object);
// Null for what is no handle.
[[nodiscard]] std::shared_ptr<Object> findHandle(void* handle) noexcept;
// Takes an object out of the table, this one or any: null when there is none.
std::shared_ptr<Object> dropHandle(void* handle) noexcept;
[[nodiscard]] std::shared_ptr<Object> dropAnyHandle() noexcept;

}  // namespace zo::c
