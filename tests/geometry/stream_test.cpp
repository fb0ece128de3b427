// Stream output: one text, narrow and wide, whatever the stream is set to.
#include <gtest/gtest.h>
#include <zo/geometry.h>

#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace {

struct Comma : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

// The text of a value in a stream of either kind, behind manipulators; they stay, the width goes.
template <class Value, class... Manipulators>
std::string streamed(const Value& value, Manipulators... manipulators) {
  std::ostringstream narrow;
  narrow.imbue(std::locale(narrow.getloc(), new Comma));
  (static_cast<void>(narrow << manipulators), ...);
  const auto flags = narrow.flags();
  narrow << value;
  EXPECT_EQ(narrow.flags(), flags);
  EXPECT_EQ(narrow.width(), 0);
  std::wostringstream wide;
  (static_cast<void>(wide << manipulators), ...);
  wide << value;
  const std::string text = narrow.str();
  EXPECT_EQ(wide.str(), std::wstring(text.begin(), text.end()));
  return text;
}

TEST(GeometryStream, PrintsEveryTypeAsItsHeaderSays) {
  EXPECT_EQ(streamed(ZoTol()), "1e-10(Pnt) 1e-10(Vec)");
  EXPECT_EQ(streamed(ZoVector(1, -2.5, 1e100)), "(1, -2.5, 1e+100)");
  EXPECT_EQ(streamed(ZoPoint(0, 1e-7, 1234567)), "(0, 1e-07, 1.23457e+06)");
  EXPECT_EQ(streamed(ZoMatrix()), "((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1))");
  EXPECT_EQ(streamed(ZoMatrix().setToTranslation(ZoVector(7, 8, 9))),
            "((1, 0, 0, 7), (0, 1, 0, 8), (0, 0, 1, 9), (0, 0, 0, 1))");
  EXPECT_EQ(streamed(ZoPlane()), "RefPnt(0, 0, 0) Normal(0, 0, 1)");
  EXPECT_EQ(streamed(ZoCoSystem()),
            "Origin(0, 0, 0) X-Axis(1, 0, 0) Y-Axis(0, 1, 0) Z-Axis(0, 0, 1)");
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(streamed(ZoVector(infinity, -infinity, -0.0)), "(inf, -inf, -0)");
}

TEST(GeometryStream, TakesTheStreamsNumberFormatAndItsWidthForTheWhole) {
  const ZoVector v(1, 2.5, -3);
  EXPECT_EQ(streamed(v, std::fixed, std::setprecision(2)), "(1.00, 2.50, -3.00)");
  EXPECT_EQ(streamed(v, std::scientific, std::setprecision(1)), "(1.0e+00, 2.5e+00, -3.0e+00)");
  EXPECT_EQ(streamed(v, std::showpos), "(+1, +2.5, -3)");
  EXPECT_EQ(streamed(v, std::setw(15)), "   (1, 2.5, -3)");
  EXPECT_EQ(streamed(v, std::setw(15), std::left), "(1, 2.5, -3)   ");
  EXPECT_EQ(streamed(v, std::setw(3)), "(1, 2.5, -3)") << "is never cut";
}

}  // namespace
