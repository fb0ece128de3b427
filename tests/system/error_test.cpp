#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/err_log.h>
#include <zo/system/exception.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

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
  const auto written = [&] {
    const std::wstring text = sink.str();
    sink.str(L"");
    EXPECT_EQ(std::exchange(sink.flushes, 0), text.empty() ? 0 : 1);
    return text;
  };
  // Neither flags nor locale of the stream may change a report.
  struct Grouping : std::numpunct<wchar_t> {
    std::string do_grouping() const override { return "\1"; }
  };
  out.imbue(std::locale(out.getloc(), new Grouping));
  out << std::hex << std::showbase << std::setw(20);

  EXPECT_EQ(log.error(L"f.cpp", L"load", 1234, L"100 %d of %s"), 0);
  EXPECT_EQ(written(),
            L"\n\n*** Error: 100 %d of %s\nfilename: f.cpp\nfunction: load\nposition: 1234\n");
  EXPECT_EQ(log.error(nullptr, nullptr, std::numeric_limits<int>::min(), nullptr), 0);
  EXPECT_EQ(written(), L"\n\n*** Error: position: -2147483648\n");
  EXPECT_EQ(log.error(L"", L"", 0, L""), 0);
  EXPECT_EQ(written(), L"\n\n*** Error: \nfilename: \nfunction: \nposition: 0\n");
  EXPECT_EQ(log.error(nullptr, nullptr, 0, kLong.c_str()), 0);
  EXPECT_EQ(written(), L"\n\n*** Error: " + kLong + L"\nposition: 0\n") << "not formatted: not cut";

  EXPECT_EQ(log.warning(L"f.cpp", 7, L"%d of %s", 3, L"%s"), 0);
  EXPECT_EQ(written(), L"\n\n*** Warning: 3 of %s\nfilename: f.cpp\nposition: 7\n");
  EXPECT_EQ(log.warning(nullptr, 7, nullptr), 0);
  EXPECT_EQ(written(), L"\n\n*** Warning: \nposition: 7\n");
  EXPECT_EQ(log.warning(nullptr, 0, L"%s", kLong.c_str()), 0);
  EXPECT_EQ(written(), L"\n\n*** Warning: " + kCut + L"\nposition: 0\n");

  for (int (ZoError::*report)(const wchar_t*, ...) : {&ZoError::trace, &ZoError::prompt}) {
    EXPECT_EQ((log.*report)(nullptr), ZoResult::refused);
    EXPECT_EQ(written(), L"");
    EXPECT_EQ((log.*report)(L"%5.1f|%s", 2.5, L"\u03C0"), 0);
    EXPECT_EQ(written(), L"  2.5|\u03C0\n");
    for (const std::size_t length : {255, 256, 257, 100000}) {
      EXPECT_EQ((log.*report)(L"%s", std::wstring(length, L'x').c_str()), 0);
      EXPECT_EQ(written(), kCut.substr(0, length) + L"\n") << length;
    }
  }
  EXPECT_EQ(log.taskDialog(L"text", nullptr, nullptr, 0), 2);
  EXPECT_EQ(written(), L"");
}

