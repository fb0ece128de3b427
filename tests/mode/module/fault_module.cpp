// A module of faults, linked by nobody: the self-checks load it while they run.
#include <cstddef>

extern "C" {

__declspec(dllexport) char* moduleAllocate(std::size_t size) {
  char* block = new char[size];
  block[0] = 'm';  // so that this function is on the stack while it allocates
  return block;
}

__declspec(dllexport) void moduleFree(const char* block) { delete[] block; }

__declspec(dllexport) int moduleRead(const volatile char* block, std::size_t index) {
  return block[index];
}

}  // extern "C"
