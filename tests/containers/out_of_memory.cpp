// Containers ask for memory with the operator new that gives null; this one does so on demand.
#include <cstdlib>
#include <new>

#include "tell_tale.h"

void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  if (telltale::requestsUntilFailure > 0 && --telltale::requestsUntilFailure == 0) {
    telltale::requestsUntilFailure = 1;
    return nullptr;
  }
  try {
    return ::operator new(n);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
