// A module of faults, linked by nobody: the self-checks load it while they run.
#include <cstddef>

extern "C" {

__declspec(dllexport) char* moduleAllocate(std::size_t size) { return new char[size]; }

__declspec(dllexport) void moduleFree(const char* block) { delete[] block; }

__declspec(dllexport) int moduleRead(const volatile char* block, std::size_t index) {
  return block[index];
}

}  // extern "C"
