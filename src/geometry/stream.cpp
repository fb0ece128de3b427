// Stream output of the geometry values, narrow and wide from the same text.
#include <zo/geometry.h>

#include <locale>
#include <ostream>
#include <sstream>

namespace {

// Collects the text with the stream's number format, so that its width applies to the whole.
template <typename Char>
class Text {
 public:
  explicit Text(std::basic_ostream<Char>& out) : out_(out) {
    text_.copyfmt(out);
    text_.width(0);
    text_.imbue(std::locale::classic());
  }
  Text& add(const char* ascii) {
    text_ << ascii;
    return *this;
  }
  Text& add(double number) {
    text_ << number;
    return *this;
  }
  Text& add(const char* name, const double* numbers, int count) {
    add(name);
    for (int i = 0; i < count; ++i) add(i == 0 ? "(" : ", ").add(numbers[i]);
    return add(")");
  }
  std::basic_ostream<Char>& send() { return out_ << text_.str(); }

 private:
  std::basic_ostream<Char>& out_;
  std::basic_ostringstream<Char> text_;
};

template <typename Char>
std::basic_ostream<Char>& write(std::basic_ostream<Char>& out, const ZoTol& tol) {
  return Text<Char>(out)
      .add(tol.getPntTol())
      .add("(Pnt) ")
      .add(tol.getVecTol())
      .add("(Vec)")
      .send();
}

template <typename Char>
std::basic_ostream<Char>& write(std::basic_ostream<Char>& out, const ZoVector& v) {
  return Text<Char>(out).add("", v.asDblArray(), 3).send();
}

template <typename Char>
std::basic_ostream<Char>& write(std::basic_ostream<Char>& out, const ZoPoint& p) {
  return Text<Char>(out).add("", p.asDblArray(), 3).send();
}

template <typename Char>
std::basic_ostream<Char>& write(std::basic_ostream<Char>& out, const ZoMatrix& m) {
  Text<Char> text(out);
  for (std::size_t row = 0; row < 4; ++row)
    text.add(row == 0 ? "(" : ", ", m.asDblArray() + 4 * row, 4);
  return text.add(")").send();
}

template <typename Char>
std::basic_ostream<Char>& write(std::basic_ostream<Char>& out, const ZoPlane& plane) {
  return Text<Char>(out)
      .add("RefPnt", plane.refPoint().asDblArray(), 3)
      .add(" Normal", plane.normal().asDblArray(), 3)
      .send();
}

template <typename Char>
std::basic_ostream<Char>& write(std::basic_ostream<Char>& out, const ZoCoSystem& system) {
  return Text<Char>(out)
      .add("Origin", system.origin().asDblArray(), 3)
      .add(" X-Axis", system.xAxis().asDblArray(), 3)
      .add(" Y-Axis", system.yAxis().asDblArray(), 3)
      .add(" Z-Axis", system.zAxis().asDblArray(), 3)
      .send();
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ZoTol& tol) { return write(out, tol); }
std::wostream& operator<<(std::wostream& out, const ZoTol& tol) { return write(out, tol); }
std::ostream& operator<<(std::ostream& out, const ZoVector& v) { return write(out, v); }
std::wostream& operator<<(std::wostream& out, const ZoVector& v) { return write(out, v); }
std::ostream& operator<<(std::ostream& out, const ZoPoint& p) { return write(out, p); }
std::wostream& operator<<(std::wostream& out, const ZoPoint& p) { return write(out, p); }
std::ostream& operator<<(std::ostream& out, const ZoMatrix& m) { return write(out, m); }
std::wostream& operator<<(std::wostream& out, const ZoMatrix& m) { return write(out, m); }
std::ostream& operator<<(std::ostream& out, const ZoPlane& plane) { return write(out, plane); }
std::wostream& operator<<(std::wostream& out, const ZoPlane& plane) { return write(out, plane); }
std::ostream& operator<<(std::ostream& out, const ZoCoSystem& system) { return write(out, system); }
std::wostream& operator<<(std::wostream& out, const ZoCoSystem& system) {
  return write(out, system);
}
