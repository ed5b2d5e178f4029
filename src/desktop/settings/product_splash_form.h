#pragma once

#include <QTimer>

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The program's first page, and its notices from the Help menu: product, warranty, and what came with the guides of
/// the Database. Closes itself; any key and any click close it at once, and the wheel, which scrolls, gives it its time
/// anew. The argument "Milliseconds" sets that time.
class ProductSplashFormPantone : public Dialog {
  Q_OBJECT

 public:
  ProductSplashFormPantone(WindowList& windowList, QWidget* owner);
  ~ProductSplashFormPantone() override;
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdClose_Click() { accept(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QTimer* close_;
};

}  // namespace vellumark::desktop
