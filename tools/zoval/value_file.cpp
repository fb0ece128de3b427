#include "value_file.h"

#include <zo/files/file.h>
#include <zo/files/file_save.h>
#include <zo/files/text_file.h>
#include <zo/names/file_name.h>
#include <zo/persist/memory_archive.h>
#include <zo/results.h>
#include <zo/system/exception.h>
#include <zo/xml/json.h>
#include <zo/xml/xml_class.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "member_argument.h"
#include "paths.h"
#include "text.h"

namespace zoval {
namespace {

using zolib::because;
using zolib::say;
using zolib::Text;
using zolib::toUtf8;

constexpr Text kNotOpened{157, "cannot open %1%2"};

template <class... Fillings>
Failure failure(zolib::ExitCode code, const Text& text, const Fillings&... fillings) {
  return {code, say(text, fillings...)};
}

constexpr struct {
  Form form;
  const wchar_t* name;
  const wchar_t* extension;
} kForms[] = {{Form::kText, L"text", L".zov"},
              {Form::kArchive, L"archive", L".zoa"},
              {Form::kXml, L"xml", L".xml"},
              {Form::kJson, L"json", L".json"}};

// An archive of a variant begins with its type code, a small number in four bytes; a text, in any
// encoding, has no two zeros there.
bool isArchive(std::string_view head) { return head.size() >= 8 && head[2] == 0 && head[3] == 0; }

// Of the texts the first sign tells.
Form formOfText(std::wstring_view text) {
  const std::size_t first = text.find_first_not_of(L" \t\r\n");
  const wchar_t sign = first == text.npos ? L'\0' : text[first];
  return sign == L'<' ? Form::kXml : sign == L'{' || sign == L'[' ? Form::kJson : Form::kText;
}

struct Place {
  unsigned int line = 1, column = 1;
};
Place placeOf(std::wstring_view text, unsigned int end) {
  Place place;
  for (const wchar_t c : text.substr(0, end)) {
    ++place.column;
    if (c == L'\n') place = {place.line + 1, 1};
  }
  return place;
}

// Empty when it is read, else what is wrong, with its place.
std::string parse(std::wstring_view text, Form form, ZoVariant& value) {
  if (form == Form::kText) {
    unsigned int end = 0;
    if (value.parse(text, &end) == 0) return {};
    const Place place = placeOf(text, end);
    return say({150, "line %1, column %2: no value in text form"}, place.line, place.column);
  }
  if (form == Form::kJson) {
    ZoJsonError error;
    return ZoJson::parse(text, value, &error) == 0 ? std::string() : toUtf8(error.message().view());
  }
  ZoXMLClass document;
  if (document.parse(text) == 0 && document.toVariant(value) == 0) return {};
  const std::string said = toUtf8(document.error().message().view());
  return said.empty() ? say({151, "no value in XML"}) : said;
}

bool readText(ZoFile& open, const Options& options, ValueFile& file, Report& report) {
  ZoString text;
  if (zoReadText(open, text) != ZoResult::ok) {
    report.fail(zolib::kFailed, {152, "cannot read %1%2"}, file.shown, because());
    return false;
  }
  file.form = formNamed(options.from).value_or(formOfText(text));
  const std::string fault = parse(text, file.form, file.value);
  if (fault.empty()) return true;
  report.fail(zolib::kDamaged, file.shown + ": " + fault);
  return false;
}

bool readBytes(ZoFile& open, std::string& bytes) {
  bytes.resize(static_cast<std::size_t>(open.size()));
  for (std::size_t done = 0; done < bytes.size();) {
    const auto count =
        static_cast<unsigned int>(std::min<std::size_t>(bytes.size() - done, 1 << 30));
    const unsigned int got = open.read(bytes.data() + done, count);
    if (got == 0) return false;
    done += got;
  }
  return true;
}

bool readArchive(ZoFile& open, ValueFile& file, Report& report) {
  std::string bytes;
  if (!readBytes(open, bytes)) {
    report.fail(zolib::kFailed, {152, "cannot read %1%2"}, file.shown, because());
    return false;
  }
  ZoMemoryReadArchive archive(bytes.data(), bytes.size());
  try {
    archive >> file.value;
  } catch (const ZoComException&) {
    report.fail(zolib::kDamaged, {154, "%1: no value in an archive, or one that ends early"},
                file.shown);
    return false;
  }
  if (archive.rest() == 0) return true;
  report.fail(
      zolib::kDamaged,
      {155, "%1: %2 bytes are left behind the value; only an archive of one value can be read"},
      file.shown, archive.rest());
  return false;
}

bool readOpen(ZoFile& open, const Options& options, ValueFile& file, Report& report) {
  file.size = static_cast<std::uint64_t>(std::max<std::int64_t>(open.size(), 0));
  const zolib::Step reading =
      report.step(file.size, {181, "reading %1 (%2)"}, file.shown, zolib::readableSize(file.size));
  char head[8];
  const unsigned int got = open.read(head, sizeof head);
  if (open.seekToBegin() != 0) {
    report.fail(zolib::kFailed, {152, "cannot read %1%2"}, file.shown, because());
    return false;
  }
  const bool isBinary = options.from.empty() ? isArchive({head, got}) : options.from == L"archive";
  file.form = Form::kArchive;
  return (isBinary ? readArchive(open, file, report) : readText(open, options, file, report)) &&
         report.goesOn();
}

bool isLibrary(ZoFile& open) {
  static constexpr char kMark[16] = "ZORVEX LIBRARY";
  char head[sizeof kMark] = {};
  const unsigned int got = open.read(head, sizeof head);
  return open.seekToBegin() == 0 && got == sizeof head && std::memcmp(head, kMark, got) == 0;
}

Fault openLibrary(const ValueFile& file, int access, ZoLibrary& library) {
  zolib::forgetReason();
  const int code = library.open(ZoFileName(zolib::shellPath(file.path)), access);
  if (code == ZoResult::ok && library.isLibrary()) return std::nullopt;
  const std::string shown = toUtf8(file.path);
  if (code == ZoResult::ok)
    return failure(zolib::kNotFound, {156, "%1 is no library, and has no member %2"}, shown,
                   file.member);
  return failure(code == ZoResult::libraryWriteLocked ? zolib::kLocked : zolib::kFailed, kNotOpened,
                 shown, because());
}

void setMember(const std::wstring& member, ValueFile& file) {
  file.member = member;
  if (!member.empty()) file.shown += " " + toUtf8(member);
}

bool readMember(const Options& options, ValueFile& file, Report& report, Use use) {
  ZoLibrary reader;
  if (use == Use::kChange) file.library = std::make_unique<ZoLibrary>();
  ZoLibrary& library = file.library ? *file.library : reader;
  ZoFile open;
  const int access = file.library ? ZoFile::kReadWrite : ZoFile::kRead;
  if (const Fault fault = openLibrary(file, access, library)) return tell(fault, report), false;
  ZoLibEntry entry;
  if (library.getEntry(ZoFileName(file.member), entry) != ZoResult::ok) {
    report.fail(zolib::kNotFound, {158, "%1 has no member %2; `zolib list` shows what it has"},
                file.path, file.member);
    return false;
  }
  if (library.getFile(open, ZoFileName(file.member)) != ZoResult::ok) {
    report.fail(zolib::kDamaged, {152, "cannot read %1%2"}, file.shown, because());
    return false;
  }
  return readOpen(open, options, file, report);
}

bool isWritten(ZoFile& file, std::string_view bytes) {
  constexpr std::size_t kAtOnce = std::size_t{1} << 30;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kAtOnce, bytes.size()))) {
    const auto count = static_cast<unsigned int>(std::min(kAtOnce, bytes.size()));
    if (file.write(bytes.data(), count) != count) return false;
  }
  return true;
}

