// What ZoExplode holds: nothing but its operations.
#pragma once

class ZoExplodeImp {
 public:
  int operator()(const char* in, unsigned int inSize, char*& out,
                 unsigned int& outSize) const noexcept;
  int operator()(const wchar_t* in, const wchar_t* out) const noexcept;
};
