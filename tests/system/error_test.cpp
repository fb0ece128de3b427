#include <gtest/gtest.h>
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/system/err_log.h>
#include <zo/system/exception.h>

#include <cstdint>
#include <cstring>
#include <exception>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

namespace {

const std::wstring kLong(1000, L'x');

// What is written, and how often it was flushed.
struct Sink : std::wstringbuf {
  int sync() override {
    ++flushes;
    return 0;
  }
  int flushes = 0;
};

TEST(ErrLog, WritesEachReportInItsLayoutAndFlushesIt) {
  Sink sink;
  std::wostream out(&sink);
  ZoErrLog log(&out);
  const auto expect = [&](int result, const std::wstring& written) {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(sink.str(), written);
    EXPECT_EQ(sink.flushes, 1);
    sink.str(L"");
    sink.flushes = 0;
  };
  out << std::hex << std::showbase << std::setw(20);  // may not change a report
  expect(log.error(L"f.cpp", L"load", 1234, L"100 %d of %s"),
         L"\n\n*** Error: 100 %d of %s\nfilename: f.cpp\nfunction: load\nposition: 1234\n");
  expect(log.error(nullptr, nullptr, std::numeric_limits<int>::min(), nullptr),
         L"\n\n*** Error: position: -2147483648\n");
  expect(log.error(L"", L"", 0, kLong.c_str()),
         L"\n\n*** Error: " + kLong + L"\nfilename: \nfunction: \nposition: 0\n");
  expect(log.warning(L"f.cpp", 7, L"%d of %s", 3, L"%s"),
         L"\n\n*** Warning: 3 of %s\nfilename: f.cpp\nposition: 7\n");
  expect(log.warning(nullptr, 0, L"%s", kLong.c_str()),
         L"\n\n*** Warning: " + kLong.substr(0, 256) + L"\nposition: 0\n");
  expect(log.trace(L"%5.1f|%s", 2.5, L"\u03C0"), L"  2.5|\u03C0\n");
  for (const std::size_t length : {255, 256})
    expect(log.prompt(L"%s", kLong.substr(0, length).c_str()), kLong.substr(0, length) + L"\n");
}

// By the service's interface, and of the implementation itself.
template <class Service>
void reportTyped(Service& service) {
  const ZoString name(L"bolts");
  service.warning(L"f", 1, L"%d of %s", std::size_t{3}, name);
  service.trace(L"%s|%5.1f|%x", ZoFileName(L"c:\\a.dwg"), 2, std::int8_t{-1});
  service.prompt(L"100%%");
  const std::wstring format(L"%d %s");
  service.trace(format.c_str(), name, 4);
  service.trace(L"%s", kLong);
}

TEST(ErrLog, TakesTextsAndNumbersAsWhatTheyAre) {
  const std::wstring expected =
      L"\n\n*** Warning: 3 of bolts\nfilename: f\nposition: 1\nc:\\a.dwg|  2.0|ff\n100%\n"
      L"bolts 4\n" +
      kLong.substr(0, 256) + L"\n";
  std::wostringstream byInterface, itself;
  ZoErrLog log(&byInterface), direct(&itself);
  reportTyped<ZoError>(log);
  EXPECT_EQ(byInterface.str(), expected);
  reportTyped<ZoErrLog>(direct);
  EXPECT_EQ(itself.str(), expected);
  ZoError& service = log;
  EXPECT_EQ(service.trace(nullptr), ZoResult::refused);
  EXPECT_EQ(service.warning(nullptr, 0, nullptr), 0);

  struct Passing : ZoErrLog {
    using ZoErrLog::ZoErrLog;
    int trace(const wchar_t* format, ...) override {
      return ++traces, ZoErrLog::trace(L"<%ls>", format);
    }
    int traces = 0;
  };
  std::wostringstream passed;
  Passing passing(&passed);
  ZoError& derived = passing;
  EXPECT_EQ(derived.trace(L"%d", 5), 0);
  EXPECT_EQ(passing.traces, 1) << "it came to itself again";
}

TEST(ComException, LaysItsFieldsOutInOrderBehindTheVirtualTable) {
  const wchar_t *file = L"f", *function = L"g", *text = L"t";
  struct {
    int code;
    const wchar_t *file, *function, *text;
    int position;
    bool asError;
  } fields;
  const ZoComException worded(file, function, text, 0x1234567, true);
  std::memcpy(&fields, reinterpret_cast<const char*>(&worded) + 8, sizeof fields);
  EXPECT_TRUE(fields.file == file && fields.function == function && fields.text == text);
  EXPECT_TRUE(fields.code == 1 && fields.position == 0x1234567 && fields.asError);
  const wchar_t* const messages[] = {L"", L"Internal Error", L"Out of Memory", L"Invalid Argument",
                                     L"Internal Error"};
  for (int i = 0; i < 5; ++i)
    EXPECT_STREQ(ZoComException(file, file, i, 0, 1).message(), messages[i]);
}

TEST(ComException, IsCaughtAsWhatItWasThrownAs) {
  struct Mine : ZoComException {
    using ZoComException::ZoComException;
    const wchar_t* message() const override { return L"M\u00E4\u03C0"; }
  };
  try {
    zoThrow(static_cast<const ZoComException&>(Mine(L"f", L"g", 3, 7, false)));
  } catch (const ZoComException& e) {
    EXPECT_EQ(e.errCode(), 3);
    // Of the exception given, whatever it is thrown as.
    EXPECT_STREQ(dynamic_cast<const std::exception&>(e).what(), "M\xE4p");
  }
}

TEST(ComException, WhatIsThrownKeepsTextsThatGoAndPointsToThoseThatStay) {
  static const wchar_t* const file = L"f.cpp";
  std::exception_ptr kept;
  try {
    const std::wstring function(L"load"), text(L"No such part: " + kLong);
    zoThrow(ZoComException(file, function.c_str(), text.c_str(), 7, false));
  } catch (...) {
    kept = std::current_exception();
  }
  const std::wstring overIt(2000, L'o');  // in memory that was free
  for (int i = 0; i < 2; ++i) {
    try {
      std::rethrow_exception(kept);
    } catch (const zo::Thrown<ZoComException>& e) {
      const zo::Thrown<ZoComException> copy(e);
      kept = std::make_exception_ptr(copy);  // the copies outlive the first
      static_assert(std::is_nothrow_copy_constructible_v<zo::Thrown<ZoComException>>);
      EXPECT_EQ(copy.message(), L"No such part: " + kLong);
      EXPECT_STREQ(copy.funcName(), L"load");
      EXPECT_TRUE(copy.fileName() == file);
      EXPECT_TRUE(std::string_view(copy.what()).starts_with("No such part: xxx"));
    }
  }
}

TEST(ComException, NamesItsPlaceByItself) {
  EXPECT_STREQ(ZO_FILE, L"error_test.cpp");
  const auto at = [](auto throwing) {
    try {
      throwing();
    } catch (const ZoComException& e) {
      return std::wstring(e.fileName()) + L"|" + std::to_wstring(e.position()) + L"|" +
             std::to_wstring(e.errCode()) + L"|" + e.message();
    }
    return std::wstring();
  };
  const std::wstring here = L"error_test.cpp|" + std::to_wstring(__LINE__ + 1) + L"|";
  EXPECT_EQ(at([] { zoThrow(std::wstring(L"local").c_str()); }), here + L"1|local");
  EXPECT_TRUE(at([] {
                wchar_t buffer[] = L"buffer";
                zoThrow(buffer);
              }).ends_with(L"|1|buffer"));
  EXPECT_TRUE(at([] { zoThrow(ZoComException::kOutOfMemory); }).ends_with(L"|2|Out of Memory"));
}

}  // namespace
