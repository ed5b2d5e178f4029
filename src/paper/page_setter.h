#pragma once

#include <QString>
#include <cstdint>
#include <vector>

#include "paper/page.h"
#include "paper/page_options.h"

namespace vellumark::paper {

/// Sets pages one after the other, each in the same frame: the system's name, the title, caption and page number,
/// Database and time above, the notice below.
class PageSetter {
 public:
  PageSetter(const PageOptions& options, const Typeface& typeface, QString title, QString subtitle, PageSink sink);

  const Typeface& Face() const { return typeface_; }
  double Across() const { return page_.area.width(); }
  /// Where the next line begins, and how much is left below it.
  double Top() const { return top_; }
  double Room() const { return bottom_ - top_; }
  /// What a page holds.
  double Body() const { return bottom_ - firstTop_; }
  void Down(double points) { top_ += points; }

  /// A text in a line that begins `below` points under Top().
  void Put(double x, const QString& text, double size, bool bold, double below = 0);
  void PutRight(double right, const QString& text, double size, bool bold, double below = 0);
  /// A bar code that begins `below` points under Top().
  void PutBars(double x, std::vector<std::uint8_t> widths, double module, double height, double below = 0);
  /// Across the page, or from `left` to `right`.
  void Rule(double below, bool dotted = false);
  void Rule(double left, double right, double below);

  /// In the middle of the page, under Top().
  void Picture(const QByteArray& svg, double wide, double high);
  /// From `left`, under Top().
  void Photo(QImage photo, double left, double wide, double high);

  /// Hands over the page that is set and begins another.
  void TurnPage();
  /// Hands over the last one.
  void Finish();
  /// The sink wants no more.
  bool Stopped() const { return stopped_; }

  static double LineHeight(const Typeface& typeface, double size);

 private:
  void Begin();
  void SetHead();
  void SetFoot();
  void Centered(double topUnits, const QString& text, double size, bool bold, double highUnits);
  void Ends(double topUnits, const QString& left, const QString& right, double size);

  const PageOptions& options_;
  const Typeface& typeface_;
  QString title_;
  QString subtitle_;
  PageSink sink_;
  Page page_;
  int number_ = 0;
  double top_ = 0;
  double firstTop_ = 0;
  double bottom_ = 0;
  bool stopped_ = false;
};

}  // namespace vellumark::paper
