// The units service: values of the physical type codes as text and back, by settings that all
// modules share. What the texts look like and which units there are: zo/system/unit_text.h and
// docs/units.md.
//
// Each quantity has a format of its own: the unit, form and precision that its values are printed
// in, and the unit that a number without one is read in. Codes that measure the same (Length and
// XDistance; all pure numbers) share it, and the separators are the same for all codes.
//
// Errors:  ZoResult::timeOut when the guard was not obtained within timeOut(), and
//          ZoResult::refused as said; out-parameters are then as they were, and settings too.
// Threads: any; the guard is held while settings are read or changed, not while text is made. Who
//          prints much takes the format once and calls ZoPrintUnits.
// Cost:    one wait for the guard each.
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/system/unit_text.h>

class ZO_COM_API ZoUnits : public ZoSysObj {
 public:
  // As ZoPrintUnits and ZoParseUnits in the code's format.
  [[nodiscard]] virtual int print(double value, ZoTypeCode code, ZoString& text) = 0;
  [[nodiscard]] virtual int parse(const wchar_t* text, ZoTypeCode code, double& value) = 0;

  // A code's format, with the separators. Its unit, where not null, is the library's own text and
  // valid for good.
  [[nodiscard]] virtual int getFormat(ZoTypeCode code, ZoUnitFormat& format) = 0;
  // Refused when ZoPrintUnits would refuse it. Its separators become those of all codes.
  [[nodiscard]] virtual int setFormat(ZoTypeCode code, const ZoUnitFormat& format) = 0;

  [[nodiscard]] virtual int getSeparators(wchar_t& decimal, wchar_t& grouping) = 0;
  // Refused are characters that ZoIsUnitSeparators refuses.
  [[nodiscard]] virtual int setSeparators(wchar_t decimal, wchar_t grouping) = 0;
};

// At first every code is printed exactly, as decimals, in its internal unit.
class ZO_COM_API ZoStdUnits : public ZoUnits {
 public:
  // Separators that cannot part numbers are taken as '.' and none.
  explicit ZoStdUnits(wchar_t decimal, wchar_t grouping) noexcept;
  ZoStdUnits(const ZoStdUnits&) = delete;
  ZoStdUnits& operator=(const ZoStdUnits&) = delete;

  int release(const wchar_t* module) override;

  int print(double value, ZoTypeCode code, ZoString& text) override;
  int parse(const wchar_t* text, ZoTypeCode code, double& value) override;
  int getFormat(ZoTypeCode code, ZoUnitFormat& format) override;
  int setFormat(ZoTypeCode code, const ZoUnitFormat& format) override;
  int getSeparators(wchar_t& decimal, wchar_t& grouping) override;
  int setSeparators(wchar_t decimal, wchar_t grouping) override;

 private:
  // One per quantity: codes that measure the same share it.
  static constexpr int kFormats = 19;

  ZoUnitFormat formats_[kFormats];
};
