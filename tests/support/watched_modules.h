// The modules whose memory calls go to the guarded heap: those that are loaded with the program,
// but for the system's own.
#pragma once

#include <cstddef>

namespace zo::test {

// Redirects the memory calls of all modules that are loaded now.
void watchModules();

// The writable data of the watched modules, range by range.
using DataVisitor = void (*)(const void* from, std::size_t bytes);
void visitModuleData(DataVisitor visit);

// Whether the code address belongs to the thread runtime, which keeps some blocks for as long as
// the process lives.
bool isThreadRuntime(const void* address);

}  // namespace zo::test
