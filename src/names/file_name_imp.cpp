// ZoFileNameImp: parsing, and the questions that are answered from the parts.
#include "names/file_name_imp.h"

#include <zo/text/containers/sequence.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "names/file_kinds.h"
#include "names/name_check.h"
#include "names/name_compare.h"
#include "names/name_levels.h"
#include "platform/ansi.h"
#include "text/code_units.h"

using zo::NameKind;
using zo::NameParts;

ZoFileNameImp* ZoFileNameImp::emptyName() noexcept {
  static ZoFileNameImp name(kNotCounted);
  return &name;
}

void ZoFileNameImp::unshareTexts() {
  State& s = state_;
  for (ZoString* text : {&s.whole, &s.written, &s.localAlias, &s.macroValue, &s.level}) {
    *text = text->copy();
  }
  s.parts = s.parts.withAll(s.parts.all());
}

// ---- Parsing ----

bool ZoFileNameImp::isOwnText(std::wstring_view text) const noexcept {
  const auto isWithin = [begin = text.data()](std::wstring_view own) {
    return !std::less<>()(begin, own.data()) && std::less<>()(begin, own.data() + own.size());
  };
  return isWithin(state_.whole.view()) || isWithin(state_.parts.all());
}

// Whole name and parts are written into the memory of the name before, where nobody shares it: who
// goes through many names in one object asks for none.
void ZoFileNameImp::assign(NameParts name, const ZoString& macroValue) {
  // Nothing is kept of what is longer than texts may be.
  if (name.path.size() + name.macro.size() > ZoString::maxLength() / 4) name = {};
  const std::wstring_view volume =
      name.kind == NameKind::Url || name.kind == NameKind::Disc ? name.root() : name.drive;
  const Texts::Views texts = {name.drive,     name.directory, name.fileName,
                              name.extension, name.macro,     volume};
  const bool isTaken = state_.parts.canTake(texts);
  Texts parts = isTaken ? Texts() : Texts(texts);
  ZoString written, value;
  if (name.path.empty()) {
    state_.whole = ZoString();
  } else if (name.macro.empty()) {
    state_.whole.replace(0, ZoString::npos, name.path);
  } else {
    ZoString whole(std::wstring_view(zo::wholeText(name.macro, name.path)));
    if (!macroValue.isEmpty()) {
      value = macroValue;
      written = std::move(whole);
      whole = ZoString(zo::withoutFinalDelimiters(value.view()));
      whole.append(name.path);
    }
    state_.whole = std::move(whole);
  }
  if (isTaken)
    state_.parts.take(texts);
  else
    state_.parts = std::move(parts);
  state_.written = std::move(written);
  state_.macroValue = std::move(value);
  state_.localAlias = ZoString();
  state_.level = ZoString();
  state_.nextLevel = 0;
  state_.delimiter = zo::delimiterOf(name.kind);
  state_.isURL = name.kind == NameKind::Url;
  state_.isUNC = name.kind == NameKind::Network;
  state_.isCD = name.kind == NameKind::Disc;
  state_.hasDriveLetter = name.kind == NameKind::Drive;
  state_.volumePrefixLength = static_cast<unsigned int>(name.prefixLength);
}

int ZoFileNameImp::parse(std::wstring_view text, const zo::NameOptions& options, bool asDirectory) {
  if (isOwnText(text)) return parse(std::wstring(text), options, asDirectory);
  std::wstring scratch;
  const NameParts name = zo::parseName(text, options, asDirectory, scratch);
  assign(name, ZoString());
  state_.options = options;
  return name.result;
}

int ZoFileNameImp::retake(std::wstring_view text) {
  std::wstring scratch;
  const NameParts name = zo::parseName(text, state_.options, false, scratch);
  if (name.isSplit) {
    const wchar_t delimiter = state_.delimiter;
    assign(name, state_.macroValue);
    if (name.kind == NameKind::Plain) state_.delimiter = delimiter;
  }
  return name.result;
}

void ZoFileNameImp::moveBelow(const ZoFileNameImp& base) noexcept {
  state_.options.anyDrive |= base.state_.options.anyDrive;
  state_.macroValue = base.state_.macroValue;
}

int ZoFileNameImp::empty() noexcept {
  const zo::NameOptions options = state_.options;
  state_ = State();
  state_.options = options;
  return ZoResult::ok;
}

// ---- Parts ----

// Without the macro.
std::wstring_view ZoFileNameImp::path() const noexcept {
  const std::wstring_view text = (state_.written.isEmpty() ? state_.whole : state_.written).view();
  const size_t before = macro().empty() ? 0 : macro().size() + 2;
  return before <= text.size() ? text.substr(before) : std::wstring_view();
}

NameParts ZoFileNameImp::parts() const noexcept {
  NameParts name;
  const size_t driveSize = drive().size(), folderSize = directory().size();
  const size_t nameSize = fileName().size();
  name.path = path();
  if (state_.hasDriveLetter) name.kind = NameKind::Drive;
  if (state_.isUNC) name.kind = NameKind::Network;
  if (state_.isCD) name.kind = NameKind::Disc;
  if (state_.isURL) name.kind = NameKind::Url;
  if (driveSize + folderSize + nameSize + extension().size() != name.path.size()) {
    name.kind = NameKind::Mail;  // the one form that is not split
    return name;
  }
  name.prefixLength = state_.volumePrefixLength;
  name.macro = macro();
  name.drive = name.path.substr(0, driveSize);
  name.directory = name.path.substr(driveSize, folderSize);
  name.fileName = name.path.substr(driveSize + folderSize, nameSize);
  name.extension = name.path.substr(driveSize + folderSize + nameSize);
  return name;
}

