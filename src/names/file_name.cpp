// ZoFileName: sharing, and forwarding to the implementation.
#include <zo/names/file_name.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <utility>

#include "names/file_name_imp.h"
#include "names/name_check.h"
#include "names/name_compare.h"
#include "names/name_levels.h"

namespace {

// ---- What a connection needs of a URL: the rules stand in zo/names/file_name.h ----

constexpr size_t npos = std::wstring_view::npos;

struct UrlParts {
  static constexpr int kOther = -1;
  int protocol = kOther;  // 0 ftp, 1 http, 2 gopher
  std::wstring_view host, path, user, password;
};

int protocolOf(std::wstring_view name) noexcept {
  if (zo::beginsWith(name, L"ftp")) return 0;
  if (zo::beginsWith(name, L"http")) return 1;
  return zo::beginsWith(name, L"gopher") ? 2 : UrlParts::kOther;
}

// name is the whole name of a URL: two delimiters follow its first colon. Any other text is safe,
// and gives some stretches of it.
UrlParts splitUrl(std::wstring_view name) noexcept {
  UrlParts url;
  url.protocol = protocolOf(name);
  const size_t colon = name.find(L':');
  if (colon == npos) return url;
  const std::wstring_view rest = name.substr(std::min(colon + 3, name.size()));
  const size_t slash = std::min(rest.find(L'/'), rest.size());
  url.path = rest.substr(slash);
  url.host = rest.substr(0, slash);

  const size_t second = url.host.find(L':');
  if (second == npos) return url;
  url.user = url.host.substr(0, second);
  const size_t at = url.host.find(L'@', second);
  // A port without a user: the host is taken for the user and keeps its port. Not to be mended.
  if (at == npos) return url;
  url.password = url.host.substr(second + 1, at - second - 1);
  url.host = url.host.substr(at + 1);
  url.host = url.host.substr(0, url.host.find(L':', 1));
  return url;
}

}  // namespace

// ---- Sharing ----

// Needs no memory: names are emptied where something is closed.
ZoFileName::ZoFileName() : imp_(ZoFileNameImp::emptyName()) {}
ZoFileName::ZoFileName(const wchar_t* text) : ZoFileName(zo::textOf(text)) {}
ZoFileName::ZoFileName(const ZoString& text) : ZoFileName(text.view()) {}
ZoFileName::ZoFileName(std::wstring_view text) : imp_(new ZoFileNameImp(text)) {}

ZoFileName::ZoFileName(const ZoFileName& other) noexcept : imp_(other.imp_) { imp_->addHolder(); }

ZoFileName::ZoFileName(ZoFileName&& other) noexcept
    : imp_(std::exchange(other.imp_, ZoFileNameImp::emptyName())) {}

ZoFileName::~ZoFileName() { imp_->removeHolder(); }

ZoFileName& ZoFileName::operator=(const ZoFileName& other) noexcept {
  other.imp_->addHolder();
  imp_->removeHolder();
  imp_ = other.imp_;
  return *this;
}

ZoFileName& ZoFileName::operator=(ZoFileName&& other) noexcept {
  ZoFileName(std::move(other)).swap(*this);
  return *this;
}

ZoFileName& ZoFileName::operator=(const wchar_t* text) { return *this = zo::textOf(text); }
ZoFileName& ZoFileName::operator=(const ZoString& text) { return *this = text.view(); }

ZoFileName& ZoFileName::operator=(std::wstring_view text) {
  if (imp_->isShared())
    ZoFileName(text).swap(*this);
  else
    static_cast<void>(imp_->parse(text, {}, false));  // as the constructor does
  return *this;
}

ZoFileNameImp& ZoFileName::own() {
  // What a parse of the whole name would give is copied instead, together with what it would not.
  if (imp_->isShared()) ZoFileName(new ZoFileNameImp(*imp_)).swap(*this);
  return *imp_;
}

ZoFileName ZoFileName::deepCopy() const {
  ZoFileName copy(new ZoFileNameImp(*imp_));
  copy.imp_->unshareTexts();
  return copy;
}

// ---- The whole name ----

int ZoFileName::setFullName(const wchar_t* text, bool ownDelimiters, bool asDirectory,
                            bool wildcards, bool anyDrive) {
  const zo::NameOptions options = {
      .ownDelimiters = ownDelimiters, .wildcards = wildcards, .anyDrive = anyDrive};
  return own().parse(zo::textOf(text), options, asDirectory);
}

