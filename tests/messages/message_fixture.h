// A folder of message files, and a service in force that reads them.
#pragma once

#include <gtest/gtest.h>
#include <zo/messages.h>
#include <zo/names/file_name.h>
#include <zo/system/registry.h>
#include <zo/text/containers/array.h>
#include <zo/variant/variant.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "support/printers.h"
#include "support/temp_folder.h"
#include "system/attached.h"

namespace zo::test {

class MessageTest : public testing::Test {
 protected:
  // "@messages 1" and a line break come first.
  void write(const std::string& name, std::string_view lines) const {
    std::ofstream file(folder_.path() / name, std::ios::binary);
    file << "@messages 1\n" << lines;
  }
  [[nodiscard]] ZoFileName full(const wchar_t* name) const {
    return ZoFileName((folder_.path() / name).wstring());
  }
  int load(const wchar_t* name, const wchar_t* module = L"mine") {
    return service().load(full(name), module);
  }
  int setLanguages(std::initializer_list<ZoString> tags) {
    return service().setLanguages(ZoArray<ZoString>(tags));
  }
  // The text, behind the code where that is not 0; "" when it is refused.
  std::wstring text(const wchar_t* file, int number) {
    ZoString got;
    return shown(service().getText(file, number, got), got);
  }
  std::wstring format(int number, std::initializer_list<ZoVariant> arguments) {
    ZoString got;
    return shown(service().format(L"parts", number, arguments, got), got);
  }
  static std::wstring shown(int code, const ZoString& got) {
    if (code == ZoResult::refused) return L"";
    return (code == 0 ? L"" : std::to_wstring(code) + L": ") + std::wstring(got.view());
  }
  ZoMessage& service() { return ZoSystem::message(); }

  TempFolder folder_;
  Attached attached_;
};

}  // namespace zo::test
