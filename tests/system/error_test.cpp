#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/err_log.h>
#include <zo/system/exception.h>
#include <zo/system/registry.h>

#include <cstring>
#include <iomanip>
#include <iostream>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>

#include "support/printers.h"
#include "system/attached.h"
#include "system/other_thread.h"

namespace {

using zo::test::HeldElsewhere;
using Log = zo::test::Impatient<ZoErrLog>;

const std::wstring kLong(1000, L'x');
const std::wstring kCut(256, L'x');

// What is written, and how often it was flushed.
struct Sink : std::wstringbuf {
  int sync() override {
    ++flushes;
    return accepts ? 0 : -1;
  }
  int flushes = 0;
  bool accepts = true;
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
  // Neither flags nor locale of the stream may change a report.
  struct Grouping : std::numpunct<wchar_t> {
    std::string do_grouping() const override { return "\1"; }
  };
  out.imbue(std::locale(out.getloc(), new Grouping));
  out << std::hex << std::showbase << std::setw(20);

  expect(log.error(L"f.cpp", L"load", 1234, L"100 %d of %s"),
         L"\n\n*** Error: 100 %d of %s\nfilename: f.cpp\nfunction: load\nposition: 1234\n");
  expect(log.error(nullptr, nullptr, std::numeric_limits<int>::min(), nullptr),
         L"\n\n*** Error: position: -2147483648\n");
  expect(log.error(L"", L"", 0, kLong.c_str()),
         L"\n\n*** Error: " + kLong + L"\nfilename: \nfunction: \nposition: 0\n");
  expect(log.warning(L"f.cpp", 7, L"%d of %s", 3, L"%s"),
         L"\n\n*** Warning: 3 of %s\nfilename: f.cpp\nposition: 7\n");
  expect(log.warning(nullptr, 7, nullptr), L"\n\n*** Warning: \nposition: 7\n");
  expect(log.warning(nullptr, 0, L"%s", kLong.c_str()),
         L"\n\n*** Warning: " + kCut + L"\nposition: 0\n");
  for (int (ZoError::*report)(const wchar_t*, ...) : {&ZoError::trace, &ZoError::prompt}) {
    EXPECT_EQ((log.*report)(nullptr), ZoResult::refused);
    expect((log.*report)(L"%5.1f|%s", 2.5, L"\u03C0"), L"  2.5|\u03C0\n");
    for (const std::size_t length : {255, 256, 257})
      expect((log.*report)(L"%s", kLong.substr(0, length).c_str()), kCut.substr(0, length) + L"\n");
  }
  EXPECT_EQ(log.taskDialog(L"text", nullptr, nullptr, 0), 2);
}

TEST(ErrLog, TellsWhenAReportIsLost) {
  std::wostringstream out;
  Log log(&out);
  {
    const HeldElsewhere held(log);
    for (const int code : {log.error(L"f", L"g", 1, L"t"), log.warning(L"f", 1, L"t"),
                           log.trace(L"t"), log.prompt(L"t")})
      EXPECT_EQ(code, ZoResult::refused);
  }
  EXPECT_EQ(out.str(), L"");

  out.setstate(std::ios::badbit);
  EXPECT_EQ(log.trace(L"t"), ZoResult::refused);
  EXPECT_TRUE(out.bad()) << "the stream is its owner's";
  out.clear();
  out.exceptions(std::ios::badbit);
  EXPECT_EQ(log.trace(L"t"), 0);
  struct Failing : std::wstreambuf {
    int_type overflow(int_type) override { throw std::runtime_error("full"); }
  } failing;
  out.std::wios::rdbuf(&failing);
  EXPECT_THROW(log.trace(L"t"), std::runtime_error);
  EXPECT_EQ(zo::test::inOtherThread([&] { return log.waitToWrite(); }), 0) << "the guard is free";
}

TEST(ErrLog, NullMeansTheStandardErrorStreamOfTheMoment) {
  Sink sink;
  ZoErrLog log(nullptr);
  std::wstreambuf* const before = std::wcerr.rdbuf(&sink);
  sink.accepts = false;
  const int lost = log.trace(L"one");
  sink.accepts = true;
  const int next = log.prompt(L"two");
  std::wcerr.rdbuf(before);
  EXPECT_EQ(lost, ZoResult::refused);
  EXPECT_EQ(next, 0) << "a lost report does not silence the stream";
  EXPECT_TRUE(sink.str().ends_with(L"two\n"));
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
  const ZoComException coded(file, function, -9, 7, false);
  EXPECT_TRUE(coded.errCode() == -9 && coded.position() == 7 && !coded.asError());

  const wchar_t* const messages[] = {L"", L"Internal Error", L"Out of Memory", L"Invalid Argument",
                                     L"Internal Error"};
  for (int i = 0; i < 5; ++i)
    EXPECT_STREQ(ZoComException(file, file, i, 0, 1).message(), messages[i]);
  EXPECT_STREQ(worded.message(), text);
}

TEST(ComException, ReportsThroughTheErrorServiceInForce) {
  EXPECT_EQ(ZoComException().report(), 1) << "without any service";
  const zo::test::Attached attached;
  std::wostringstream out;
  ZoErrLog log(&out);
  ZoSystem::setError(&log);
  EXPECT_EQ(ZoComException(L"f", L"g", 2, 7, false).report(), 2);
  EXPECT_EQ(ZoComException(L"f", L"g", 0, 7, true).report(), 1);
  EXPECT_EQ(out.str(), L"");
  EXPECT_EQ(ZoComException(L"f", L"g", L"text", 7, true).report(), 1);
  EXPECT_EQ(out.str(), L"\n\n*** Error: text\nfilename: f\nfunction: g\nposition: 7\n");
}

TEST(ComException, IsCaughtAsItselfAndAsAStandardException) {
  struct Mine : ZoComException {
    using ZoComException::ZoComException;
    const wchar_t* message() const override { return L"M\u00E4\u03C0"; }
  };
  const Mine mine(L"f", L"g", 3, 7, false);
  EXPECT_THROW(zoThrow(mine), Mine);
  try {
    zoThrow(static_cast<const ZoComException&>(mine));
  } catch (const ZoComException& e) {
    EXPECT_EQ(e.errCode(), 3);
    // Of the exception given, whatever it is thrown as.
    EXPECT_STREQ(dynamic_cast<const std::exception&>(e).what(), "M\xE4p");
  }
  for (const std::size_t length : {0u, 84u, 85u, 86u, 1000u}) {
    char what[zo::kWhatSize];
    zo::copyWhat(what, std::wstring(length, L'x').c_str());
    EXPECT_EQ(std::string(what), std::string(std::min<std::size_t>(length, 85), 'x'));
  }
}

}  // namespace
