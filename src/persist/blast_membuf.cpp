#include <zo/persist/blast_membuf.h>
#include <zo/persist/zip.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "bytes/little_endian.h"
#include "persist/container.h"
#include "persist/legacy_reader.h"

namespace {

constexpr int kGetArea = 4096;

}  // namespace

// One container that is being read.
struct Blastmembuf::Reading {
  explicit Reading(zo::Bytes container)
      : body(container.first(container.size() - zo::kTrailerSize)),
        reader(body, zo::load32(container.data() + container.size() - 4)) {}

  zo::MemorySource body;
  zo::LegacyReader reader;
  zo::Bytes run;  // decoded and not yet in the get area
};

Blastmembuf::Blastmembuf() {
  if (char* const area = new (std::nothrow) char[kGetArea]) setb(area, area + kGetArea, 1);
}

Blastmembuf::~Blastmembuf() { delete reading_; }

ZoZIPStreambuf* Blastmembuf::setbuf(char* buffer, int length) {
  if (!buffer || length <= 0 || in_avail() > 0) return nullptr;
  setb(buffer, buffer + length, 0);
  setg(nullptr, nullptr, nullptr);
  return this;
}

int Blastmembuf::overflow(int) { return endOfFile; }

int Blastmembuf::underflow() {
  if (in_avail() > 0) return static_cast<unsigned char>(*gptr());
  if (!reading_ || blen() == 0) return endOfFile;
  if (reading_->run.empty()) reading_->run = reading_->reader.next();
  if (reading_->run.empty()) return endOfFile;
  const std::size_t part = std::min(reading_->run.size(), static_cast<std::size_t>(blen()));
  std::memcpy(base(), reading_->run.data(), part);
  reading_->run = reading_->run.subspan(part);
  setg(base(), base(), base() + part);
  return static_cast<unsigned char>(*gptr());
}

int Blastmembuf::CRCStatus() const {
  return reading_ && reading_->reader.checkHolds() ? 0 : ZoZip::checkMismatch;
}

void Blastmembuf::setZipArea(const char* data, unsigned int size) {
  delete reading_;
  reading_ = nullptr;
  setg(nullptr, nullptr, nullptr);
  if (!data || size < zo::kTrailerSize) return;
  reading_ = new (std::nothrow) Reading({reinterpret_cast<const unsigned char*>(data), size});
}
