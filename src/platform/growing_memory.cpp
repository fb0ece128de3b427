#include "platform/growing_memory.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace zo {
namespace {

constexpr std::size_t kFirstCapacity = 4096;
constexpr std::size_t kLargestOnHeap = 256U << 10;
constexpr std::size_t kFirstReservation = 64U << 20;

}  // namespace

void GrowingMemory::release() noexcept {
  if (reserved_ > 0) VirtualFree(data_, 0, MEM_RELEASE);
}

void GrowingMemory::grow(std::size_t used, std::size_t wanted) {
  const std::size_t capacity = std::max({wanted, 4 * capacity_, kFirstCapacity});
  if (capacity <= kLargestOnHeap) {
    std::unique_ptr<std::byte[]> larger(new std::byte[capacity]);
    if (used > 0) std::memcpy(larger.get(), data_, used);
    heap_ = std::move(larger);
    data_ = heap_.get();
    capacity_ = capacity;
    return;
  }
  if (capacity <= reserved_) {
    if (!VirtualAlloc(data_, capacity, MEM_COMMIT, PAGE_READWRITE)) throw std::bad_alloc();
    capacity_ = capacity;
    return;
  }
  const std::size_t reservation = std::max(kFirstReservation, 16 * capacity);
  void* const block = VirtualAlloc(nullptr, reservation, MEM_RESERVE, PAGE_NOACCESS);
  if (!block) throw std::bad_alloc();
  if (!VirtualAlloc(block, capacity, MEM_COMMIT, PAGE_READWRITE)) {
    VirtualFree(block, 0, MEM_RELEASE);
    throw std::bad_alloc();
  }
  if (used > 0) std::memcpy(block, data_, used);
  release();
  heap_.reset();
  data_ = static_cast<std::byte*>(block);
  capacity_ = capacity;
  reserved_ = reservation;
}

}  // namespace zo
