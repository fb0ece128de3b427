#include "persist/legacy_reader.h"

#include <zo/persist/zip.h>
#include <zo/results.h>

namespace zo {

int LegacyReader::result() const noexcept {
  switch (decoder_.state()) {
    case ImplodeDecoder::State::complete:
      return checkHolds() ? ZoResult::ok : ZoZip::checkMismatch;
    case ImplodeDecoder::State::cut:
      return checkHolds() ? ZoResult::ok : ZoResult::refused;
    default:
      return ZoResult::refused;
  }
}

}  // namespace zo
