#include "desktop/kit/wait_progress.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kShowAfter = 80;  // ms: what takes 100 shows a bar
constexpr int kPumpEvery = 40;  // ms: fluent, and no load on the work
constexpr int kWidth = 360;

QString NameOf(WaitKind kind) {
  switch (kind) {
    case WaitKind::WaitForm:
      return "WaitForm";
    case WaitKind::WaitingForm:
      return "WaitingForm";
    case WaitKind::WaitingForm_NoCancel:
      return "WaitingForm_NoCancel";
    case WaitKind::Wait_RestoreData:
      return "Wait_RestoreData";
  }
  return {};
}

}  // namespace

WaitWindow::WaitWindow(WaitKind kind, QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint), kind_(kind) {
  setObjectName(NameOf(kind));
  setWindowTitle(tr("The Vellumark"));
  setWindowModality(Qt::ApplicationModal);
  text_ = new QLabel;
  text_->setObjectName("lblMessage");
  text_->setTextFormat(Qt::PlainText);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(space::kGroup, space::kGroup, space::kGroup, space::kGroup);
  layout->setSpacing(space::kGap);
  layout->addWidget(text_);
  if (kind != WaitKind::WaitForm) {
    bar_ = new QProgressBar;
    bar_->setObjectName("pbProgress");
    bar_->setRange(0, 1000);
    bar_->setTextVisible(false);
    layout->addWidget(bar_);
  }
  if (kind == WaitKind::WaitingForm) {
    cancel_ = new QPushButton(tr("Cancel"));
    cancel_->setObjectName("cmdCancel");
    connect(cancel_, &QPushButton::clicked, this, &WaitWindow::reject);
    layout->addWidget(cancel_, 0, Qt::AlignRight);
  }
  setMinimumWidth(kWidth);
}

void WaitWindow::SetText(const QString& text) {
  text_->setText(QString(text).replace("&&", "&"));  // as a caption would show it
}

void WaitWindow::SetPercent(double percent) {
  if (bar_ != nullptr) bar_->setValue(static_cast<int>(std::clamp(percent, 0.0, 100.0) * 10));
}

void WaitWindow::reject() {
  // The work itself ends the window, once it has heard.
  if (kind_ != WaitKind::WaitingForm) return;
  cancelled_ = true;
  cancel_->setEnabled(false);
}

WaitProgress::~WaitProgress() {
  delete window_;
}

void WaitProgress::Begin(std::string_view text) {
  if (depth_ == 0 && !working_) {
    cancelled_ = false;
    since_.start();
  }
  working_ = true;
  percent_ = 0;
  text_ = Q(text);
  if (window_ != nullptr) {
    window_->SetText(text_);
    window_->SetPercent(0);
  }
  ShowWhenDue();
}

void WaitProgress::Percent(double percent) {
  percent_ = percent;
  ShowWhenDue();
}

bool WaitProgress::Cancelled() {
  ShowWhenDue();
  return cancelled_;
}

void WaitProgress::End() {
  working_ = false;
  if (depth_ == 0) Hide();
}

void WaitProgress::ShowWhenDue() {
  if (!IsBusy()) return;
  if (window_ == nullptr) {
    if (since_.elapsed() < kShowAfter) return;
    ShowNow();
  } else if (pumped_.elapsed() >= kPumpEvery) {
    Pump();
  }
}

void WaitProgress::ShowNow() {
  window_ = new WaitWindow(kind_, QApplication::activeWindow());
  window_->SetText(text_);
  window_->SetPercent(percent_);
  QApplication::setOverrideCursor(kind_ == WaitKind::WaitingForm ? Qt::BusyCursor : Qt::WaitCursor);
  window_->show();
  Pump();
}

void WaitProgress::Pump() {
  window_->SetPercent(percent_);
  // It stood back for a message.
  if (!window_->isVisible()) window_->show();
  QApplication::processEvents();
  pumped_.start();
  if (window_ != nullptr && window_->Cancelled()) cancelled_ = true;
}

void WaitProgress::Hide() {
  if (window_ != nullptr) {
    QApplication::restoreOverrideCursor();
    delete window_;
  }
  if (idle_) idle_();
}

WaitProgress::Scope::Scope(WaitProgress* progress, WaitKind kind, const QString& text, bool atOnce)
    : progress_(progress) {
  if (progress_ == nullptr) return;
  before_ = progress_->kind_;
  if (progress_->depth_++ == 0) {
    progress_->kind_ = kind;
    progress_->cancelled_ = false;
    progress_->text_ = text;
    progress_->percent_ = 0;
    progress_->since_.start();
    if (atOnce) progress_->ShowNow();
  }
}

WaitProgress::Scope::~Scope() {
  if (progress_ == nullptr) return;
  progress_->kind_ = before_;
  if (--progress_->depth_ == 0) {
    progress_->working_ = false;
    progress_->Hide();
  }
}

WaitProgress::OfKind::OfKind(WaitProgress* progress, WaitKind kind) : progress_(progress) {
  if (progress_ != nullptr) before_ = std::exchange(progress_->kind_, kind);
}

WaitProgress::OfKind::~OfKind() {
  if (progress_ != nullptr) progress_->kind_ = before_;
}

}  // namespace vellumark::desktop
