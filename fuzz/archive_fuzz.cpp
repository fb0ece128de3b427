// Any bytes as stored values: what is made of them is bounded by their number, wherever they end,
// and reading never goes past them. The first byte chooses what an archive does at the end.
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz.h"
#include "persist/archive_layout.h"

using namespace zo;
using namespace zo::test;

namespace {

constexpr unsigned int kMaxDepth = 256;

struct Ended : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Value {
  VariantHead head;
  std::u16string text;
  std::vector<Value> elements;
};

class Archive {
 public:
  Archive(const ByteVector& bytes, bool throws) : bytes_(bytes), throws_(throws) {}

  template <class Number>
  void read(Number& value) {
    get(&value, sizeof value);
  }
  void read(ZoPoint& value) { readPoint(*this, value); }
  void read(ZoVector& value) { readVector(*this, value); }
  void read(Value& value);

  bool get(void* buffer, std::size_t size) {
    ended_ = size > bytes_.size() - at_;
    if (ended_ && throws_) throw Ended("");
    std::memset(buffer, 0, size);
    if (!ended_) std::memcpy(buffer, bytes_.data() + at_, size);
    at_ += ended_ ? bytes_.size() - at_ : size;
    return !ended_;
  }

  const ByteVector& bytes_;
  std::size_t at_ = 0;
  unsigned int depth_ = 0;
  std::size_t values = 0, units = 0;
  bool throws_;
  bool ended_ = false;
};

}  // namespace

template <>
struct zo::ArchiveAccess<Archive> {
  static bool fill(Archive& archive, void* buffer, unsigned int size, const wchar_t*) {
    return archive.get(buffer, size);
  }
  static bool cameShort(const Archive& archive) { return archive.ended_; }
  static bool enter(Archive& archive) {
    if (archive.depth_ == kMaxDepth) {
      archive.ended_ = true;
      if (archive.throws_) throw Ended("");
      return false;
    }
    ++archive.depth_;
    return true;
  }
  static void leave(Archive& archive) { --archive.depth_; }
};

namespace {

struct Builder {
  template <class Payload>
  void make(Value& value, const VariantHead& head, const Payload&) {
    value.head = head;
  }
  void makeEmpty(Value& value, const VariantHead& head) { value.head = head; }
  void readText(Value& value, const VariantHead& head, Archive& archive) {
    value.head = head;
    readUnits(archive, value.text);
  }
  void readGuid(Value& value, const VariantHead& head, Archive& archive) {
    value.head = head;
    char guid[16];
    ArchiveAccess<Archive>::fill(archive, guid, sizeof guid, L"");
  }
  void readEntry(Value& dict, Archive& archive) {
    std::u16string key;
    readUnits(archive, key);
    readElement(dict, archive);
  }
  void readElement(Value& list, Archive& archive) {
    Value element;
    archive.read(element);
    if (!archive.ended_) list.elements.push_back(std::move(element));
  }

 private:
  static void readUnits(Archive& archive, std::u16string& text) {
    std::uint32_t count = 0;
    archive.read(count);
    if (!zo::readUnits(archive, count, text)) ZO_FUZZ_CHECK(text.empty());
    archive.units += text.size();
  }
};

void Archive::read(Value& value) {
  Builder builder;
  readVariant(*this, builder, value, false);
  ++values;
}

template <class Geometry>
void readOne(Archive& archive, void (*readIt)(Archive&, Geometry&)) {
  Geometry value;
  readIt(archive, value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  const ByteVector bytes = fuzzInput(data + 1, size - 1);
  Archive archive(bytes, data[0] & 1);
  try {
    while (archive.at_ < bytes.size()) {
      Value value;
      archive.read(value);
      ZO_FUZZ_CHECK(archive.depth_ == 0);
      readOne(archive, readPlane<Archive>);
      readOne(archive, readCoSystem<Archive>);
      readOne(archive, readMatrix<Archive>);
      readOne(archive, readTol<Archive>);
    }
  } catch (const Ended&) {
  }
  ZO_FUZZ_CHECK(archive.depth_ == 0 && archive.at_ <= bytes.size());
  ZO_FUZZ_CHECK(8 * (archive.values - 2) <= bytes.size() || archive.values <= 2 + kMaxDepth);
  ZO_FUZZ_CHECK(2 * archive.units <= bytes.size());
  return 0;
}
