// ZoFileNameImp: parsing, and the questions that are answered from the parts.
#include "names/file_name_imp.h"

#include <zo/text/containers/sequence.h>

#include <algorithm>
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
  for (ZoString* text :
       {&s.fullName, &s.expandedName, &s.drive, &s.directory, &s.fileName, &s.extension, &s.macro,
        &s.volume, &s.localAlias, &s.macroValue, &s.level}) {
    *text = text->copy();
  }
  if (s.macro.isEmpty()) s.expandedName = s.fullName;
}

// ---- Parsing ----

// Folder and extension are taken from the name before, when they are the same: who goes through
// many names in one object asks for half the memory.
ZoFileNameImp::State ZoFileNameImp::stateOf(const NameParts& name, const zo::NameOptions& options,
                                            const ZoString& macroValue, const State& before) {
  const auto part = [](std::wstring_view text, const ZoString& old) {
    return old.view() == text ? old : ZoString(text);
  };
  State state;
  state.options = options;
  state.macro = ZoString(name.macro);
  if (!name.isSplit) return state;

  state.fullName = name.macro.empty()
                       ? ZoString(name.path)
                       : ZoString(std::wstring_view(zo::wholeText(name.macro, name.path)));
  state.expandedName = state.fullName;
  if (!name.macro.empty() && !macroValue.isEmpty()) {
    state.macroValue = macroValue;
    state.expandedName = ZoString(zo::withoutFinalDelimiters(macroValue.view()));
    state.expandedName.append(name.path);
  }
  state.drive = ZoString(name.drive);
  state.directory = part(name.directory, before.directory);
  state.fileName = ZoString(name.fileName);
  state.extension = part(name.extension, before.extension);
  if (name.kind == NameKind::Drive) state.volume = state.drive;
  if (name.kind == NameKind::Url || name.kind == NameKind::Disc) {
    state.volume = ZoString(name.root());
  }
  state.delimiter = zo::delimiterOf(name.kind);
  state.isURL = name.kind == NameKind::Url;
  state.isUNC = name.kind == NameKind::Network;
  state.isCD = name.kind == NameKind::Disc;
  state.hasDriveLetter = name.kind == NameKind::Drive;
  state.volumePrefixLength = static_cast<unsigned int>(name.prefixLength);
  return state;
}

ZoFileNameImp::State ZoFileNameImp::parsed(std::wstring_view text) {
  std::wstring scratch;
  return stateOf(zo::parseName(text, {}, false, scratch), {}, ZoString(), {});
}

int ZoFileNameImp::parse(std::wstring_view text, const zo::NameOptions& options, bool asDirectory) {
  std::wstring scratch;
  const NameParts name = zo::parseName(text, options, asDirectory, scratch);
  state_ = stateOf(name, options, ZoString(), state_);
  return name.result;
}

int ZoFileNameImp::retake(std::wstring_view text) {
  std::wstring scratch;
  const NameParts name = zo::parseName(text, state_.options, false, scratch);
  if (name.isSplit) {
    State state = stateOf(name, state_.options, state_.macroValue, state_);
    if (name.kind == NameKind::Plain) state.delimiter = state_.delimiter;
    state_ = std::move(state);
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
  const std::wstring_view whole = state_.fullName.view();
  const size_t macro = state_.macro.isEmpty() ? 0 : size_t{state_.macro.length()} + 2;
  return macro <= whole.size() ? whole.substr(macro) : std::wstring_view();
}

NameParts ZoFileNameImp::parts() const noexcept {
  NameParts name;
  const size_t drive = state_.drive.length();
  const size_t directory = state_.directory.length();
  name.path = path();
  if (state_.hasDriveLetter) name.kind = NameKind::Drive;
  if (state_.isUNC) name.kind = NameKind::Network;
  if (state_.isCD) name.kind = NameKind::Disc;
  if (state_.isURL) name.kind = NameKind::Url;
  const size_t named = drive + directory + state_.fileName.length() + state_.extension.length();
  if (named != name.path.size()) {
    name.kind = NameKind::Mail;  // the one form that is not split
    return name;
  }
  name.prefixLength = state_.volumePrefixLength;
  name.macro = state_.macro.view();
  name.drive = name.path.substr(0, drive);
  name.directory = name.path.substr(drive, directory);
  name.fileName = name.path.substr(drive + directory, state_.fileName.length());
  name.extension = name.path.substr(drive + directory + state_.fileName.length());
  return name;
}

const wchar_t* ZoFileNameImp::fileNameExt() const noexcept {
  // Both stand at the end of the whole name, which ends with a zero.
  return fullName().end() - state_.fileName.length() - state_.extension.length();
}

// ---- Questions ----

bool ZoFileNameImp::isRelativ() const noexcept {
  return state_.drive.isEmpty() && state_.macro.isEmpty() && !isURL() && !isUNC() && !isCD();
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
  return !level.empty() && zo::equalNames(level, state_.fileName.view()) == sameName;
}

bool ZoFileNameImp::isKindOf(ZoFileName::FileKind kind) const noexcept {
  if (kind >= ZoFileName::kAnyFile) return kind == ZoFileName::kAnyFile;
  const std::wstring_view extension = state_.extension.view();
  const auto isExtension = [extension](const wchar_t* of) { return zo::equalNames(extension, of); };
  if (std::ranges::none_of(zo::kindExtensions(kind), isExtension)) return false;
  if (kind == ZoFileName::kGplOfFolder) return isGplOfFolder(true);
  return kind != ZoFileName::kGplNotOfFolder || isGplOfFolder(false);
}

ZoFileName::FileKind ZoFileNameImp::isKindOf() const noexcept {
  unsigned int kind = 0;
  while (!isKindOf(static_cast<ZoFileName::FileKind>(kind))) ++kind;
  return static_cast<ZoFileName::FileKind>(kind);
}
