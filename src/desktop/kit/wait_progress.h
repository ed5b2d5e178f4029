#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>
#include <functional>
#include <string>

#include "core/base/seams.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace vellumark::desktop {

/// What a wait window has beside its text: nothing (WaitForm), a bar and Cancel (WaitingForm), a bar alone
/// (WaitingForm_NoCancel, and Wait_RestoreData while a Data File is restored).
enum class WaitKind { WaitForm, WaitingForm, WaitingForm_NoCancel, Wait_RestoreData };

/// A wait window; its objectName is the name of the kind.
class WaitWindow : public QDialog {
  Q_OBJECT

 public:
  WaitWindow(WaitKind kind, QWidget* owner);
  void SetText(const QString& text);
  void SetPercent(double percent);
  bool Cancelled() const { return cancelled_; }
  void reject() override;

 private:
  WaitKind kind_;
  bool cancelled_ = false;
  QLabel* text_;
  QProgressBar* bar_ = nullptr;
  QPushButton* cancel_ = nullptr;
};

/// How the core shows long work on the desktop. A window comes up, in front of everything and shutting the rest off,
/// once the work has lasted 80 ms; from then on it lets the program paint and hear the Cancel button at each report.
class WaitProgress final : public Progress {
 public:
  ~WaitProgress() override;
  void Begin(std::string_view text) override;
  void Percent(double percent) override;
  bool Cancelled() override;
  void End() override;

  /// Holds one wait window over several pieces of work of the core, of the kind that the window wants.
  class Scope {
   public:
    Scope(WaitProgress* progress, WaitKind kind, const QString& text, bool atOnce);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    WaitProgress* progress_;
    WaitKind before_ = WaitKind::WaitingForm_NoCancel;
  };

  /// What the core shows meanwhile it shows in windows of this kind.
  class OfKind {
   public:
    OfKind(WaitProgress* progress, WaitKind kind);
    ~OfKind();
    OfKind(const OfKind&) = delete;
    OfKind& operator=(const OfKind&) = delete;

   private:
    WaitProgress* progress_;
    WaitKind before_ = WaitKind::WaitingForm_NoCancel;
  };

  /// True from Begin to End: no change is delivered to windows in the middle of work.
  bool IsBusy() const { return depth_ > 0 || working_; }
  /// Called when work is over.
  void OnIdle(std::function<void()> heard) { idle_ = std::move(heard); }
  QWidget* Shown() const { return window_; }

 private:
  void ShowWhenDue();
  void ShowNow();
  void Pump();
  void Hide();

  WaitKind kind_ = WaitKind::WaitingForm_NoCancel;
  int depth_ = 0;
  bool working_ = false;
  bool cancelled_ = false;
  double percent_ = 0;
  QString text_;
  QElapsedTimer since_;
  QElapsedTimer pumped_;
  QPointer<WaitWindow> window_;
  std::function<void()> idle_;
};

}  // namespace vellumark::desktop
