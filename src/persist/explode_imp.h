// What ZoExplode holds: nothing but its operations.
#pragma once

class ZoFile;

class ZoExplodeImp {
 public:
  int operator()(const char* in, unsigned int inSize, char*& out,
                 unsigned int& outSize) const noexcept;
  int operator()(ZoFile& in, ZoFile& out) const noexcept;
};
