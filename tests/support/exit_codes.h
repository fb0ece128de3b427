// How a test program ends. GoogleTest itself ends with 0 (all passed) or 1 (a test failed).
//
// Wine hands only the low byte of an exit code on, and there an uncaught exception or an abort can
// read as a small number or as success. So every bad end goes through these codes: one byte, never
// 0, and none that a test's own child would choose.
#pragma once

namespace zo::test {

enum ExitCode : int {
  kExitUnknownChild = 0x80,  // --zo-child names no registered child
  kExitLeak = 0x81,          // blocks are live that nothing refers to any more
  kExitHeapDamage =
      0x82,  // found at a free: double free, free inside a block, bytes around a block written
  kExitAccess = 0x83,     // access violation; in guarded mode also overrun and use after free
  kExitTrap = 0x84,       // illegal instruction: undefined behaviour in guarded builds
  kExitTerminate = 0x85,  // std::terminate or abort
  kExitHung = 0x86,       // the watchdog lost its patience
  kExitException = 0x87,  // any other exception of the system: stack overflow, division by zero
};

}  // namespace zo::test
