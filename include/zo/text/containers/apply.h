// Typed callbacks for apply-to-all: derive and override apply(T&). It is called once per element,
// in the order of the container, and must not change the container. A range-for does the same where
// the container's type is known.
//
// Errors:  what apply() throws ends the walk and passes through.
// Threads: apply() is called in the calling thread; it may change elements where that thread is the
//          container's only one.
#pragma once

#include <zo/text/containers/vcallbacks.h>

namespace zo {

template <class T, class Base>
class TypedApply : public Base {
 public:
  virtual void apply(T& element) = 0;

 private:
  void applyTo(void* element) final { apply(*static_cast<T*>(element)); }
};

}  // namespace zo

template <class T>
class ZoArrayApply : public zo::TypedApply<T, ZoVArrayApply> {};
template <class T>
class ZoListApply : public zo::TypedApply<T, ZoVListApply> {};
template <class T>
class ZoHashApply : public zo::TypedApply<T, ZoVHashApply> {};  // T: the type of the values
