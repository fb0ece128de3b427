// What a ZoPackedMember holds.
#pragma once

#include "library/operations.h"
#include "library/spool.h"

namespace zo {

class PackedContent final : public NewContent {
 public:
  static constexpr std::size_t kMostMemory = std::size_t{8} << 20;

  [[nodiscard]] std::uint64_t size() const override { return entry_.record.size; }
  [[nodiscard]] std::uint64_t storedSize() const { return data_.size(); }
  [[nodiscard]] bool isCompressed() const { return entry_.record.has(kIsCompressed); }
  [[nodiscard]] bool writeTo(PackTarget& target, Progress& progress, ReusedMemory& memory,
                             RawEntry& entry) override;
  // Takes the bytes of a source.
  [[nodiscard]] bool pack(MemberSource& source, ZoLibrary::compMode mode, int level,
                          Progress& progress, ReusedMemory& memory);

  MemberTimes times;

 private:
  RawEntry entry_;  // what an entry says of the data
  Spool data_{kMostMemory};
};

}  // namespace zo
