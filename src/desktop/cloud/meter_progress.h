#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>

#include "core/base/seams.h"

namespace vellumark::desktop {

/// Shows work in the window that does it: a line of text and a meter, which can be seen while the work lasts. The window
/// goes on to paint and to hear its Cancel meanwhile.
class MeterProgress final : public Progress {
 public:
  MeterProgress(QLabel& text, QProgressBar& meter);
  void Begin(std::string_view text) override;
  void Percent(double percent) override;
  bool Cancelled() override;

  /// From here on it runs, and nobody has cancelled yet.
  void Start();
  void Finish();
  void Cancel() { cancelled_ = true; }
  bool IsRunning() const { return running_; }

 private:
  void Pump();

  QPointer<QLabel> text_;
  QPointer<QProgressBar> meter_;
  QElapsedTimer pumped_;
  bool running_ = false;
  bool cancelled_ = false;
};

/// The meter as it stands in a window: a bar without figures, which keeps its place while it is hidden.
QProgressBar* MakeMeter(const QString& name);

}  // namespace vellumark::desktop
