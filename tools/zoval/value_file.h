// A value in a file, or in a member of a library: text form, archive, XML or JSON.
#pragma once

#include <zo/library/library.h>
#include <zo/variant/variant.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "file_lock.h"
#include "options.h"
#include "report.h"

namespace zoval {

using zolib::Report;

// The forms in which values are stored, and the words for them.
enum class Form { kText, kArchive, kXml, kJson };
[[nodiscard]] std::optional<Form> formNamed(std::wstring_view name);
[[nodiscard]] std::string nameOf(Form form);
// By the extension of a file's name: .txt and .zov are text, .zoa is an archive, .xml and .json
// what they say.
[[nodiscard]] std::optional<Form> formOf(std::wstring_view fileName);

struct ValueFile {
  ZoVariant value;
  Form form = Form::kText;
  std::wstring path;
  std::wstring member;  // empty: the file itself
  std::string shown;    // as it is named in talk
  std::uint64_t size = 0;

  // Of one that is read to be written.
  FileLock lock;
  std::unique_ptr<ZoLibrary> library;  // open for writing
  std::optional<std::string> before;   // the file's bytes, which must still be there
};

// Where a value lies: the file, or a member as LIBRARY|MEMBER. False when that is wrong, which is
// reported.
bool locate(const std::wstring& name, const Options& options, ValueFile& file, Report& report);
// Keeps others from writing the file until `file` ends. False when they do already, which is
// reported.
bool lockFile(ValueFile& file, Report& report);

enum class Use { kRead, kChange };
// Reads the file, or its member where it is a library; to change it, it is locked before. False
// when there is no value in it, which is reported.
bool readValue(const std::wstring& path, const Options& options, ValueFile& file, Report& report,
               Use use = Use::kRead);
// Whether a file that was read to be changed can be written at all; a failure is reported.
bool isWritable(const ValueFile& file, Report& report);

// Why something could not be done; no text where that was said already.
struct Failure {
  zolib::ExitCode code;
  std::string text;
};
using Fault = std::optional<Failure>;
void tell(const Fault& fault, Report& report);

// Puts the value in the file's place, or in its member's, in one step; after a failure all is as it
// was. One is that another program has written or deleted the file since it was read to be changed.
[[nodiscard]] Fault writeValue(ValueFile& file, Report& report);
// What is in a file's place now, or that nothing is, is what the next writing replaces.
void acceptPresent(ValueFile& file);

// Tells what becomes of a change; whether the file is to be written.
[[nodiscard]] bool isToWrite(const ValueFile& file, bool isChange, const Options& options,
                             Report& report);
// The end of a change: writes the file if there is one, and tells what was done.
void keep(ValueFile& file, bool isChange, const Options& options, Report& report);

// The bytes of a form; a failure where the value lies too deep, or is too long.
[[nodiscard]] Fault encode(const ZoVariant& value, Form form, std::string& bytes);

}  // namespace zoval