// What closes adds the member, in the place of what has its name.
Fault writeMember(ValueFile& file, std::string_view bytes) {
  if (!file.library) file.library = std::make_unique<ZoLibrary>();
  if (!file.library->isOpen())
    if (Fault fault = openLibrary(file, ZoFile::kReadWrite, *file.library)) return fault;
  ZoLibrary& library = *file.library;
  ZoFile open;
  if (library.getFile(open, ZoFileName(file.member), ZoFile::kWrite) == ZoResult::ok) {
    if (isWritten(open, bytes) && open.close() == ZoResult::ok && library.close() == ZoResult::ok)
      return std::nullopt;
    open.cancel();
  }
  return failure(zolib::kFailed, {159, "cannot write %1%2; it is as it was"}, file.shown,
                 because());
}

ZoFile opened(const std::wstring& path) {
  ZoFile file;
  static_cast<void>(file.open(ZoFileName(zolib::shellPath(path)), ZoFile::kRead,
                              ZoFile::kOpenExisting, ZoFile::kShareRead | ZoFile::kShareWrite));
  return file;
}

// Programs that know nothing of the lock write and delete, too.
Fault changeMeanwhile(const ValueFile& file) {
  if (!file.before) return std::nullopt;
  ZoFile open = opened(file.path);
  std::string bytes;
  if (!open.isOpen())
    return failure(zolib::kLocked,
                   {185, "%1 is not there any more: it was deleted or renamed meanwhile"},
                   file.shown);
  if (readBytes(open, bytes) && bytes == *file.before) return std::nullopt;
  return failure(zolib::kLocked, {164, "%1 was written by another program meanwhile; try again"},
                 file.shown);
}

bool keepBytes(ZoFile& open, ValueFile& file, Report& report) {
  if (readBytes(open, file.before.emplace()) && open.seekToBegin() == 0) return true;
  report.fail(zolib::kFailed, {152, "cannot read %1%2"}, file.shown, because());
  return false;
}

}  // namespace

std::optional<Form> formNamed(std::wstring_view name) {
  for (const auto& each : kForms)
    if (name == each.name) return each.form;
  return std::nullopt;
}

std::string nameOf(Form form) {
  for (const auto& each : kForms)
    if (form == each.form) return toUtf8(each.name);
  return {};
}

