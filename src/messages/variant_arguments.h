// Variants as the arguments of a message.
#pragma once

#include <zo/text/containers/sequence.h>
#include <zo/variant/variant.h>

#include <string>

#include "messages/expand.h"

namespace zo {

class VariantArguments final : public MessageArguments {
 public:
  explicit VariantArguments(const ZoSequence<ZoVariant>& values) noexcept : values_(values) {}

  bool has(unsigned int number) const override { return number <= values_.entries(); }
  void print(unsigned int number, std::wstring& out) const override;
  PluralNumber numberOf(unsigned int number) const override;

 private:
  const ZoSequence<ZoVariant>& values_;
};

}  // namespace zo
