// Work on many things on several threads, while one thread hands them out and takes what comes of
// them, in order: so the outcome does not depend on the number of threads.
//
//   inOrder(files.size(), {options.threads, kMemory},
//           [&](std::size_t i) { return memoryFor(files[i]); },            // on this thread
//           [&](std::size_t i, unsigned int worker) { pack(i, worker); },  // on any
//           [&](std::size_t i) { return add(i); }, idle);                  // on this one, in order
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace zolib {

struct Crew {
  unsigned int threads;  // 1: all happens on the calling thread
  std::uint64_t memory;  // in bytes: what is worked on at once has no more, unless one alone has
};

// The memory that work on thing i takes; nothing when there is nothing to do and to take.
using HandOut = std::function<std::optional<std::uint64_t>(std::size_t i)>;
using Work = std::function<void(std::size_t i, unsigned int worker)>;
// False ends everything: what is under way is waited for, the rest left out.
using Take = std::function<bool(std::size_t i)>;

// Hands out no more than two things for each thread ahead of what is taken. While it waits it calls
// `idle` several times a second. What is thrown ends it and reaches the caller.
void inOrder(std::size_t count, const Crew& crew, const HandOut& handOut, const Work& work,
             const Take& take, const std::function<void()>& idle);

}  // namespace zolib
