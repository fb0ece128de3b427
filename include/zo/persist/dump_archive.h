// ZoDumpArchive: lists what is written to it as indented, labelled text, for diagnosis.
//
//   ZoDumpArchive dump;
//   part.store(dump);
//   log << dump.dump();
//
// Each write adds one entry: a line feed, three blanks for each open scope, and "LABEL: VALUE". So
// the text begins with a line feed and has none at its end. A null or empty label is replaced by
// the name of the type. An entry has at most 1023 characters behind its indentation; what is more
// is cut. The entries of all types are tabled in docs/formats/archive.md.
//
// The 64-bit types have each other's names ("Int64" for unsigned, "UInt64" for signed), and print
// their low 32 bits: kept on purpose. Reading is not supported: readBin gives nothing.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: one thread at a time per archive.
// Cost:    linear in the text, however many entries it has; dump() moves what was written since the
//          last call into the string, so call it when all is written.
#pragma once

#include <zo/persist/archive.h>
#include <zo/text/printf.h>
#include <zo/text/string.h>

#include <string>
#include <string_view>

class ZO_COM_API ZoDumpArchive : public ZoArchive {
 public:
  ZoDumpArchive() = default;
  ZoDumpArchive(const ZoDumpArchive&) = default;
  ZoDumpArchive& operator=(const ZoDumpArchive&) = default;

  bool isStoring() override;  // true
  // Passes the name to printf as the format, a lone '%' doubled, so that it and "%%" stand for one
  // '%'; and indents what follows.
  void pushScope(const wchar_t* name) override;
  void popScope() override;
  using ZoArchive::read, ZoArchive::write;
  void readBin(void* buffer, unsigned int size) override;

  void writeBin(const void* data, unsigned int size, const wchar_t* name) override;
  void write(const _GUID& value, const wchar_t* name) override;
  void write(const ZoHnd& value, const wchar_t* name) override;
  void write(const ZoTol& value, const wchar_t* name) override;
  void write(const ZoCoSystem& value, const wchar_t* name) override;
  void write(const ZoMatrix& value, const wchar_t* name) override;
  void write(const ZoPlane& value, const wchar_t* name) override;
  void write(const ZoVector& value, const wchar_t* name) override;
  void write(const ZoPoint& value, const wchar_t* name) override;
  void write(const ZoFileName& value, const wchar_t* name) override;
  void write(const ZoVariant& value, const wchar_t* name) override;
  void write(const ZoString& value, const wchar_t* name) override;
  void write(ZoColor& value, const wchar_t* name) override;
  void write(const wchar_t* text, const wchar_t* name) override;
  void write(double value, const wchar_t* name) override;
  void write(std::int64_t value, const wchar_t* name) override;
  void write(std::uint64_t value, const wchar_t* name) override;
  void write(unsigned int value, const wchar_t* name) override;
  void write(int value, const wchar_t* name) override;
  void write(unsigned short value, const wchar_t* name) override;
  void write(short value, const wchar_t* name) override;
  void write(unsigned char value, const wchar_t* name) override;
  void write(signed char value, const wchar_t* name) override;
  void write(bool value, const wchar_t* name) override;

  virtual ~ZoDumpArchive();
  // Adds an entry, formatted by the runtime's wide printf: "%s" and "%ls" are wide texts, and the
  // exponents of its numbers have as many digits as the runtime gives them. Nobody checks the
  // arguments: print() does. A class that overrides it says `using ZoDumpArchive::printf;` for the
  // form below.
  virtual void printf(const wchar_t* format, ...);
  // The same where an argument is a ZoString, a ZoFileName or another object that zo/text/printf.h
  // prints: calls the former with the finished text.
  template <class... Arguments>
    requires zo::HasObject<Arguments...>
  void printf(const wchar_t* format, const Arguments&... arguments) {
    printArguments(format, zo::argumentsOf(arguments...));
  }
  // The same for any arguments; a literal format is checked by the compiler against them.
  template <class... Arguments>
  void print(zo::FormatFor<Arguments...> format, const Arguments&... arguments) {
    printArguments(format.text(), zo::argumentsOf(arguments...));
  }
  virtual void clear();  // the text, not the depth
  // The text so far. Valid until the archive is changed.
  virtual const ZoString& dump();

 private:
  void add(std::wstring_view entry);
  void printArguments(const wchar_t* format, const zo::FormatArguments& arguments);

  unsigned int depth_ = 0;
  ZoString text_;
  std::wstring pending_;     // what is not in text_ yet
  unsigned int nested_ = 0;  // containers that are being written
};
