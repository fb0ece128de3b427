#include <zo/persist/archive.h>
#include <zo/system/exception.h>

#include "persist/variant_layout.h"

namespace zo {

// A container as the variant that holds it, without a copy: it stays its owner's.
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

ReadState& readState() noexcept {
  static thread_local ReadState state;
  return state;
}

bool ArchiveAccess<ZoArchive>::enter(const ZoArchive&) {
  ReadState& state = readState();
  if (state.depth == ZoVariant::kMaxDepth) {
    state.cameShort = true;
    return false;
  }
  ++state.depth;
  return true;
}

void beginElement() noexcept { readState().cameShort = false; }
bool isElementShort() noexcept { return readState().cameShort; }

namespace {

// While an archive's own functions write a container: elements pass the same function as the whole,
// whose depth is looked at before its first byte.
class ContainerWriting {
 public:
  ContainerWriting(const ZoArchive& archive, const ZoVariant& value) : before_(current()) {
    if (before_ != &archive && value.isTooDeep())
      zoThrow(ZoComException(L"archive.cpp", L"write", kTooDeep, 0, true));
    current() = &archive;
  }
  ContainerWriting(const ContainerWriting&) = delete;
  ContainerWriting& operator=(const ContainerWriting&) = delete;
  ~ContainerWriting() { current() = before_; }

 private:
  // The archive that this thread writes a container to.
  static const ZoArchive*& current() noexcept {
    static thread_local const ZoArchive* archive = nullptr;
    return archive;
  }

  const ZoArchive* before_;
};

template <class Number>
void readNumber(ZoArchive& archive, Number& value) {
  ArchiveAccess<ZoArchive>::fill(archive, &value, sizeof value, nullptr);
}

}  // namespace
}  // namespace zo

void ZoArchive::cameShort() noexcept { zo::readState().cameShort = true; }

void ZoArchive::flush() {}
void ZoArchive::pushScope(const wchar_t*) {}
void ZoArchive::popScope() {}
bool ZoArchive::needToConvertToUnicode() const { return false; }
bool ZoArchive::isdrftfilefiler() const { return false; }

// ---- Reading ----

void ZoArchive::read(_GUID& value) { zo::readNumber(*this, value); }
void ZoArchive::read(ZoHnd& value) { zo::readHandle(*this, value); }
void ZoArchive::read(ZoTol& value) { zo::readTol(*this, value); }
void ZoArchive::read(ZoCoSystem& value) { zo::readCoSystem(*this, value); }
void ZoArchive::read(ZoMatrix& value) { zo::readMatrix(*this, value); }
void ZoArchive::read(ZoPlane& value) { zo::readPlane(*this, value); }
void ZoArchive::read(ZoVector& value) { zo::readVector(*this, value); }
void ZoArchive::read(ZoPoint& value) { zo::readPoint(*this, value); }
void ZoArchive::read(ZoFileName& value) { zo::readFileName(*this, value); }
void ZoArchive::read(ZoVariant& value) {
  ZoVariant read;
  zo::readVariant(*this, read, isdrftfilefiler());
  value = std::move(read);
}
void ZoArchive::read(ZoString& value) { zo::readString(*this, value); }
void ZoArchive::read(ZoColor& value) { read(value.value()); }
void ZoArchive::read(wchar_t*& value) { zo::readNewText(*this, value); }
void ZoArchive::read(double& value) { zo::readNumber(*this, value); }
void ZoArchive::read(std::int64_t& value) { zo::readNumber(*this, value); }
void ZoArchive::read(std::uint64_t& value) { zo::readNumber(*this, value); }
void ZoArchive::read(unsigned int& value) { zo::readNumber(*this, value); }
void ZoArchive::read(int& value) { zo::readNumber(*this, value); }
void ZoArchive::read(unsigned short& value) { zo::readNumber(*this, value); }
void ZoArchive::read(short& value) { zo::readNumber(*this, value); }
void ZoArchive::read(unsigned char& value) { zo::readNumber(*this, value); }
void ZoArchive::read(signed char& value) { zo::readNumber(*this, value); }
void ZoArchive::read(bool& value) {
  unsigned char byte = 0;
  zo::readNumber(*this, byte);
  value = byte != 0;
}

