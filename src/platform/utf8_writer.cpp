#include "platform/utf8_writer.h"

#include <algorithm>

namespace zo {

Utf8Writer::Utf8Writer(OutputFile& file)
    : file_(file),
      units_(std::make_unique_for_overwrite<wchar_t[]>(kUnits)),
      bytes_(std::make_unique_for_overwrite<char[]>(kUnits * kBytesPerUnit)) {}

Utf8Writer& Utf8Writer::operator<<(std::wstring_view text) noexcept {
  while (text.size() > kUnits - used_) {
    const size_t room = kUnits - used_;
    std::copy_n(text.data(), room, units_.get() + used_);
    used_ = kUnits;
    text.remove_prefix(room);
    // The second half of a pair may be still to come.
    writeOut(IS_HIGH_SURROGATE(units_[kUnits - 1]) ? kUnits - 1 : kUnits);
  }
  std::copy_n(text.data(), text.size(), units_.get() + used_);
  used_ += text.size();
  return *this;
}

void Utf8Writer::flush() noexcept { writeOut(used_); }

void Utf8Writer::writeOut(size_t count) noexcept {
  if (count > 0) {
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, units_.get(), static_cast<int>(count),
                                          bytes_.get(), kUnits * kBytesPerUnit, nullptr, nullptr);
    file_.write(bytes_.get(), static_cast<size_t>(bytes));
  }
  std::copy(units_.get() + count, units_.get() + used_, units_.get());
  used_ -= count;
}

}  // namespace zo
