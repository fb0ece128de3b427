// clang-format off
#include <zo/system.h>
#include <zo/variant.h>

void settings(ZoCfg& cfg, ZoStdCfg& standard) {
  cfg.at(L"unit", L"mm");           // error: write get(key, otherwise)
  cfg.at(L"count", 5);              // error: write get(key, otherwise)
  standard.at(L"scale", 0.5);       // error: write get(key, otherwise)
  cfg.replaceAt(L"scale", 0.25);    // error: write put(key, value)
  standard.insertAt(L"s", 0.25f);   // error: write put(key, value)
  cfg.setAt(L"scale", 0.25);        // error: write put(key, value)
  cfg.put(L"unit", L"mm");          // error: nodiscard
  cfg.get(L"parts", ZoVariant());   // error: no matching function
}

void reports(const ZoString& name, const ZoVariant& part) {
  ZoError& error = ZoSystem::error();
  error.warning(ZO_FILE, __LINE__, L"%d parts", name);  // error: wrongKind
  error.warning(ZO_FILE, __LINE__, L"%s parts", 5);     // error: wrongKind
  error.trace(L"%d", 1.5);                              // error: wrongKind
  error.trace(L"%*d", name, 1);                         // error: wrongKind
  error.trace(L"%s and %s", name);                      // error: tooFewArguments
  error.trace(L"%d");                                   // error: tooFewArguments
  error.prompt(L"all", name);                           // error: tooManyArguments
  error.prompt(L"100% of %s", name);                    // error: wrongKind
  error.prompt(L"%n", 1);                               // error: unknownConversion
  error.prompt(L"100%");                                // error: a percent sign by itself is %%
  error.prompt(L"%s", part);                            // error: say what of it is to be shown
}

void opening(ZoFileOpen& service, const ZoFileName& name) {
  service.open(name);                            // error: openDocument(name) opens it in the host
}

void notices(ZoSysDisp& dispatcher, ZoSysObj& service, const ZoVariant& data) {
  dispatcher.sendNotice(1000, data);             // error: nodiscard
  dispatcher.addReactor(nullptr);                // error: ambiguous
  service.waitToWrite();                         // error: nodiscard
  ZoSystem::units();                             // error: nodiscard
  zoComDllAttach();                              // error: nodiscard
}

void throwing(int code) {
  zoThrow(0);                                    // error: a text, or a ZoComException::Code
  zoThrow(nullptr);                              // error: a text, or a ZoComException::Code
  zoThrow(code, false);                          // error: a text, or a ZoComException::Code
}
