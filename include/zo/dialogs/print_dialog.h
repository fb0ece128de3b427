// Choosing a printer, pages and copies; paper and margins.
//
// Errors:  as ZoDialog has it; ZoResult::noPrinter when the machine has none. A printer that is
//          gone gives way to the default one.
// Threads: as ZoDialog has it.
#pragma once

#include <zo/dialogs/dialog.h>
#include <zo/variant/variant.h>

#include <vector>

// A printer as the platform knows it.
struct ZoPrinter {
  ZoString name;  // empty: the default printer
  // The driver's own settings, the platform's DEVMODEW as it lies in memory; empty: the default
  // ones. They belong to this printer and go with another name.
  std::vector<unsigned char> settings;
};

class ZO_COM_API ZoPrintDialog : public ZoDialog {
 public:
  enum Range : int { kAll, kSelection, kPages };

  void setPrinter(ZoPrinter printer) { printer_ = std::move(printer); }
  [[nodiscard]] const ZoPrinter& printer() const noexcept { return printer_; }

  // What can be printed: pages from first to last; 0 and 0 where pages are not counted. Refused
  // when they are not in order or above 65535. A range that does not lie within becomes kAll.
  [[nodiscard]] int setPages(zo::NotNegative<unsigned int> first,
                             zo::NotNegative<unsigned int> last) noexcept;
  // Whether there is a selection. Where there is none any more, its range becomes kAll.
  void setSelection(bool offered) noexcept;
  template <zo::NoTruthValue T>
  void setSelection(T) = delete;  // true or false

  // What is printed; kPages are those from fromPage() to toPage(), which are 0 else. Refused when
  // it is not offered.
  [[nodiscard]] int setRange(Range range, zo::NotNegative<unsigned int> from = 0U,
                             zo::NotNegative<unsigned int> to = 0U) noexcept;
  [[nodiscard]] Range range() const noexcept { return range_; }
  [[nodiscard]] unsigned int fromPage() const noexcept { return from_; }
  [[nodiscard]] unsigned int toPage() const noexcept { return to_; }

  // From 1 to 9999, whatever the printer's settings say; those that the dialog gives back are for
  // one, since who prints makes the copies.
  [[nodiscard]] int setCopies(zo::NotNegative<unsigned int> copies) noexcept;
  [[nodiscard]] unsigned int copies() const noexcept { return copies_; }
  void setCollated(bool collated) noexcept { collated_ = collated; }
  template <zo::NoTruthValue T>
  void setCollated(T) = delete;  // true or false
  [[nodiscard]] bool isCollated() const noexcept { return collated_; }
  void setToFile(bool toFile) noexcept { toFile_ = toFile; }
  template <zo::NoTruthValue T>
  void setToFile(T) = delete;  // true or false
  [[nodiscard]] bool isToFile() const noexcept { return toFile_; }

 protected:
  int run(HWND__* owner) override;

 private:
  ZoPrinter printer_;
  unsigned int first_ = 0, last_ = 0, from_ = 0, to_ = 0, copies_ = 1;
  Range range_ = kAll;
  bool selection_ = false, collated_ = false, toFile_ = false;
};

// Sizes are lengths: reals of code Length, in mm, rounded to the platform's hundredths. A paper
// that the user leaves as it is stays as it was set, although drivers round its sides by up to
// 0.5 mm.
class ZO_COM_API ZoPageSetupDialog : public ZoDialog {
 public:
  struct Margins {
    ZoVariant left, top, right, bottom;
  };

  ZoPageSetupDialog();

  void setPrinter(ZoPrinter printer) { printer_ = std::move(printer); }
  [[nodiscard]] const ZoPrinter& printer() const noexcept { return printer_; }

  // At first 210 mm wide and 297 mm high; a paper that is wider than high lies on its side. Refused
  // is what is no number, not above 0 when it is rounded, more than 10 m, or leaves nothing between
  // the margins: for a small paper set these first.
  [[nodiscard]] int setPaper(const ZoVariant& width, const ZoVariant& height);
  [[nodiscard]] const ZoVariant& width() const noexcept { return width_; }
  [[nodiscard]] const ZoVariant& height() const noexcept { return height_; }
  // At first 25 mm. Refused is what is no number, below 0, or leaves nothing of the paper.
  [[nodiscard]] int setMargins(const Margins& margins);
  [[nodiscard]] const Margins& margins() const noexcept { return margins_; }

 protected:
  int run(HWND__* owner) override;

 private:
  ZoPrinter printer_;
  ZoVariant width_, height_;
  Margins margins_;
};
