// A client module: replaces two services by its own, answers a request, and goes without a trace.
//
// Everything that it gives to the library is asked to go when the module is released, and destroys
// itself then. So the DLL may be freed afterwards: no code of it is left behind.
#include <zo/system.h>
#include <zo/variant.h>

#include <cwchar>

namespace {

constexpr const wchar_t* kModule = L"example_module";

// The answer to release(): 0 after the object, which is ours, has destroyed itself.
template <class Object>
int releaseWithModule(Object* object, const wchar_t* module) {
  if (!module || _wcsicmp(module, kModule) != 0) return 1;
  delete object;
  return 0;
}

class Log : public ZoErrLog {
 public:
  using ZoErrLog::ZoErrLog;
  int release(const wchar_t* module) override { return releaseWithModule(this, module); }
};

// The standard settings, but for what this module decides itself.
class Settings : public ZoStdCfg {
 public:
  int release(const wchar_t* module) override { return releaseWithModule(this, module); }

 protected:
  int getValue(ZoString key, ZoVariant& value) override {
    if (key == L"example@unit") {
      value = L"mm";
      return 0;
    }
    return ZoStdCfg::getValue(key, value);
  }
};

class Answers : public ZoCustomReactor {
 public:
  void onNotice(const wchar_t*, const ZoVariant&) override {}
  double priority() override { return 10; }
  int release(const wchar_t* module) override { return releaseWithModule(this, module); }
  void onRequest(const wchar_t* name, ZoVariant& data) override {
    if (std::wcscmp(name, L"example.double") == 0) data = data.asReal() * 2;
    // The texts that an exception points to must outlive this module: these are in its code, so its
    // handler must be done with it before the module goes.
    if (std::wcscmp(name, L"example.fail") == 0)
      zoThrow(ZoComException(ZO_FILE, L"onRequest", L"asked to fail", 7, true));
  }
};

// Counts the services that are replaced while the module is there.
class Watch : public ZoSystemReactor {
 public:
  void onNotice(ZoSysNotice notice, const ZoVariant& data) override {
    if (notice != ZoSysNotice::serviceChanged) return;
    const ZoVariant* const type = data.at(L"Type");
    if (type) ZoSystem::error().trace(L"%s changed", type->asString());
  }
  double priority() override { return 10; }
  int release(const wchar_t* module) override { return releaseWithModule(this, module); }
};

int announce(ZoSysNotice notice) {
  const ZoVariant data(ZoHashDict<ZoVariant, ZoString>{{L"Module", kModule}});
  return ZoSystem::sysDisp().sendNotice(notice, data);
}

}  // namespace

extern "C" __declspec(dllexport) int moduleLoad(std::wostream* log) {
  ZoSysDisp& dispatcher = ZoSystem::sysDisp();
  if (dispatcher.addReactor(new Answers) != 0 || dispatcher.addReactor(new Watch) != 0) return 1;
  ZoSystem::setError(new Log(log));
  ZoSystem::setCfg(new Settings);
  return announce(ZoSysNotice::moduleLoaded);
}

extern "C" __declspec(dllexport) int moduleRelease() {
  return announce(ZoSysNotice::moduleReleased);
}
