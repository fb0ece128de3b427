// One delivery of the standard dispatcher on its way: holds the guard, knows the reactor told last,
// and learns of what happens to the lists, and to the dispatcher, meanwhile.
#pragma once

#include <zo/system/std_sys_disp.h>

#include <iterator>
#include <type_traits>
#include <utility>

#include "system/first_failure.h"

namespace zo {

class Delivery {
 public:
  explicit Delivery(ZoStdSysDisp& dispatcher)
      : dispatcher_(dispatcher.waitToWrite() == 0 ? &dispatcher : nullptr) {
    if (dispatcher_) outer_ = std::exchange(dispatcher_->innermost_, this);
  }
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;
  ~Delivery() {
    if (!dispatcher_) return;
    dispatcher_->innermost_ = outer_;
    dispatcher_->doneWriting();
  }

  // Whether the guard is held; no longer when the dispatcher has been destroyed.
  explicit operator bool() const noexcept { return dispatcher_ != nullptr; }

  // Calls tell(reactor) for each reactor, as long as the dispatcher lives.
  template <class Reactor, class Tell>
  void walk(ZoList<Reactor*>& reactors, Tell tell) {
    told<Reactor>() = {};
    while (*this && advance(reactors)) {
      Reactor* const reactor = *told<Reactor>();
      failure_.run([&] { tell(reactor); });
    }
  }
  // What follows the reactors, whatever they threw.
  template <class Call>
  void run(Call call) {
    failure_.run(call);
  }
  // Throws what was thrown first on the way.
  void rethrow() const { failure_.rethrow(); }

  // An entry is about to leave its list: no delivery may stand on it.
  template <class Reactor>
  static void leave(Delivery* innermost, ListRangeIterator<Reactor*> entry) noexcept {
    for (Delivery* delivery = innermost; delivery; delivery = delivery->outer_)
      if (delivery->told<Reactor>() == entry) --delivery->told<Reactor>();
  }
  // The dispatcher ends, and its guard with it.
  static void abandon(Delivery* innermost) noexcept {
    for (Delivery* delivery = innermost; delivery; delivery = delivery->outer_)
      delivery->dispatcher_ = nullptr;
  }

 private:
  // Where the walk over the reactors of a kind stands: on the one told last; at the end before the
  // first.
  template <class Reactor>
  ListRangeIterator<Reactor*>& told() noexcept {
    if constexpr (std::is_same_v<Reactor, ZoSystemReactor>)
      return toldSystem_;
    else
      return toldCustom_;
  }
  template <class Reactor>
  bool advance(ZoList<Reactor*>& reactors) noexcept {
    ListRangeIterator<Reactor*>& entry = told<Reactor>();
    const bool before = entry == reactors.end();
    entry = before ? reactors.begin() : std::next(entry);
    return entry != reactors.end();
  }

  ZoStdSysDisp* dispatcher_;  // null when the guard was not obtained, or the dispatcher has ended
  Delivery* outer_ = nullptr;
  ListRangeIterator<ZoSystemReactor*> toldSystem_;
  ListRangeIterator<ZoCustomReactor*> toldCustom_;
  FirstFailure failure_;
};

}  // namespace zo
