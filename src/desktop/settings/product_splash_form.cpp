#include "desktop/settings/product_splash_form.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/settings/brand_band.h"

namespace vellumark::desktop {
namespace {

constexpr int kWidth = 600;
constexpr int kTextWidth = kWidth - 8 * space::kUnit;

// Time to look at it, and to read the notices: about 25 characters in a second, but nobody waits for long.
constexpr int kShownFor = 4000;
constexpr int kForEachCharacter = 40;
constexpr int kLongest = 15000;

bool IsModifierAlone(const QKeyEvent& key) {
  switch (key.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
      return true;
    default:
      return false;
  }
}

}  // namespace

ProductSplashFormPantone::ProductSplashFormPantone(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ProductSplashFormPantone", tr("The Vellumark")), close_(new QTimer(this)) {
  setWindowFlag(Qt::FramelessWindowHint);
  const QString notices = DatabaseNotices(session);

  auto* product = new QLabel(tr("Production manager for the ink room"));
  product->setObjectName("lblTagLine");
  product->setFont(Look::Heading());
  auto* hint = new QLabel(tr("Press any key to continue."));
  hint->setProperty("role", "hint");
  auto* close = new CommandButton("cmdClose", tr("Close"));
  AdoptButton(*close, [this] { cmdClose_Click(); });
  SetDefaultButton(close);

  auto* bottom = new QHBoxLayout;
  bottom->addWidget(hint);
  bottom->addStretch();
  bottom->addWidget(close);
  auto* words = new QVBoxLayout;
  words->setContentsMargins(4 * space::kUnit, space::kUnit, 4 * space::kUnit, space::kGroup);
  words->setSpacing(space::kGap);
  words->addWidget(product);
  words->addWidget(ReadingText(WarrantyText(), "lblWarranty", kTextWidth));
  if (!notices.isEmpty()) {
    auto* heading = new QLabel(tr("%1 Database").arg(Q(session.CurrentDatabase)));
    heading->setFont(Look::Heading());
    words->addSpacing(space::kUnit);
    words->addWidget(heading);
    words->addWidget(ReadingText(notices, "lblDisclaimer", kTextWidth));
  }
  words->addSpacing(space::kUnit);
  words->addLayout(bottom);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(1, 1, 1, 1);
  layout->setSpacing(0);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(new BrandBand);
  layout->addLayout(words);

  close->setFocus();
  close_->setObjectName("tmrClose");
  close_->setSingleShot(true);
  close_->setInterval(std::min<int>(kShownFor + kForEachCharacter * static_cast<int>(notices.size()), kLongest));
  connect(close_, &QTimer::timeout, this, &ProductSplashFormPantone::accept);
  qApp->installEventFilter(this);
}

ProductSplashFormPantone::~ProductSplashFormPantone() {
  qApp->removeEventFilter(this);
}

void ProductSplashFormPantone::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Milliseconds")) close_->setInterval(static_cast<int>(arguments.Number("Milliseconds")));
}

void ProductSplashFormPantone::showEvent(QShowEvent* event) {
  Dialog::showEvent(event);
  close_->start();
}

bool ProductSplashFormPantone::eventFilter(QObject* watched, QEvent* event) {
  const auto* widget = qobject_cast<QWidget*>(watched);
  const bool mine = widget != nullptr && isVisible() && (widget == this || isAncestorOf(widget));
  if (!mine) return false;
  switch (event->type()) {
    case QEvent::KeyPress:
      if (IsModifierAlone(*static_cast<QKeyEvent*>(event))) return false;
      accept();
      return true;
    case QEvent::MouseButtonPress:
      accept();
      return true;
    case QEvent::Wheel:
      close_->start();
      return false;
    default:
      return false;
  }
}

void ProductSplashFormPantone::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Look::Now().surface);
  painter.setPen(Look::Now().line);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace vellumark::desktop