int ZoFileName::empty() { return own().empty(); }
bool ZoFileName::isEmpty() const noexcept { return imp_->fullName().isEmpty(); }
const wchar_t* ZoFileName::fullName() const noexcept { return imp_->fullName().data(); }
unsigned int ZoFileName::fullNameSize() const noexcept { return imp_->fullName().length(); }
ZoFileName::operator ZoString() const { return imp_->fullName(); }
ZoFileName::operator const wchar_t*() const noexcept { return fullName(); }
wchar_t ZoFileName::operator[](unsigned int i) const noexcept { return imp_->fullName()[i]; }
int ZoFileName::toLower() { return own().toLower(); }
int ZoFileName::toUpper() { return own().toUpper(); }

std::wostream& operator<<(std::wostream& out, const ZoFileName& name) { return out << name.view(); }

// ---- Parts ----

const wchar_t* ZoFileName::drive() const noexcept { return imp_->drive().data(); }
const wchar_t* ZoFileName::directory() const noexcept { return imp_->directory().data(); }
const wchar_t* ZoFileName::fileName() const noexcept { return imp_->fileName().data(); }
const wchar_t* ZoFileName::extension() const noexcept { return imp_->extension().data(); }
const wchar_t* ZoFileName::fileNameExt() const noexcept { return imp_->fileNameExt(); }
const wchar_t* ZoFileName::macro() const noexcept { return imp_->macro().data(); }
const wchar_t* ZoFileName::volume() const noexcept { return imp_->volume().data(); }
unsigned int ZoFileName::volumePrefixLength() const noexcept { return imp_->volumePrefixLength(); }

int ZoFileName::setDrive(const wchar_t* text) { return own().setDrive(text); }
int ZoFileName::setDirectory(const wchar_t* text) { return own().setDirectory(text); }
int ZoFileName::setFileName(const wchar_t* text) { return own().setFileName(text); }
int ZoFileName::setExtension(const wchar_t* text) { return own().setExtension(text); }
int ZoFileName::setFileNameExt(const wchar_t* text) { return own().setFileNameExt(text); }
int ZoFileName::makePath(const wchar_t* drive, const wchar_t* directory, const wchar_t* fileName,
                         const wchar_t* extension) {
  return own().makePath(drive, directory, fileName, extension);
}

wchar_t ZoFileName::delimiter() const noexcept { return imp_->delimiter(); }
int ZoFileName::setDelimiter(wchar_t delimiter) { return own().setDelimiter(delimiter); }
wchar_t ZoFileName::sysDelimiter() const noexcept { return L'\\'; }

int ZoFileName::appendDirectory(const wchar_t* text) { return own().appendDirectory(text); }
int ZoFileName::removeLastDir() { return own().removeLastDir(); }
int ZoFileName::getDirParts(ZoSequence<ZoString>& levels) const {
  return imp_->getDirParts(levels);
}
const wchar_t* ZoFileName::nextDirPart(bool restart) { return own().nextDirPart(restart); }

// ---- Macro and alias ----

int ZoFileName::setMacro(const wchar_t* macro, const wchar_t* value) {
  return own().setMacro(macro, value);
}
int ZoFileName::resetMacro(const wchar_t* text) { return own().resetMacro(text); }
bool ZoFileName::hasMacro() const noexcept { return !imp_->macro().empty(); }

int ZoFileName::setLocalAlias(const ZoFileName& alias) {
  const ZoString text = alias.imp_->fullName();  // alias may be this name
  return own().setLocalAlias(text);
}

int ZoFileName::getLocalAlias(ZoFileName*& alias) const {
  alias = nullptr;
  if (imp_->localAlias().isEmpty()) return ZoResult::refused;
  alias = new ZoFileName(imp_->localAlias());
  return ZoResult::ok;
}

ZoFileName ZoFileName::localAlias() const { return ZoFileName(imp_->localAlias()); }

// ---- Questions ----