// ---- Writing ----

void ZoArchive::write(const _GUID& value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(const ZoHnd& value, const wchar_t*) { zo::writeHandle(*this, value); }
void ZoArchive::write(const ZoTol& value, const wchar_t*) { zo::writeTol(*this, value); }
void ZoArchive::write(const ZoCoSystem& value, const wchar_t*) { zo::writeCoSystem(*this, value); }
void ZoArchive::write(const ZoMatrix& value, const wchar_t*) { zo::writeMatrix(*this, value); }
void ZoArchive::write(const ZoPlane& value, const wchar_t*) { zo::writePlane(*this, value); }
void ZoArchive::write(const ZoVector& value, const wchar_t* name) {
  zo::writeVector(*this, value, name);
}
void ZoArchive::write(const ZoPoint& value, const wchar_t*) { zo::writePoint(*this, value); }
void ZoArchive::write(const ZoFileName& value, const wchar_t*) { zo::writeFileName(*this, value); }
void ZoArchive::write(const ZoVariant& value, const wchar_t*) {
  if (!zo::isContainer(value)) return zo::writeVariant(*this, value, isdrftfilefiler());
  const zo::ContainerWriting writing(*this, value);
  zo::writeVariant(*this, value, isdrftfilefiler());
}
void ZoArchive::write(const ZoString& value, const wchar_t*) { zo::writeString(*this, value); }
void ZoArchive::write(ZoColor& value, const wchar_t*) { write(value.value(), L""); }
void ZoArchive::write(const wchar_t* text, const wchar_t*) { zo::writeText(*this, text); }
void ZoArchive::write(double value, const wchar_t* name) { writeBin(&value, sizeof value, name); }
void ZoArchive::write(std::int64_t value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(std::uint64_t value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(unsigned int value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(int value, const wchar_t* name) { writeBin(&value, sizeof value, name); }
void ZoArchive::write(unsigned short value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(short value, const wchar_t* name) { writeBin(&value, sizeof value, name); }
void ZoArchive::write(unsigned char value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(signed char value, const wchar_t* name) {
  writeBin(&value, sizeof value, name);
}
void ZoArchive::write(bool value, const wchar_t* name) {
  const unsigned char byte = value ? 1 : 0;
  writeBin(&byte, sizeof byte, name);
}
void ZoArchive::writeView(std::wstring_view text, const wchar_t* name) {
  write(ZoString(text), name);
}

ZoArchive& operator>>(ZoArchive& archive, std::wstring& text) {
  ZoString read;
  archive.read(read);
  text = read.view();
  return archive;
}

// ---- Containers ----

ZoArchive& operator<<(ZoArchive& archive, const ZoDict<ZoVariant, ZoString>& dict) {
  return archive << zo::LentVariant(dict).get();
}

ZoArchive& operator<<(ZoArchive& archive, const ZoSequence<ZoVariant>& sequence) {
  return archive << zo::LentVariant(sequence).get();
}

ZoArchive& operator>>(ZoArchive& archive, ZoDict<ZoVariant, ZoString>& dict) {
  ZoVariant read;
  archive.read(read);
  dict.removeAll(true);
  if (!read.asDict()) return archive;
  for (auto [key, value] : *read.asDict())
    zo::throwIfNoMemory(dict.insertAt(ZoString(key), std::move(value)));
  return archive;
}

ZoArchive& operator>>(ZoArchive& archive, ZoSequence<ZoVariant>& sequence) {
  ZoVariant read;
  archive.read(read);
  sequence.removeAll(true);
  if (!read.asSequence()) return archive;
  for (ZoVariant& element : *read.asSequence())
    zo::throwIfNoMemory(sequence.append(std::move(element)));
  return archive;
}
