#include "desktop/cloud/meter_progress.h"

#include <QCoreApplication>
#include <algorithm>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kPumpEvery = 40;  // ms
constexpr int kSteps = 1000;

}  // namespace

QProgressBar* MakeMeter(const QString& name) {
  auto* meter = new QProgressBar;
  meter->setObjectName(name);
  meter->setRange(0, kSteps);
  meter->setTextVisible(false);
  QSizePolicy policy = meter->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  meter->setSizePolicy(policy);
  meter->hide();
  return meter;
}

MeterProgress::MeterProgress(QLabel& text, QProgressBar& meter) : text_(&text), meter_(&meter) {}

void MeterProgress::Start() {
  cancelled_ = false;
  running_ = true;
  meter_->setValue(0);
  meter_->show();
  pumped_.start();
}

void MeterProgress::Finish() {
  running_ = false;
  if (meter_ != nullptr) meter_->hide();
}

void MeterProgress::Begin(std::string_view text) {
  if (text_ != nullptr) text_->setText(Q(text));
  if (meter_ != nullptr) meter_->setValue(0);
  Pump();
}

void MeterProgress::Percent(double percent) {
  if (meter_ != nullptr) meter_->setValue(static_cast<int>(std::clamp(percent, 0.0, 100.0) * kSteps / 100));
  if (pumped_.elapsed() >= kPumpEvery) Pump();
}

bool MeterProgress::Cancelled() {
  if (pumped_.elapsed() >= kPumpEvery) Pump();
  return cancelled_;
}

void MeterProgress::Pump() {
  if (!running_) return;
  QCoreApplication::processEvents();
  pumped_.start();
}

}  // namespace vellumark::desktop