bool ZoFileName::isDirectory() const noexcept {
  return imp_->fileName().empty() && imp_->extension().empty();
}
bool ZoFileName::hasDirectory() const noexcept { return !imp_->directory().empty(); }
bool ZoFileName::isRelativ() const noexcept { return imp_->isRelativ(); }
bool ZoFileName::isURL() const noexcept { return imp_->isURL(); }
bool ZoFileName::isUNC() const noexcept { return imp_->isUNC(); }
bool ZoFileName::isCD() const noexcept { return imp_->isCD(); }
bool ZoFileName::isValid(const wchar_t* text) const { return imp_->isValid(text); }
bool ZoFileName::hasWildcards() const noexcept { return zo::holdsWildcards(fileNameExt()); }
bool ZoFileName::possibleOnVolume() const noexcept { return zo::isPossible(imp_->parts()); }
bool ZoFileName::isAnsi() const noexcept { return imp_->isAnsi(); }
bool ZoFileName::hasDeviceName() const noexcept { return imp_->hasDeviceName(); }
bool ZoFileName::isContained() const noexcept { return zo::isContained(imp_->parts()); }
bool ZoFileName::isKindOf(FileKind kind) const noexcept { return imp_->isKindOf(kind); }
ZoFileName::FileKind ZoFileName::isKindOf() const noexcept { return imp_->isKindOf(); }

// ---- Splitting ----

int ZoFileName::parseURL(int& protocol, ZoString& host, ZoString& path, ZoString& user,
                         ZoString& password) const {
  if (!isURL()) return ZoResult::refused;
  const ZoString whole = imp_->fullName();  // stays, should a result be this name's own text
  const UrlParts url = splitUrl(whole.view());
  if (url.protocol != UrlParts::kOther) protocol = url.protocol;
  host = url.host;
  path = url.path;
  user = url.user;
  password = url.password;
  return ZoResult::ok;
}

int ZoFileName::parseURL(int& protocol, ZoString& host, ZoString& path, ZoString& user) const {
  ZoString password;
  return parseURL(protocol, host, path, user, password);
}

int ZoFileName::parseURL(int& protocol, ZoString& host, ZoString& path) const {
  ZoString user;
  return parseURL(protocol, host, path, user);
}

int ZoFileName::parseURL(int& protocol, ZoString& host) const {
  ZoString path;
  return parseURL(protocol, host, path);
}

int ZoFileName::parseUNC(ZoString& volume, ZoString& rest) const {
  return imp_->parseUNC(volume, rest);
}
int ZoFileName::parseCD(ZoString& volume, ZoString& rest) const {
  return imp_->parseCD(volume, rest);
}

// ---- Computed names ----

ZoFileName ZoFileName::normalized() const {
  ZoFileName result(new ZoFileNameImp(*imp_));
  result.imp_->retake(zo::normalise(imp_->parts()).text());
  return result;
}

ZoFileName ZoFileName::relativeTo(const ZoFileName& base) const {
  const zo::NormalName name = zo::normalise(imp_->parts());
  if (const auto text = zo::relativeText(name, zo::normalise(base.imp_->parts()))) {
    ZoFileName result(new ZoFileNameImp(*imp_));
    // A level of a URL may read like a drive or a scheme where it comes to stand first.
    (void)result.imp_->empty();  // clears; the options stay
    result.imp_->retake(*text);
    if (result.isRelativ() && !result.isEmpty()) {
      result.imp_->setDelimiter(name.delimiter);
      return result;
    }
  }
  return normalized();
}

ZoFileName ZoFileName::resolvedAgainst(const ZoFileName& base) const {
  ZoFileName result(new ZoFileNameImp(*imp_));
  if (!hasMacro()) result.imp_->moveBelow(*base.imp_);
  result.imp_->retake(zo::resolvedText(imp_->parts(), base.imp_->parts()));
  return result;
}

// ---- Comparing ----

bool ZoFileName::isEqual(const ZoFileName& other, bool caseSensitive) const noexcept {
  return caseSensitive ? imp_->fullName() == other.imp_->fullName() : *this == other;
}

bool ZoFileName::operator==(const ZoFileName& other) const noexcept {
  return imp_ == other.imp_ ||
         zo::equalNames(imp_->fullName().view(), other.imp_->fullName().view());
}

bool ZoFileName::operator==(std::wstring_view text) const noexcept {
  return zo::equalNames(imp_->fullName().view(), text);
}

std::weak_ordering ZoFileName::operator<=>(const ZoFileName& other) const noexcept {
  if (imp_ == other.imp_) return std::weak_ordering::equivalent;
  return zo::orderNames(imp_->fullName().view(), other.imp_->fullName().view()) <=> 0;
}

bool ZoFileName::operator<(const ZoFileName& other) const noexcept { return (*this <=> other) < 0; }
bool ZoFileName::operator>(const ZoFileName& other) const noexcept { return (*this <=> other) > 0; }
std::size_t ZoFileName::hash() const noexcept { return zo::hashName(imp_->fullName().view()); }
