// Reads the body of a legacy container and keeps its check value.
//
// The register starts at all ones. Writers differed in whether they inverted it at the end, so the
// stored word is compared with the register as it stands and with its inversion.
#pragma once

#include <zo/persist/zip.h>
#include <zo/results.h>

#include <cstdint>

#include "bytes/byte_stream.h"
#include "bytes/crc32.h"
#include "persist/implode_decoder.h"

namespace zo {

class LegacyReader {
 public:
  LegacyReader(ByteSource& body, std::uint32_t check) noexcept : decoder_(body), check_(check) {}

  // The next decoded bytes, valid until the next call; empty at the end.
  [[nodiscard]] Bytes next() noexcept {
    const Bytes run = decoder_.next();
    register_ = crc32Update(register_, run);
    return run;
  }

  // Whether the check value stands for the bytes delivered so far.
  [[nodiscard]] bool checkHolds() const noexcept {
    return register_ == check_ || ~register_ == check_;
  }

  // After the end: 0, 1000 for a check value that does not match, 1 for a body that breaks the
  // format. A body whose end code is missing has delivered all bytes when the check value says so.
  [[nodiscard]] int result() const noexcept {
    switch (decoder_.state()) {
      case ImplodeDecoder::State::complete:
        return checkHolds() ? ZoResult::ok : ZoZip::checkMismatch;
      case ImplodeDecoder::State::cut:
        return checkHolds() ? ZoResult::ok : ZoResult::refused;
      default:
        return ZoResult::refused;
    }
  }

 private:
  ImplodeDecoder decoder_;
  std::uint32_t check_;
  std::uint32_t register_ = kCrcStart;
};

}  // namespace zo
