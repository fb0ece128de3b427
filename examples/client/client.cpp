// A client: starts the library, asks each of its services something, and stops it.
#include <zo/system.h>
#include <zo/variant.h>

#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

void expect(bool held, const char* what) {
  if (!held) throw std::runtime_error(what);
}

void errorsAndMessages() {
  // No user sits before this program: reports go to a text. The registry owns the new service.
  std::wostringstream report;
  ZoSystem::setError(new ZoErrLog(&report));
  const ZoString list(L"bolts");
  ZoSystem::error().warning(ZO_FILE, __LINE__, L"%d parts left out of %s", 3, list);
  expect(report.str().starts_with(
             L"\n\n*** Warning: 3 parts left out of bolts\nfilename: client.cpp\n"),
         "a warning in the log");

  try {
    zoThrow(L"no such part");
  } catch (const std::exception& e) {
    expect(std::string(e.what()) == "no such part", "the message of an exception");
  }

  // Taken out again, the log is ours, and the standard service in force.
  ZoError* const log = &ZoSystem::error();
  ZoSystem::setError(nullptr);
  delete log;

  ZoString text(L"%1 parts were left out");  // for want of a message file
  expect(ZoSystem::message().getText(L"parts", 17, text) != 0 && text == L"%1 parts were left out",
         "the text that the caller brought");

  // The library's own texts, in German: message files that lie in the package.
  ZoMessage& messages = ZoSystem::message();
  expect(messages.setLanguages(ZoArray<ZoString>{L"de", L"en"}) == 0, "languages");
  expect(messages.load(L"zotype", L"client") == 0, "the names of types");
  expect(ZoString(L"L\u00E4nge") == ZoType::codeToLocString(ZoTypeCode::Length), "a type's name");
}

void settings() {
  ZoCfg& cfg = ZoSystem::cfg();
  expect(cfg.init(L"", nullptr) == 0, "keys that are full paths");
  const wchar_t* const key = L"Software@zo_com example@zof@view@scale";
  expect(cfg.put(key, 0.25) == 0, "a setting is written");
  expect(cfg.get(key, 1.0) == 0.25, "and read");
  expect(cfg.removeAt(L"Software@zo_com example@") == 0, "a key is removed with all below it");
  expect(cfg.init(nullptr, nullptr) == 0, "the keys of the product");
}

void unitsAndTexts() {
  ZoString text;
  double length = 0;
  expect(ZoSystem::units().print(12.5, ZoTypeCode::Length, text) == 0, "a length as text");
  expect(ZoSystem::units().parse(text, ZoTypeCode::Length, length) == 0 && length == 12.5,
         "and back");

  std::string bytes;
  expect(
      ZoSystem::codepage().toBytes(L"\u03C0", ZoCodepage::kUtf8, ZoCodepage::kRefuse, bytes) == 0 &&
          bytes == "\xCF\x80",
      "a text as UTF-8");
}

void filesAndPrograms() {
  ZoString folder;
  expect(ZoSystem::sysInfo().folder(ZoSysInfo::kProgram, folder) == 0, "where we lie");
  ZoFileName found;
  expect(ZoSystem::fileSearch().addPath(ZoFileName(folder), L"client") == 0, "a search path");
  expect(ZoSystem::fileSearch().find(ZoFileName(L"client.exe"), found) == 0, "a file is found");

  const ZoFileName absent(L"C:\\there is no such program.exe");
  expect(ZoSystem::execute().shell(absent, nullptr, 1) == ZoExecute::kFileNotFound,
         "what is not there is not started");
  expect(ZoSystem::fileOpen().openDocument(absent) != 0, "no host opens it");
  ZoSystem::fileSystem().errorIO(L"client");  // after a call of the platform has failed
  expect(!ZoSystem::fileSystem().errorTxt().isEmpty(), "the platform's message");
}

// Without a host application these have nothing to give, and say so.
void theAbsentHost() {
  ZoString text;
  ZoVariant standard;
  expect(!ZoSystem::cad().isPresent(), "no host");
  expect(ZoSystem::layer().ensure({.name = L"Bolts"}) == 0, "a layer");
  expect(ZoSystem::macroLib().getMacro(L"standards", text) != 0, "no macros");
  expect(ZoSystem::standardMgr().getStandard(L"ISO 4014", standard) != 0, "no standards");
}

void notices() {
  class PartCount : public ZoCustomReactor {
   public:
    void onNotice(const wchar_t*, const ZoVariant&) override { ++count_; }
    double priority() override { return 1; }
    int release(const wchar_t*) override { return 1; }
    void onRequest(const wchar_t*, ZoVariant& answer) override { answer = count_; }

   private:
    int count_ = 0;
  };
  ZoSysDisp& dispatcher = ZoSystem::sysDisp();
  expect(dispatcher.addReactor(new PartCount) == 0, "the dispatcher owns it now");
  for (const wchar_t* part : {L"M8", L"M10"})
    expect(dispatcher.sendNotice(L"part added", ZoVariant(part)) == 0, "a notice is sent");
  ZoVariant count;
  expect(dispatcher.sendRequest(L"how many parts", count) == 0 && count.asInt() == 2,
         "the answer to a request");
}

}  // namespace

int main() {
  if (zoComDllAttach() != 0) return 1;
  int result = 0;
  try {
    errorsAndMessages();
    settings();
    unitsAndTexts();
    filesAndPrograms();
    theAbsentHost();
    notices();
    std::cout << "all fifteen services answered\n";
  } catch (const std::exception& e) {
    std::cerr << "not as it should be: " << e.what() << '\n';
    result = 1;
  }
  return zoComDllDetach() == 0 ? result : 1;
}
