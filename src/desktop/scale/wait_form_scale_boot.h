#pragma once

#include <functional>

#include "desktop/kit/window.h"

class QProgressBar;

namespace vellumark::desktop {

class BenchScale;

/// Stands in front of everything while the scale is switched on or off, with a bar and the seconds that are left; it cannot
/// be closed. Run with {"Work", std::function<void()>}, which it calls once it is there and after which it goes.
class WaitForm_ScaleBoot : public Dialog {
  Q_OBJECT

 public:
  WaitForm_ScaleBoot(WindowList& windowList, QWidget* owner, BenchScale& scale);

  void OnOpen(const Arguments& arguments) override;
  bool MayClose() override { return over_; }

 private:
  void ShowBoot(const QString& text, double part, int left);

  std::function<void()> work_;
  bool over_ = false;
  QLabel* text_;
  QLabel* left_;
  QProgressBar* bar_;
};

}  // namespace vellumark::desktop
