#include "desktop/settings/about_form.h"

#include <QPainter>
#include <QVBoxLayout>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/settings/brand_band.h"

namespace vellumark::desktop {
namespace {

constexpr int kWidth = 600;
constexpr int kTextWidth = kWidth - 2 * space::kGroup;

QLabel* Fact(Form& form, const QString& name, const QString& text) {
  QLabel* label = form.Label(name, text.isEmpty() ? AboutForm::tr("none") : text);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  QSizePolicy policy = label->sizePolicy();
  policy.setHorizontalPolicy(QSizePolicy::Expanding);
  label->setSizePolicy(policy);
  return label;
}

QString Libraries() {
  return AboutForm::tr("Made with Qt %1 (LGPL), SQLite (public domain), SQLiteCpp, fmt, nlohmann-json (MIT).")
      .arg(QString::fromLatin1(qVersion()));
}

}  // namespace

AboutForm::AboutForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AboutForm", tr("About The Vellumark")) {
  const QString database =
      session.FullName.empty() ? Q(session.CurrentDatabase) : Q(session.CurrentDatabase + " - " + session.FullName);
  auto* words = new QWidget;
  Form form(*this, *words);
  form.Row(tr("Data File"), Fact(form, "lblDataFileName", Q(session.DataFileName)));
  form.Row(tr("Database"), Fact(form, "lblDatabase", database));
  form.Row(tr("Support Files"), Fact(form, "lblDataFolder", Q(session.DataFolder.string())));
  form.Row(tr("User"), Fact(form, "lblUser", Q(session.CurrentUser)));
  form.Space();
  form.Wide(ReadingText(WarrantyText(), "lblWarranty", kTextWidth));
  if (!session.TradeMark.empty()) form.Wide(ReadingText(Q(session.TradeMark), "lblTradeMark", kTextWidth));
  form.Wide(ReadingText(Libraries(), "lblLibraries", kTextWidth));
  form.Buttons({form.Button("cmdClose", tr("Close"))});

  words->layout()->setContentsMargins(space::kGroup, space::kUnit, space::kGroup, space::kGap);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(new BrandBand);
  layout->addWidget(words, 1);
  findChild<QWidget*>("cmdClose")->setFocus();
}

void AboutForm::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Look::Now().surface);
}

}  // namespace vellumark::desktop
