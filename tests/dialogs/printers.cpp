// A PostScript printer that prints to files, so that there is one where the machine has none.
#include <windows.h>

#include <winspool.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "dialogs/dialog_user.h"

namespace {

constexpr const char* kDescription = R"PPD(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "TEST.PPD"
*Manufacturer: "Test"
*Product: "(Test)"
*PSVersion: "(3010.000) 0"
*ModelName: "Test"
*NickName: "Test"
*LanguageLevel: "2"
*ColorDevice: True
*DefaultResolution: 300dpi
*OpenUI *PageSize/Media Size: PickOne
*DefaultPageSize: A4
*PageSize A4/A4: "<</PageSize[595 842]>>setpagedevice"
*PageSize Letter/US Letter: "<</PageSize[612 792]>>setpagedevice"
*CloseUI: *PageSize
*DefaultImageableArea: A4
*ImageableArea A4/A4: "18 18 577 824"
*ImageableArea Letter/US Letter: "18 18 594 774"
*DefaultPaperDimension: A4
*PaperDimension A4/A4: "595 842"
*PaperDimension Letter/US Letter: "612 792"
*OpenUI *InputSlot/Media Source: PickOne
*DefaultInputSlot: Tray
*InputSlot Tray/Tray: ""
*CloseUI: *InputSlot
*DefaultFont: Courier
*Font Courier: Standard "(1.05)" Standard ROM
)PPD";
wchar_t printerName[] = L"ZoTestPrinter";
wchar_t driverName[] = L"ZO test driver";
wchar_t driverFile[] = L"wineps.drv";

bool addDriver() {
  wchar_t folder[MAX_PATH];
  DWORD size = 0;
  if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder),
                                  sizeof folder, &size))
    return false;
  const std::filesystem::path kept = std::filesystem::path(folder) / "3" / "zo_test.ppd";
  std::filesystem::create_directories(kept.parent_path());
  std::ofstream(kept, std::ios::binary) << kDescription;
  std::wstring description = (std::filesystem::temp_directory_path() / "zo_test.ppd").wstring();
  std::ofstream(std::filesystem::path(description), std::ios::binary) << kDescription;
  DRIVER_INFO_3W driver = {};
  driver.cVersion = 3;
  driver.pName = driverName;
  driver.pDriverPath = driver.pConfigFile = driverFile;
  driver.pDataFile = description.data();
  wchar_t raw[] = L"RAW";
  driver.pDefaultDataType = raw;
  return AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                             APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) ||
         GetLastError() == ERROR_PRINTER_DRIVER_ALREADY_INSTALLED;
}

}  // namespace

bool zo::test::Printers::hasDefault() {
  DWORD size = 0;
  GetDefaultPrinterW(nullptr, &size);
  return GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

zo::test::Printers::Printers() : turn_(CreateMutexW(nullptr, FALSE, L"zo_test_printers")) {
  WaitForSingleObject(turn_, INFINITE);
}

void zo::test::Printers::add() {
  if (hasDefault() || !addDriver()) return;
  wchar_t port[] = L"FILE:", processor[] = L"winprint", raw[] = L"RAW";
  PRINTER_INFO_2W printer = {};
  printer.pPrinterName = printerName;
  printer.pDriverName = driverName;
  printer.pPortName = port;
  printer.pPrintProcessor = processor;
  printer.pDatatype = raw;
  HANDLE const handle = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
  if (handle) ClosePrinter(handle);
  SetDefaultPrinterW(printerName);
}

zo::test::Printers::~Printers() {
  PRINTER_DEFAULTSW access = {nullptr, nullptr, PRINTER_ALL_ACCESS};
  HANDLE handle = nullptr;
  if (OpenPrinterW(printerName, &handle, &access)) {
    DeletePrinter(handle);
    ClosePrinter(handle);
  }
  ReleaseMutex(turn_);
  CloseHandle(turn_);
}
