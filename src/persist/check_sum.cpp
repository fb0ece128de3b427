#include <windows.h>
#include <zo/files/file.h>
#include <zo/persist/check_sum.h>
#include <zo/results.h>

#include <algorithm>

#include "bytes/little_endian.h"
#include "files/keep_reason.h"
#include "platform/address_range.h"
#include "platform/sha256.h"

namespace {

constexpr unsigned int kBlock = 256 * 1024;  // stays in the processor's cache

int result(bool done) noexcept { return done ? ZoResult::ok : ZoResult::refused; }
int tooShort() { return zo::keepReason(L"zoCheckSumFile", ERROR_HANDLE_EOF); }

}  // namespace

ZoCheckSum::ZoCheckSum() = default;
ZoCheckSum::ZoCheckSum(ZoCheckSum&& other) noexcept = default;
ZoCheckSum& ZoCheckSum::operator=(ZoCheckSum&& other) noexcept = default;
ZoCheckSum::~ZoCheckSum() = default;

int ZoCheckSum::start(ZoCheckKey key) {
  if (!zo::canBeMemory(key.data, key.size)) return ZoResult::refused;
  if (!hash_) hash_ = std::make_unique<zo::Sha256>();
  return result(hash_->startKeyed(key.data, key.size));
}

int ZoCheckSum::add(const void* data, std::size_t size) {
  return result(hash_ && zo::canBeMemory(data, size) && hash_->add(data, size));
}

int ZoCheckSum::finish(Sum& sum) { return result(hash_ && hash_->finish(sum)); }

bool ZoCheckSum::isSame(const Sum& a, const Sum& b) noexcept {
  unsigned int difference = 0;
  for (std::size_t i = 0; i < a.size(); ++i) difference |= static_cast<unsigned int>(a[i] ^ b[i]);
  return difference == 0;
}

std::uint64_t ZoCheckSum::shortForm(const Sum& sum) noexcept { return zo::load64(sum.data()); }

int zoCheckSum(const void* data, std::size_t size, ZoCheckKey key, ZoCheckSum::Sum& sum) {
  if (!zo::canBeMemory(data, size) || !zo::canBeMemory(key.data, key.size))
    return ZoResult::refused;
  zo::Sha256 hash;
  return result(hash.startKeyed(key.data, key.size) && hash.add(data, size) && hash.finish(sum));
}

int zoCheckSum(const void* data, std::size_t size, ZoCheckKey key, std::uint64_t& sum) {
  ZoCheckSum::Sum whole;
  if (const int code = zoCheckSum(data, size, key, whole)) return code;
  sum = ZoCheckSum::shortForm(whole);
  return ZoResult::ok;
}

int zoCheckSumFile(ZoFile& file, ZoCheckKey key, ZoCheckSum::Sum& sum) {
  ZoCheckSum made;
  const std::int64_t size = file.size(), begin = file.currentPos();
  if (size < 0 || begin < 0) return ZoResult::refused;
  if (made.start(key)) return zo::keepReason(L"zoCheckSumFile");
  std::int64_t left = std::max<std::int64_t>(size - begin, 0);
  const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
  while (left > 0) {
    SetLastError(ERROR_SUCCESS);
    const auto most = static_cast<unsigned int>(std::min<std::int64_t>(left, kBlock));
    const unsigned int got = file.read(block.get(), most);
    if (got == 0) return GetLastError() ? ZoResult::refused : tooShort();
    if (made.add(block.get(), got)) return zo::keepReason(L"zoCheckSumFile");
    left -= got;
  }
  return made.finish(sum) ? zo::keepReason(L"zoCheckSumFile") : ZoResult::ok;
}

int zoCheckSumFile(const ZoFileName& name, ZoCheckKey key, ZoCheckSum::Sum& sum) {
  ZoFile file;
  if (file.open(name, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                ZoFile::kSequential)) {
    return ZoResult::refused;
  }
  return zoCheckSumFile(file, key, sum);
}