std::optional<Form> formOf(std::wstring_view fileName) {
  const std::wstring name = zolib::folded(fileName);
  if (name.ends_with(L".txt")) return Form::kText;
  for (const auto& each : kForms)
    if (name.ends_with(each.extension)) return each.form;
  return std::nullopt;
}

bool locate(const std::wstring& name, const Options& options, ValueFile& file, Report& report) {
  file.path = name;
  std::wstring member;
  const int code = zolib::splitMember(file.path, member);
  file.shown = toUtf8(file.path);
  if (code == ZoResult::refused) return true;
  if (code != ZoResult::ok) {
    report.fail(zolib::kUsage, zolib::kNoMember, name);
    return false;
  }
  if (!options.member.empty()) {
    report.fail(zolib::kUsage, {160, "%1 names a member already; leave out --member"}, name);
    return false;
  }
  setMember(member, file);
  return true;
}

bool lockFile(ValueFile& file, Report& report) {
  if (file.lock.take(file.path)) return true;
  report.fail(zolib::kLocked, {161, "%1 is locked: another program is writing to it"}, file.path);
  return false;
}

bool readValue(const std::wstring& path, const Options& options, ValueFile& file, Report& report,
               Use use) {
  if (!locate(path, options, file, report)) return false;
  if (use == Use::kChange && !lockFile(file, report)) return false;
  zolib::forgetReason();
  ZoFile open = opened(file.path);
  if (!open.isOpen()) {
    report.fail(zolib::kNotFound, kNotOpened, file.shown, because());
    return false;
  }
  if (!isLibrary(open) && file.member.empty())
    return (use == Use::kRead || keepBytes(open, file, report)) &&
           readOpen(open, options, file, report);
  if (file.member.empty()) setMember(options.member, file);
  if (file.member.empty()) {
    report.fail(zolib::kUsage,
                {162, "%1 is a library; name a value in it by --member, or as '%1|MEMBER'"},
                file.shown);
    return false;
  }
  static_cast<void>(open.close());
  return readMember(options, file, report, use);
}

namespace {

bool textOf(const ZoVariant& value, Form form, ZoString& text) {
  if (form == Form::kText) return value.format(text) == 0;
  if (form == Form::kJson) return ZoJson::format(value, text) == 0;
  ZoXMLClass document;
  return ZoXMLClass::fromVariant(value, document) == 0 && document.write(text) == 0;
}

}  // namespace

Fault encode(const ZoVariant& value, Form form, std::string& bytes) {
  ZoString text;
  if (form == Form::kArchive && !value.isTooDeep()) {
    ZoMemoryWriteArchive archive;
    archive << value;
    bytes.assign(reinterpret_cast<const char*>(archive.bytes().data()), archive.bytes().size());
    return std::nullopt;
  }
  if (form != Form::kArchive && textOf(value, form, text)) {
    bytes = toUtf8(text.view());
    if (!bytes.ends_with('\n')) bytes += '\n';
    return std::nullopt;
  }
  return failure(zolib::kFailed, {163, "the value lies too deep, or is too long, for the form %1"},
                 nameOf(form));
}

void tell(const Fault& fault, Report& report) {
  if (fault && !fault->text.empty()) report.fail(fault->code, fault->text);
}

bool isWritable(const ValueFile& file, Report& report) {
  if (file.library) return true;  // it is open for writing
  zolib::forgetReason();
  ZoFile open;
  const ZoFileName name(zolib::shellPath(file.path));
  constexpr auto kShared = ZoFile::kShareRead | ZoFile::kShareWrite;
  const DWORD attributes = GetFileAttributesW(zolib::shellPath(file.path).c_str());
  const bool isReadOnly =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY);
  if (!isReadOnly && open.open(name, ZoFile::kReadWrite, ZoFile::kOpenExisting, kShared) == 0)
    return true;
  report.fail(zolib::kFailed, {186, "%1 cannot be written%2; look at it by --read-only"},
              file.shown, because());
  return false;
}

void acceptPresent(ValueFile& file) {
  if (!file.before) return;
  ZoFile open = opened(file.path);
  if (!open.isOpen() || !readBytes(open, *file.before)) file.before.reset();
}

Fault writeValue(ValueFile& file, Report& report) {
  const zolib::Step writing = report.step(file.size, {182, "writing %1"}, file.shown);
  std::string bytes;
  if (Fault fault = encode(file.value, file.form, bytes)) return fault;
  if (!report.goesOn()) return Failure{zolib::kCancelled, {}};
  if (!file.member.empty()) return writeMember(file, bytes);
  zolib::forgetReason();
  ZoFileSave save;
  const bool isReady =
      save.open(ZoFileName(zolib::shellPath(file.path))) == 0 && isWritten(save.file(), bytes);
  if (isReady)
    if (Fault fault = changeMeanwhile(file)) return fault;
  if (isReady && save.commit() == 0) return std::nullopt;
  return failure(zolib::kFailed, {165, "cannot write %1%2"}, file.shown, because());
}

}  // namespace zoval
