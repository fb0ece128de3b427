// The code page service in force, or one for the time being: for what works without services.
#pragma once

#include <zo/system/codepage.h>

#include <optional>

#include "system/service_or_null.h"

namespace zo {

class CodepagesInForce {
 public:
  CodepagesInForce() : service_(serviceOrNull<ZoCodepage>()) {
    if (!service_) service_ = &own_.emplace();
  }
  CodepagesInForce(const CodepagesInForce&) = delete;
  CodepagesInForce& operator=(const CodepagesInForce&) = delete;

  ZoCodepage* operator->() const noexcept { return service_; }
  ZoCodepage& operator*() const noexcept { return *service_; }

 private:
  std::optional<ZoStdCodepage> own_;
  ZoCodepage* service_;
};

}  // namespace zo
