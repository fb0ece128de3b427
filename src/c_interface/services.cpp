// Start and end, result texts, units and messages.
#include <zo/attach/life_cycle.h>
#include <zo/names/file_name.h>
#include <zo/result_text.h>
#include <zo/system/file_system.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>
#include <zo/system/units.h>
#include <zo/version.h>

#include <algorithm>
#include <vector>

#include "attach/result_table.h"
#include "c_interface/call.h"
#include "c_interface/value.h"

using namespace zo::c;

namespace {

bool isOurs(int code) noexcept { return code >= ZOC_BAD_HANDLE && code <= ZOC_NO_LIBRARY; }

ZoArray<ZoString> wordsOf(const ZoString& text) {
  ZoArray<ZoString> words;
  for (std::size_t at = 0; at < text.view().size();) {
    const std::wstring_view rest = text.view().substr(at);
    const std::size_t length = std::min(rest.find_first_of(L" ,;"), rest.size());
    if (length != 0 && words.append(ZoString(rest.substr(0, length)))) throw std::bad_alloc();
    at += length + 1;
  }
  return words;
}

// Copies, so that a service may keep them.
std::vector<ZoVariant> argumentsOf(ZocValue handle) {
  std::vector<ZoVariant> arguments;
  if (!handle) return arguments;
  const Use<Value> from(handle);
  if (!from->variant.asSequence()) throw Refusal{ZOC_BAD_ARGUMENT};
  for (const auto [key, position, element] : from->variant.elements())
    arguments.push_back(element.copy());
  return arguments;
}

}  // namespace

int zocAttach() noexcept {
  return guarded([] { return zoComDllAttach(); });
}

int zocDetach() noexcept {
  return guarded([] {
    if (!zo::processLocks.attached) return int{ZOC_NOT_ATTACHED};
    while (const auto object = dropAnyHandle()) (void)object->close();
    return zoComDllDetach();
  });
}

uint32_t zocVersion() noexcept {
  return ZO_COM_VERSION_MAJOR << 16 | ZO_COM_VERSION_MINOR << 8 | ZO_COM_VERSION_PATCH;
}

int zocClose(void* handle) noexcept {
  return call([&] {
    const std::shared_ptr<Object> object = findHandle(handle);
    if (!object) return int{ZOC_BAD_HANDLE};
    if (!object->mayClose()) return int{ZOC_WRONG_THREAD};
    if (!dropHandle(handle)) return int{ZOC_BAD_HANDLE};  // another thread was faster
    return object->close();
  });
}

int zocResultText(int code, int family, ZocString out) noexcept {
  return call([&] {
    const Use<String> to(out);
    const auto of = isOurs(code) ? ZoResultFamily::cInterface : static_cast<ZoResultFamily>(family);
    require(std::ranges::find(zo::resultTable(), of, &zo::ResultEntry::family) !=
            zo::resultTable().end());  // each family has a code of its own
    to->set(zoResultText(code, of).view());
    return 0;
  });
}

int zocPlatformText(ZocString out) noexcept {
  return call([&] {
    const Use<String> to(out);
    to->set(ZoSystem::fileSystem().errorTxt().view());
    return 0;
  });
}

int zocUnitsPrint(double number, uint32_t code, ZocString out) noexcept {
  return call([&] {
    const Use<String> to(out);
    ZoString text;
    if (const int failed = ZoSystem::units().print(number, static_cast<ZoTypeCode>(code), text))
      return failed;
    to->set(text.view());
    return 0;
  });
}

int zocUnitsParse(ZocText text, uint32_t code, double* out) noexcept {
  return call([&] {
    double& number = required(out);
    return ZoSystem::units().parse(textOf(text), static_cast<ZoTypeCode>(code), number);
  });
}

int zocUnitsConvert(double number, uint32_t code, ZocText from, ZocText to, double* out) noexcept {
  return call([&] {
    const ZoString one = textOf(from);
    const ZoString other = textOf(to);
    const auto name = [](const ZoString& unit) { return unit.isEmpty() ? nullptr : unit.data(); };
    return ZoConvertUnits(number, static_cast<ZoTypeCode>(code), name(one), name(other),
                          required(out));
  });
}

int zocUnitsSetFormat(uint32_t code, ZocText unit, int precision) noexcept {
  return call([&] {
    const ZoString name = textOf(unit);
    ZoUnitFormat format;
    const auto of = static_cast<ZoTypeCode>(code);
    if (const int failed = ZoSystem::units().getFormat(of, format)) return failed;
    format.unit = name.isEmpty() ? nullptr : name.data();
    format.form = ZoUnitFormat::Decimal;
    format.precision = precision;
    return ZoSystem::units().setFormat(of, format);
  });
}

int zocMessageLoad(ZocText file, ZocText module) noexcept {
  return call([&] {
    const ZoFileName name(textOf(file));
    return ZoSystem::message().load(name, textOf(module));
  });
}

int zocMessageSetLanguages(ZocText languages) noexcept {
  return call([&] { return ZoSystem::message().setLanguages(wordsOf(textOf(languages))); });
}

int zocMessageFormat(ZocText file, int number, ZocValue arguments, ZocString out) noexcept {
  return call([&] {
    const Use<String> to(out);
    const std::vector<ZoVariant> values = argumentsOf(arguments);
    ZoString text;
    const int code = ZoSystem::message().formatWith(textOf(file), number, values, text);
    if (code == ZoResult::ok || code == ZoResult::incomplete) to->set(text.view());
    return code;
  });
}
