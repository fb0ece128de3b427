// Calls that must all be made, whatever one of them throws; the first exception is thrown at the
// end.
#pragma once

#include <exception>

namespace zo {

class FirstFailure {
 public:
  template <class Call>
  void run(Call call) {
    try {
      call();
    } catch (...) {
      if (!first_) first_ = std::current_exception();
    }
  }
  void rethrow() const {
    if (first_) std::rethrow_exception(first_);
  }

 private:
  std::exception_ptr first_;
};

}  // namespace zo
