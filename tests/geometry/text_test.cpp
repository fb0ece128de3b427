// Stream output, narrow and wide.
#include <iomanip>
#include <locale>
#include <sstream>

#include "geometry/reference.h"

namespace {

// A locale with a decimal comma, whatever is installed.
template <typename Char>
class Comma : public std::numpunct<Char> {
  Char do_decimal_point() const override { return ','; }
};

template <typename Value>
void expectText(const Value& value, const std::string& expected) {
  std::ostringstream narrow;
  narrow.imbue(std::locale(narrow.getloc(), new Comma<char>));
  narrow << value;
  EXPECT_EQ(narrow.str(), expected);
  std::wostringstream wide;
  wide.imbue(std::locale(wide.getloc(), new Comma<wchar_t>));
  wide << value;
  EXPECT_EQ(wide.str(), std::wstring(expected.begin(), expected.end()));
}

}  // namespace

TEST(GeometryText, EveryValuePrintsItsNumbersWithADecimalPointInEveryLocale) {
  expectText(ZoVector(1, -2.5, 1e-10), "(1, -2.5, 1e-10)");
  expectText(ZoPoint(1, -2.5, 3), "(1, -2.5, 3)");
  expectText(ZoTol(0.5, 1e-10), "0.5(Pnt) 1e-10(Vec)");
  expectText(ZoPlane(ZoPoint(1, 2, 3), ZoVector(0, 0, 4.5)), "RefPnt(1, 2, 3) Normal(0, 0, 4.5)");
  expectText(ZoCoSystem(ZoPoint(1, 2, 3), ZoVector(0, 2, 0), ZoVector(0, 0, 2)),
             "Origin(1, 2, 3) X-Axis(0, 1, 0) Y-Axis(0, 0, 1) Z-Axis(1, 0, 0)");
  expectText(ZoMatrix().setToTranslation(ZoVector(4, 5, 6)),
             "((1, 0, 0, 4), (0, 1, 0, 5), (0, 0, 1, 6), (0, 0, 0, 1))");
}

TEST(GeometryText, StreamFormatAppliesToNumbersAndWidthToTheWhole) {
  std::ostringstream out;
  out << std::fixed << std::setprecision(2) << std::setfill('.') << std::left << std::setw(24)
      << ZoVector(1, 2, 3.456) << '|' << ZoPoint(1, 2, 3);
  EXPECT_EQ(out.str(), "(1.00, 2.00, 3.46)......|(1.00, 2.00, 3.00)");
}