TEST(ErrLog, TellsWhenAReportIsLost) {
  std::wostringstream out;
  Log log(&out);
  {
    const HeldElsewhere held(log);
    EXPECT_EQ(log.error(L"f", L"g", 1, L"t"), ZoResult::refused);
    EXPECT_EQ(log.warning(L"f", 1, L"t"), ZoResult::refused);
    EXPECT_EQ(log.trace(L"t"), ZoResult::refused);
    EXPECT_EQ(log.prompt(L"t"), ZoResult::refused);
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
  Sink first, second;
  ZoErrLog log(nullptr);
  std::wstreambuf* const before = std::wcerr.rdbuf(&first);
  EXPECT_EQ(log.trace(L"one"), 0);
  std::wcerr.rdbuf(&second);
  second.accepts = false;
  const int lost = log.trace(L"two");
  second.accepts = true;
  const int next = log.prompt(L"three");
  std::wcerr.rdbuf(before);
  EXPECT_EQ(lost, ZoResult::refused);
  EXPECT_EQ(next, 0) << "a lost report does not silence the stream";
  EXPECT_EQ(first.str(), L"one\n");
  EXPECT_TRUE(second.str().ends_with(L"three\n"));
}

TEST(ComException, ConstructorsAndSettersFillItsFields) {
  struct Case {
    ZoComException exception;
    int code;
    const wchar_t *file, *function, *message;
    int position;
    bool asError;
  };
  const Case cases[] = {
      {{}, 1, nullptr, nullptr, L"Internal Error", 0, true},
      {{L"f", L"g", 0, 7, false}, 0, L"f", L"g", L"", 7, false},
      {{L"f", nullptr, 1, 7, true}, 1, L"f", nullptr, L"Internal Error", 7, true},
      {{nullptr, L"g", 2, -1, true}, 2, nullptr, L"g", L"Out of Memory", -1, true},
      {{L"f", L"g", 3, 7, true}, 3, L"f", L"g", L"Invalid Argument", 7, true},
      {{L"f", L"g", -9, 7, true}, -9, L"f", L"g", L"Internal Error", 7, true},
      {{L"f", L"g", L"text", 7, true}, 1, L"f", L"g", L"text", 7, true},
      {{L"f", L"g", L"", 7, true}, 1, L"f", L"g", L"", 7, true},
      {{L"f", L"g", static_cast<const wchar_t*>(nullptr), 7, true},
       1,
       L"f",
       L"g",
       L"Internal Error",
       7,
       true},
  };
  for (const Case& c : cases) {
    ZoComException set;  // the same by setters, but for the text
    set.setErrCode(c.code);
    set.setFileName(c.file);
    set.setFuncName(c.function);
    set.setPosition(c.position);
    set.setAsError(c.asError);
    ZoComException assigned;
    assigned = c.exception;
    for (const ZoComException& e : {c.exception, assigned, set}) {
      EXPECT_EQ(e.errCode(), c.code);
      EXPECT_STREQ(e.fileName(), c.file);
      EXPECT_STREQ(e.funcName(), c.function);
      EXPECT_EQ(e.position(), c.position);
      EXPECT_EQ(e.asError(), c.asError);
    }
    EXPECT_STREQ(c.exception.message(), c.message);
    EXPECT_STREQ(assigned.message(), c.message);
  }
}

TEST(ComException, LaysItsFieldsOutInOrderBehindTheVirtualTable) {
  const wchar_t *file = L"f", *function = L"g", *text = L"t";
  const ZoComException e(file, function, text, 0x1234567, true);
  const auto* const bytes = reinterpret_cast<const char*>(&e);
  const auto at = [&]<class T>(std::size_t offset, T) {
    T value;
    std::memcpy(&value, bytes + offset, sizeof value);
    return value;
  };
  EXPECT_EQ(at(8, int()), 1);
  EXPECT_EQ(at(16, file), file);
  EXPECT_EQ(at(24, file), function);
  EXPECT_EQ(at(32, file), text);
  EXPECT_EQ(at(40, int()), 0x1234567);
  EXPECT_EQ(at(44, bool()), true);
}

TEST(ComException, ReportsThroughTheErrorServiceInForce) {
  EXPECT_EQ(ZoComException().report(), 1) << "without any service";
  const zo::test::Attached attached;
  std::wostringstream out;
  ZoErrLog log(&out);
  ZoSystem::setError(&log);
  const auto written = [&](const ZoComException& e, int code) {
    out.str(L"");
    EXPECT_EQ(e.report(), code);
    return out.str();
  };
  EXPECT_EQ(written({}, 1), L"\n\n*** Error: Internal Error\nposition: 0\n");
  EXPECT_EQ(written({L"f", L"g", L"text", 7, true}, 1),
            L"\n\n*** Error: text\nfilename: f\nfunction: g\nposition: 7\n");
  EXPECT_EQ(written({L"f", L"g", 2, 7, false}, 2), L"");
  EXPECT_EQ(written({L"f", L"g", 0, 7, true}, 1), L"");
  EXPECT_EQ(written({L"f", L"g", 77, 7, true}, 77),
            L"\n\n*** Error: Internal Error\nfilename: f\nfunction: g\nposition: 7\n");
}

TEST(ComException, IsCaughtAsItselfAndAsAStandardException) {
  struct Mine : ZoComException {
    using ZoComException::ZoComException;
    const wchar_t* message() const override { return L"M\u00E4\u03C0"; }
  };
  const Mine mine(L"f", L"g", 3, 7, false);
  EXPECT_THROW(zoThrow(mine), Mine);
  try {
    zoThrow(mine);
  } catch (const ZoComException& e) {
    EXPECT_EQ(e.errCode(), 3);
    EXPECT_STREQ(e.message(), L"M\u00E4\u03C0");
    EXPECT_STREQ(dynamic_cast<const std::exception&>(e).what(), "M\xE4p");
  }
  try {
    zoThrow(static_cast<const ZoComException&>(mine));
  } catch (const std::exception& e) {
    EXPECT_STREQ(e.what(), "M\xE4p") << "of the exception given, whatever it is thrown as";
  }
  for (const std::size_t length : {0u, 84u, 85u, 86u, 255u, 1000u}) {
    const std::wstring text(length, L'x');
    try {
      zoThrow(ZoComException(L"f", L"g", text.c_str(), 0, false));
    } catch (const std::exception& e) {
      const std::string what = e.what();
      EXPECT_EQ(what, std::string(what.size(), 'x'));
      EXPECT_GE(what.size(), std::min<std::size_t>(length, 85));
    }
  }
}

}  // namespace
