// Variants as the arguments of a message.
#pragma once

#include <zo/variant/variant.h>

#include <span>

#include "messages/expand.h"

namespace zo {

class VariantArguments final : public MessageArguments {
 public:
  explicit VariantArguments(std::span<const ZoVariant> values) noexcept : values_(values) {}

  [[nodiscard]] bool has(unsigned int number) const override { return number <= values_.size(); }
  void print(unsigned int number, ExpandedText& out) const override;
  [[nodiscard]] PluralNumber numberOf(unsigned int number) const override;

 private:
  std::span<const ZoVariant> values_;
};

}  // namespace zo
