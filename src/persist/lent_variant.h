// A container as the variant that holds it, without a copy: it stays its owner's.
#pragma once

#include <zo/variant/variant.h>

namespace zo {

class LentVariant {
 public:
  explicit LentVariant(const ZoVariant::Dict& dict) {
    if (!dynamic_cast<const ZoHashDict<ZoVariant, ZoString>*>(&dict)) {
      variant_ = ZoVariant(dict);  // of a type that no variant has
      return;
    }
    variant_.payload_.dict = const_cast<ZoVariant::Dict*>(&dict);
    variant_.become(ZoVariant::kDict, ZoTypeCode::Dict, 0);
    isLent_ = true;
  }
  explicit LentVariant(const ZoVariant::Sequence& sequence) {
    variant_.payload_.sequence = const_cast<ZoVariant::Sequence*>(&sequence);
    variant_.become(ZoVariant::kSequence, ZoTypeCode::Sequence, 0);
    isLent_ = true;
  }
  LentVariant(const LentVariant&) = delete;
  LentVariant& operator=(const LentVariant&) = delete;
  ~LentVariant() {
    if (isLent_) variant_.become(ZoVariant::kEmpty, ZoTypeCode::NoType, 0);
  }

  [[nodiscard]] const ZoVariant& get() const noexcept { return variant_; }

 private:
  ZoVariant variant_;
  bool isLent_ = false;
};

}  // namespace zo
