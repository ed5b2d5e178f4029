#include "desktop/scale/wait_form_scale_boot.h"

#include <QLayout>
#include <QProgressBar>
#include <QTimer>

#include "desktop/kit/look.h"
#include "desktop/scale/bench_scale.h"

namespace vellumark::desktop {
namespace {

constexpr int kWidth = 360;

}  // namespace

WaitForm_ScaleBoot::WaitForm_ScaleBoot(WindowList& windowList, QWidget* owner, BenchScale& scale)
    : Dialog(windowList, owner, "WaitForm_ScaleBoot", tr("The Vellumark")) {
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  setWindowModality(Qt::ApplicationModal);
  setFocusPolicy(Qt::StrongFocus);  // keys have to go somewhere
  Form form(*this);
  text_ = form.Label("lblMessage");
  text_->setFont(Look::Heading());
  text_->setMinimumWidth(kWidth);
  form.Wide(text_);
  bar_ = new QProgressBar;
  bar_->setObjectName("pbProgress");
  bar_->setAccessibleName(tr("Progress"));
  bar_->setRange(0, 1000);
  bar_->setTextVisible(false);
  form.Wide(bar_);
  form.Wide(left_ = form.Hint(" ", "lblLeft"));
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  connect(&scale, &BenchScale::Booting, this, &WaitForm_ScaleBoot::ShowBoot);
}

void WaitForm_ScaleBoot::OnOpen(const Arguments& arguments) {
  work_ = arguments.Get<std::function<void()>>("Work");
  QTimer::singleShot(0, this, [this] {
    work_();
    over_ = true;
    accept();
  });
}

void WaitForm_ScaleBoot::ShowBoot(const QString& text, double part, int left) {
  text_->setText(text);
  bar_->setValue(static_cast<int>(part * 1000));
  left_->setText(tr("%1 s left").arg((left + 999) / 1000));
}

}  // namespace vellumark::desktop
