#include "desktop/inventory/scan_tab.h"

#include <QStackedWidget>

#include "core/labels/scan_step.h"
#include "desktop/inventory/scan_capture.h"
#include "desktop/inventory/scan_review.h"

namespace vellumark::desktop {

ScanTab::ScanTab(FormHost& host, Form form) : QObject(&host.Self()), steps_(new QStackedWidget) {
  auto* first = new QWidget;
  auto* second = new QWidget;
  // The tab has its distance already.
  for (QWidget* step : {first, second}) step->setProperty("flush", true);
  steps_->addWidget(first);
  steps_->addWidget(second);
  capture_ = new ScanCapture(host, Form(host, *first));
  review_ = new ScanReview(host, Form(host, *second));
  form.Wide(steps_, 1);
  connect(capture_, &ScanCapture::Changed, this, &ScanTab::Changed);
  connect(review_, &ScanReview::Changed, this, &ScanTab::Changed);
  connect(capture_, &ScanCapture::Process, this, [this, &host](std::vector<ScanRecord> records) {
    {
      const auto wait = host.Wait(WaitKind::WaitingForm, tr("Processing the scan ..."));
      ProcessScan(host.session, records);
    }
    steps_->setCurrentIndex(1);
    review_->Show(std::move(records));
  });
  connect(review_, &ScanReview::Done, this, [this] {
    steps_->setCurrentIndex(0);
    capture_->Clear();
    capture_->Focus();
    Q_EMIT Changed();
  });
}

bool ScanTab::InReview() const {
  return steps_->currentIndex() == 1;
}

bool ScanTab::InProcess() const {
  return InReview() || !capture_->IsEmpty();
}

bool ScanTab::HasUnbooked() const {
  return InReview() ? review_->HasUnbooked() : !capture_->IsEmpty();
}

void ScanTab::Focus() {
  if (!InReview()) capture_->Focus();
}

void ScanTab::FileChanged() {
  if (!InReview()) capture_->FileChanged();
}

void ScanTab::UpdateEnabled() {
  review_->UpdateEnabled();
}

void ScanTab::Process() {
  InReview() ? review_->cmdReProcess() : capture_->cmd_ScanSave();
}

}  // namespace vellumark::desktop
