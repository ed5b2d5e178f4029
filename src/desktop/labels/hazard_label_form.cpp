#include "desktop/labels/hazard_label_form.h"

#include <QGridLayout>
#include <QPainter>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/labels/pictogram_names.h"
#include "paper/label_painter.h"

namespace vellumark::desktop {
namespace {

struct Entry {
  const char* control;
  const char* caption;
  int lines;
};
// In the order of the items.
constexpr std::array<Entry, 9> kTexts{{
    {"txtSignalWord", QT_TRANSLATE_NOOP("GH_LabelForm", "&Signal Word"), 1},
    {"txtProduct", QT_TRANSLATE_NOOP("GH_LabelForm", "P&roduct"), 1},
    {"txtHazardStatement", QT_TRANSLATE_NOOP("GH_LabelForm", "&Hazard Statement"), 2},
    {"txtPrecautionaryStatement", QT_TRANSLATE_NOOP("GH_LabelForm", "Preca&utionary Statement"), 2},
    {"txtBusinessAddress", QT_TRANSLATE_NOOP("GH_LabelForm", "Business &Address"), 3},
    {"txtText1", QT_TRANSLATE_NOOP("GH_LabelForm", "Misc. Text &1"), 1},
    {"txtText2", QT_TRANSLATE_NOOP("GH_LabelForm", "Misc. Text &2"), 1},
    {"txtText3", QT_TRANSLATE_NOOP("GH_LabelForm", "Misc. Text &3"), 1},
    {"txtText4", QT_TRANSLATE_NOOP("GH_LabelForm", "Misc. Text &4"), 1},
}};
constexpr std::size_t kFirstMisc = 5;
constexpr int kLongest = 250;
constexpr int kIconSize = 40;
constexpr int kAcross = 3;

QIcon PictogramIcon(int number, double ratio) {
  QPixmap picture(QSize(kIconSize, kIconSize) * ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  paper::PaintPictogram(painter, number, picture.rect());
  painter.end();
  picture.setDevicePixelRatio(ratio);
  return picture;
}

}  // namespace

GH_LabelForm::GH_LabelForm(WindowList& windowList, PrintDevices devices)
    : LabelWindow(windowList, WindowsOf(LabelKind::Hazard), tr("Hazard Labels"), std::move(devices)) {
  Build([this](Form fields) { BuildFields(fields); });
  texts_[0]->setFocus();
}

void GH_LabelForm::BuildFields(Form form) {
  for (std::size_t i = 0; i < kFirstMisc; ++i) {
    if (kTexts[i].lines > 1)
      texts_[i] = Loose(form.Note(kTexts[i].control, kTexts[i].lines));
    else
      texts_[i] = Loose(form.Text(kTexts[i].control, TextRule::Any(kLongest)));
    form.Row(tr(kTexts[i].caption), texts_[i]);
  }
  BuildPictograms(form);
  std::vector<Form> columns = form.Columns(2);
  for (std::size_t i = kFirstMisc; i < kTexts.size(); ++i) {
    Form& column = columns[(i - kFirstMisc) / 2];
    texts_[i] = Loose(column.Text(kTexts[i].control, TextRule::Any(kLongest)));
    column.Row(tr(kTexts[i].caption), texts_[i]);
  }
}

void GH_LabelForm::BuildPictograms(Form& form) {
  auto* box = new QWidget(this);
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(space::kUnit);
  // The style of a check box sets the least height of its own.
  box->setMinimumHeight(static_cast<int>(kPictograms) / kAcross * (kIconSize + space::kUnit));
  for (std::size_t i = 0; i < kPictograms; ++i) {
    const int number = static_cast<int>(i) + 1;
    CheckField* check = pictograms_[i] =
        Loose(form.Check(QStringLiteral("chkPicto%1").arg(number), PictogramName(i)));
    check->setIcon(PictogramIcon(number, devicePixelRatioF()));
    check->setIconSize({kIconSize, kIconSize});
    grid->addWidget(check, static_cast<int>(i) / kAcross, static_cast<int>(i) % kAcross);
  }
  form.Wide(box);
}

QString GH_LabelForm::TextOf(std::size_t item) const {
  const auto* note = qobject_cast<NoteField*>(texts_[item]);
  return note != nullptr ? note->toPlainText() : qobject_cast<TextField*>(texts_[item])->text();
}

void GH_LabelForm::SetText(std::size_t item, const QString& text) {
  if (auto* note = qobject_cast<NoteField*>(texts_[item]))
    note->setPlainText(text);
  else
    qobject_cast<TextField*>(texts_[item])->setText(text);
}

SmallLabelData GH_LabelForm::Data() const {
  SmallLabelData data;
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    std::string text = U8(TextOf(i));
    text.erase(text.find_last_not_of(" \n") + 1);
    data.texts.emplace_back(HazardItems()[i], std::move(text));
  }
  data.pictograms.emplace();
  for (std::size_t i = 0; i < kPictograms; ++i) (*data.pictograms)[i] = pictograms_[i]->isChecked();
  return data;
}

Result<std::vector<LabelDrawing>> GH_LabelForm::Draw(const std::string& layout) {
  return std::vector<LabelDrawing>{DrawSmallLabel(session, LabelKind::Hazard, layout, Data())};
}

void GH_LabelForm::LayoutChosen(const std::string& layout) {
  for (std::size_t i = 0; i < kPictograms; ++i)
    pictograms_[i]->setChecked(LabelNumber(session, LabelKind::Hazard, layout, PictogramItem(i) + " Visible") == 1);
}

void GH_LabelForm::ClearFields() {
  for (std::size_t i = 0; i < texts_.size(); ++i) SetText(i, {});
  LayoutChosen(Layout());
  texts_[0]->setFocus();
}

QVariantMap GH_LabelForm::Filled() const {
  QVariantMap filled;
  for (std::size_t i = 0; i < texts_.size(); ++i) filled[kTexts[i].control] = TextOf(i);
  for (const CheckField* check : pictograms_) filled[check->objectName()] = check->isChecked();
  return filled;
}

void GH_LabelForm::Fill(const QVariantMap& filled) {
  for (std::size_t i = 0; i < texts_.size(); ++i) SetText(i, filled[kTexts[i].control].toString());
  for (CheckField* check : pictograms_) check->setChecked(filled[check->objectName()].toBool());
}

}  // namespace vellumark::desktop
