#include "same.h"

#include <zo/library/check_value.h>

#include <vector>

#include "cancel.h"
#include "text.h"

namespace zolib {
namespace {

// Nothing when it cannot be read to the end that is expected.
std::optional<std::uint32_t> checkValueOf(ZoFile& file, std::uint64_t size) {
  std::vector<char> buffer(std::size_t{256} * 1024);
  std::uint32_t value = 0;
  while (const unsigned int count =
             file.read(buffer.data(), static_cast<unsigned int>(buffer.size()))) {
    if (isCancelled() || count > size) return std::nullopt;  // a log may grow without an end
    value = zoCheckValue(buffer.data(), count, value);
    size -= count;
  }
  return size == 0 ? std::optional(value) : std::nullopt;
}

std::optional<std::uint32_t> checkValueOf(Session& session, const ZoLibEntry& entry) {
  if (entry.isProtected) return entry.crc;
  ZoFile file;
  if (session->getFile(file, entry)) return std::nullopt;
  return checkValueOf(file, entry.size);
}

}  // namespace

bool looksSame(const Source& source, const ZoLibEntry& entry) noexcept {
  return source.size == entry.size && ticks(source.written) == ticks(entry.written);
}

std::optional<bool> isSame(const Source& source, Session& session, const ZoLibEntry& entry) {
  if (source.size != entry.size) return false;
  ZoFile file;
  if (file.open(ZoFileName(source.path))) return std::nullopt;
  const std::optional<std::uint32_t> ours = checkValueOf(file, source.size);
  const std::optional<std::uint32_t> theirs = checkValueOf(session, entry);
  if (!ours && !isCancelled() && file.size() > static_cast<std::int64_t>(source.size)) return false;
  if (!ours || !theirs) return std::nullopt;
  return *ours == *theirs;
}

}  // namespace zolib
