// What each function of the C interface consists of: a call that lets nothing out, and the checked
// forms of what it is given.
//
//   int zocValueFormat(ZocValue value, ZocString out) noexcept {
//     return zo::c::call([&] {
//       const Use<Value> from(value);
//       const Use<String> to(out);
//       ...
//
// Within a call a Refusal is thrown for what the caller did wrong.
#pragma once

#include <zo_c.h>

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include "c_interface/handles.h"
#include "c_interface/texts.h"
#include "system/process_locks.h"

namespace zo::c {

// The work's code, or that of what it throws.
template <class Work>
int guarded(const Work& work) noexcept {
  try {
    return work();
  } catch (const Refusal& refusal) {
    return refusal.code;
  } catch (const std::bad_alloc&) {
    return ZOC_OUT_OF_MEMORY;
  } catch (...) {
    return ZOC_FAILURE;
  }
}

template <class Work>
int call(const Work& work) noexcept {
  return processLocks.attached ? guarded(work) : ZOC_NOT_ATTACHED;
}

template <class T>
T& required(T* pointer) {
  return pointer ? *pointer : throw Refusal{ZOC_BAD_ARGUMENT};
}

inline void require(bool isGiven) {
  if (!isGiven) throw Refusal{ZOC_BAD_ARGUMENT};
}

// The object of a handle, for as long as this lives. T says by kIsShared whether several threads
// may use it at once.
template <class T>
class Use {
 public:
  explicit Use(void* handle) : object_(findHandle(handle)) {
    if (!object_) throw Refusal{ZOC_BAD_HANDLE};
    if (object_->kind() != T::kKind) throw Refusal{ZOC_WRONG_HANDLE};
    if (!T::kIsShared && !object_->enter()) throw Refusal{ZOC_WRONG_THREAD};
  }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
  ~Use() {
    if (!T::kIsShared) object_->leave();
  }
  T* operator->() const noexcept { return static_cast<T*>(object_.get()); }
  T& operator*() const noexcept { return *operator->(); }

 private:
  std::shared_ptr<Object> object_;
};

// A new object behind a handle, which is null until all has succeeded.
template <class T, class Handle, class Fill>
int make(Handle* out, const Fill& fill) noexcept {
  if (out) *out = nullptr;
  return call([&] {
    Handle& handle = required(out);
    auto object = std::make_shared<T>();
    if (const int code = fill(*object)) return code;
    handle = static_cast<Handle>(addHandle(std::move(object)));
    return 0;
  });
}

}  // namespace zo::c
