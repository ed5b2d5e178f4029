#pragma once

#include <QScrollArea>
#include <memory>
#include <vector>

#include "paper/page.h"
#include "paper/page_options.h"

namespace vellumark::desktop {

/// The pages as they will be printed, one at a time.
class PagePreview : public QScrollArea {
  Q_OBJECT

 public:
  explicit PagePreview(const QString& name);

  /// How large a page is shown: so many times its real size, or as large as there is room.
  static constexpr double kWholePage = 0;
  static constexpr double kPageWidth = -1;

  void Show(std::vector<paper::Page> pages, const paper::PageOptions& options);
  void SetZoom(double zoom);
  /// To the page of that number, from 0, or the nearest one that there is.
  void TurnTo(int page);
  int PageShown() const { return shown_; }
  int PageCount() const { return static_cast<int>(pages_.size()); }

 Q_SIGNALS:
  void Turned();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  class Sheet;
  void Fit();

  Sheet* sheet_;
  std::vector<paper::Page> pages_;
  std::unique_ptr<paper::Typeface> typeface_;
  QPageLayout layout_;
  double zoom_ = kWholePage;
  int shown_ = 0;
};

}  // namespace vellumark::desktop
