// The modules whose memory calls go to the guarded heap: all but the system's own.
#pragma once

#include <cstddef>

namespace zo::test {

// Redirects the memory calls of all modules that are loaded, and from now on of each that will be,
// before its first code runs.
void watchModules();

// The writable data of the watched modules, range by range.
using DataVisitor = void (*)(const void* from, std::size_t bytes);
void visitModuleData(DataVisitor visit);

// Whether the code address belongs to the thread runtime, which keeps some blocks for as long as
// the process lives.
bool isThreadRuntime(const void* address);

}  // namespace zo::test
