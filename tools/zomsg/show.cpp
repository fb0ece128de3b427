// show: a text as its users see it.
#include <zo/files/find_file.h>
#include <zo/names/file_name.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>
#include <zo/system/units.h>
#include <zo/text/containers/array.h>
#include <zo/variant/type.h>
#include <zo/variant/variant.h>

#include <set>

#include "message_file.h"
#include "paths.h"
#include "verbs.h"

namespace zomsg {
namespace {

constexpr const wchar_t* kModule = L"zomsg";

// A whole number, another number, a variant's text form ("Point (1, 2, 3)"), a value with a unit
// behind its type ("Length 1/2 in"); or else just the text.
ZoVariant argumentOf(const std::wstring& text) {
  const ZoVariant asText{ZoString(text)};
  std::int64_t whole = 0;
  double real = 0;
  if (asText.get(whole) == 0) return ZoVariant(whole);
  if (asText.get(real) == 0) return ZoVariant(real);
  const std::size_t blank = text.find(L' ');
  if (blank == std::wstring::npos) return asText;
  ZoVariant value;
  if (value.parse(text) == 0) return value;
  // The names of some types have blanks in them.
  for (std::size_t end = text.rfind(L' '); end != std::wstring::npos && end > 0;
       end = text.rfind(L' ', end - 1)) {
    const ZoTypeCode code = ZoType::stringToCode(text.substr(0, end).c_str());
    if (code == ZoTypeCode::NoType || ZoType::baseCode(code) != ZoTypeCode::Real) continue;
    if (ZoSystem::units().parse(text.c_str() + end + 1, code, real) == 0)
      return ZoVariant(real, code);
  }
  return asText;
}

// All of the folder, which texts may refer to, the library's own, and at last the file itself.
int loadAll(const FileParts& parts) {
  ZoMessage& messages = ZoSystem::message();
  for (const wchar_t* own : {L"zotype", L"zoflag", L"zoresult"})
    static_cast<void>(messages.load(ZoFileName(own), kModule));
  const std::wstring folder = parts.folder.empty() ? L".\\" : zolib::shellPath(parts.folder);
  std::set<std::wstring> names;
  ZoFindFile find;
  if (find.open(ZoFileName(folder + L"*.msg")) == 0) {
    while (find.next()) names.insert(folded(partsOf(find.fileNameExt()).name));
  }
  for (const std::wstring& name : names)
    static_cast<void>(messages.load(ZoFileName(folder + name), kModule));
  return messages.load(ZoFileName(folder + parts.name), kModule);
}

}  // namespace

void show(const Options& options, Report& report) {
  const FileParts parts = partsOf(options.file);
  const std::wstring& language = options.language.empty() ? parts.tag : options.language;
  ZoMessage& messages = ZoSystem::message();
  ZoArray<ZoString> languages;
  if (!language.empty() && (languages.append(ZoString(language)) != 0 ||
                            messages.setLanguages(languages) != ZoResult::ok))
    return report.fail(zolib::kFailed, "cannot use the language " + toUtf8(language));
  zolib::forgetReason();
  if (const int code = loadAll(parts); code == ZoResult::invalid)
    return report.fail(zolib::kNotALibrary,
                       toUtf8(options.file) + " is no message file; see `zomsg check`");
  else if (code != ZoResult::ok)
    return report.fail(zolib::kNotFound, "cannot find " + toUtf8(options.file) +
                                             " in this language" + zolib::because());

  ZoArray<ZoVariant> arguments;
  for (const std::wstring& text : options.arguments)
    if (arguments.append(argumentOf(text)) != 0) throw std::bad_alloc();
  ZoString text;
  const int code =
      messages.format(ZoString(parts.name), *messageNumber(options.number), arguments, text);
  if (code != ZoResult::ok && code != ZoResult::incomplete)
    return report.fail(zolib::kNotFound,
                       toUtf8(options.file) + " has no message " + toUtf8(options.number));
  report.json()["text"] = toUtf8(text.view());
  if (!options.json) report.console().out(toUtf8(text.view()) + "\n");
  if (code == ZoResult::incomplete)
    report.warn(
        "an argument is missing, or a reference leads nowhere or in a circle: its mark "
        "stands in the text");
}

}  // namespace zomsg
