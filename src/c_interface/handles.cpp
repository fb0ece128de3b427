#include "c_interface/handles.h"

#include <windows.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace zo::c {

namespace {

struct Slot {
  std::shared_ptr<Object> object;
  std::uint64_t handle = 0;
};

constexpr unsigned int kPlaceBits = 24;
constexpr std::uint64_t kPlaces = std::uint64_t{1} << kPlaceBits;

// Never destroyed: what is open when the process ends stays, and nothing is closed while the
// platform unloads the DLL. It has no memory while no handle is open.
union Table {
  constexpr Table() noexcept : slots() {}
  ~Table() {}
  std::vector<Slot> slots;
};

constinit SRWLOCK lock = SRWLOCK_INIT;
constinit Table table;
constinit std::size_t used = 0;
constinit std::size_t firstFree = 0;  // no place before it is free
constinit std::uint64_t given = 0;    // handles ever; 40 bits of it last for years

// A std::mutex would need memory for its first lock.
struct Locked {
  Locked() noexcept { AcquireSRWLockExclusive(&lock); }
  ~Locked() { ReleaseSRWLockExclusive(&lock); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
};

void* toHandle(std::uint64_t number) noexcept {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(number));
}
std::uint64_t toNumber(void* handle) noexcept { return reinterpret_cast<std::uintptr_t>(handle); }

Slot* slotOf(void* handle) noexcept {
  const std::uint64_t number = toNumber(handle);
  const std::size_t place = number % kPlaces;
  if (place >= table.slots.size()) return nullptr;
  Slot& slot = table.slots[place];
  return slot.object && slot.handle == number ? &slot : nullptr;
}

std::shared_ptr<Object> take(Slot& slot) noexcept {
  std::shared_ptr<Object> object = std::move(slot.object);
  firstFree = std::min(firstFree, static_cast<std::size_t>(slot.handle % kPlaces));
  if (--used == 0) {
    std::vector<Slot>().swap(table.slots);
    firstFree = 0;
  }
  return object;
}

}  // namespace

Object::~Object() = default;

bool Object::enter() noexcept {
  const unsigned long self = currentThread();
  unsigned long owner = 0;
  if (!owner_.compare_exchange_strong(owner, self) && owner != self) return false;
  ++depth_;
  return true;
}

void Object::leave() noexcept {
  if (--depth_ == 0) owner_.store(0);
}

unsigned long currentThread() noexcept { return GetCurrentThreadId(); }

void* addHandle(std::shared_ptr<Object> object) {
  const Locked locked;
  std::vector<Slot>& slots = table.slots;
  while (firstFree < slots.size() && slots[firstFree].object) ++firstFree;
  if (firstFree == kPlaces) throw std::bad_alloc();
  if (firstFree == slots.size()) slots.emplace_back();
  Slot& slot = slots[firstFree];
  slot.handle = ++given << kPlaceBits | firstFree;
  slot.object = std::move(object);
  ++used;
  return toHandle(slot.handle);
}

std::shared_ptr<Object> findHandle(void* handle) noexcept {
  const Locked locked;
  const Slot* const slot = slotOf(handle);
  return slot ? slot->object : nullptr;
}

std::shared_ptr<Object> dropHandle(void* handle) noexcept {
  const Locked locked;
  Slot* const slot = slotOf(handle);
  return slot ? take(*slot) : nullptr;
}

std::shared_ptr<Object> dropAnyHandle() noexcept {
  const Locked locked;
  while (!table.slots.empty() && !table.slots.back().object) table.slots.pop_back();
  return table.slots.empty() ? nullptr : take(table.slots.back());
}

}  // namespace zo::c