const wchar_t* ZoFileNameImp::fileNameExt() const noexcept {
  // Both stand at the end of the whole name, which ends with a zero.
  return fullName().end() - fileName().size() - extension().size();
}

// ---- Questions ----

bool ZoFileNameImp::isRelativ() const noexcept {
  return drive().empty() && macro().empty() && !isURL() && !isUNC() && !isCD();
}

bool ZoFileNameImp::isValid(const wchar_t* text) const {
  const bool wildcards = state_.options.wildcards;
  if (!text) return zo::checkCharacters(parts(), wildcards) == ZoResult::ok;
  std::wstring scratch;
  const NameParts name = zo::parseName(text, state_.options, false, scratch);
  return name.isSplit && zo::checkCharacters(name, wildcards) == ZoResult::ok;
}

bool ZoFileNameImp::isAnsi() const noexcept {
  std::wstring_view text = fullName().view();
  while (!text.empty()) {
    const std::wstring_view character = zo::firstCharacter(text);
    if (character[0] >= 0x80 && !zo::fitsCodePage(character)) return false;
    text.remove_prefix(character.size());
  }
  return true;
}

bool ZoFileNameImp::hasDeviceName() const noexcept {
  const NameParts name = parts();
  if (name.kind == NameKind::Url || name.kind == NameKind::Mail) return false;
  const std::wstring_view path = name.path.substr(name.root().size());
  size_t at = 0;
  for (auto part = zo::nextLevel(path, at); !part.empty(); part = zo::nextLevel(path, at)) {
    if (zo::isDeviceName(part)) return true;
  }
  return false;
}

int ZoFileNameImp::splitVolume(bool isOfForm, ZoString& volume, ZoString& rest) const {
  if (!isOfForm) return ZoResult::refused;
  const std::wstring_view text = path();
  ZoString first(text.substr(0, state_.volumePrefixLength));
  rest = ZoString(text.substr(state_.volumePrefixLength));
  volume = std::move(first);
  return ZoResult::ok;
}

int ZoFileNameImp::parseUNC(ZoString& volume, ZoString& rest) const {
  return splitVolume(isUNC(), volume, rest);
}

int ZoFileNameImp::parseCD(ZoString& volume, ZoString& rest) const {
  return splitVolume(isCD(), volume, rest);
}

int ZoFileNameImp::getDirParts(ZoSequence<ZoString>& levels) const {
  int result = levels.removeAll();
  const std::wstring_view stretch = zo::levelStretch(parts());
  size_t at = 0;
  for (auto part = zo::nextLevel(stretch, at); result == ZoResult::ok && !part.empty();
       part = zo::nextLevel(stretch, at)) {
    result = levels.append(ZoString(part));
  }
  return result;
}

// ---- Kinds of files ----

namespace {

// One or two extensions for each kind, up to the last that extensions tell.
constexpr const wchar_t* kKinds[][2] = {
    {L".gdb"}, {L".sld", L".sle"}, {L".slg"},          {L".sld"}, {L".slb"}, {L".sle"},
    {L".dxf"}, {L".dwg"},          {L".gpl"},          {L".gpl"}, {L".gpl"}, {L".val"},
    {L".xls"}, {L".mdb"},          {L".val", L".mdb"}, {L".mld"}, {L".jpg"}, {L".bmp"},
    {L".tga"}, {L".g3p"},          {L".sat"},          {L".vgr"}, {L".wsk"}, {L".dmc"},
};
static_assert(std::size(kKinds) == ZoFileName::kAnyFile);

}  // namespace

std::span<const wchar_t* const> zo::kindExtensions(ZoFileName::FileKind kind) noexcept {
  if (kind >= ZoFileName::kAnyFile) return {};
  return std::span(kKinds[kind]).first(kKinds[kind][1] ? 2 : 1);
}

bool ZoFileNameImp::isGplOfFolder(bool sameName) const noexcept {
  size_t at = 0;
  const std::wstring_view level = zo::nextLevel(zo::levelStretch(parts()), at);
  return !level.empty() && zo::equalNames(level, fileName()) == sameName;
}

bool ZoFileNameImp::isKindOf(ZoFileName::FileKind kind) const noexcept {
  if (kind >= ZoFileName::kAnyFile) return kind == ZoFileName::kAnyFile;
  const auto isExtension = [this](const wchar_t* of) { return zo::equalNames(extension(), of); };
  if (std::ranges::none_of(zo::kindExtensions(kind), isExtension)) return false;
  if (kind == ZoFileName::kGplOfFolder) return isGplOfFolder(true);
  return kind != ZoFileName::kGplNotOfFolder || isGplOfFolder(false);
}

ZoFileName::FileKind ZoFileNameImp::isKindOf() const noexcept {
  unsigned int kind = 0;
  while (!isKindOf(static_cast<ZoFileName::FileKind>(kind))) ++kind;
  return static_cast<ZoFileName::FileKind>(kind);
}
