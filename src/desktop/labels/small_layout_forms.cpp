#include "desktop/labels/small_layout_forms.h"

#include <array>

#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/labels/design_surface.h"
#include "desktop/labels/pictogram_names.h"
#include "desktop/labels/sheet_view.h"

namespace vellumark::desktop {
namespace {

constexpr std::array kPictogramSizes{"2", "1.75", "1.50", "1.25", "1", ".75", ".50", ".25"};

SmallLabelData OwnNames(std::span<const std::string_view> items) {
  SmallLabelData data;
  for (const std::string_view item : items) data.texts.emplace_back(item, item);
  return data;
}

}  // namespace

// ---- Hazard labels

GH_LabelLayoutForm::GH_LabelLayoutForm(WindowList& windowList, PrintDevices devices)
    : LayoutWindow(windowList, WindowsOf(LabelKind::Hazard), tr("Hazard Label Layout"), std::move(devices)) {
  Build();
}

void GH_LabelLayoutForm::AddItems(Form& form) {
  AddShown(form, HazardItems());
}

void GH_LabelLayoutForm::AddPages(TabSet& tabs) {
  Form form = Scrolled(*this, tabs.Page(tr("&Pictograms"), "TabPictograms"));
  ComboField* size = Choice(form, "cmbPictoSize", Key("Picto Size"));
  for (const char* inches : kPictogramSizes) size->addItem(tr("%1 in.").arg(inches), QString(inches));
  form.Row(tr("Si&ze"), size);
  for (std::size_t i = 0; i < kPictogramNames.size(); ++i) {
    const std::string item = "Picto_Image " + std::to_string(i + 1);
    CheckField* check = Check(form, QString("Picto_Image%1").arg(i + 1), PictogramName(i), Key(item + " Visible"));
    check->setIcon(QIcon(QString(":/pictograms/%1.svg").arg(i + 1)));
    check->setIconSize({32, 32});
    connect(check, &QCheckBox::clicked, this, [this, item](bool on) {
      if (on) Surface().Select({item});
    });
    form.Wide(check);
  }
}

LabelDrawing GH_LabelLayoutForm::DrawData() {
  return DrawSmallLabel(Design(), {});
}

LabelDrawing GH_LabelLayoutForm::DrawSamples() {
  return DrawSmallLabel(Design(), OwnNames(HazardItems()));
}

// ---- Formula labels

Formula_LabelLayoutForm::Formula_LabelLayoutForm(WindowList& windowList, PrintDevices devices)
    : LayoutWindow(windowList, WindowsOf(LabelKind::Formula), tr("Formula Label Layout"), std::move(devices)) {
  Build();
}

void Formula_LabelLayoutForm::AddItems(Form& form) {
  AddShown(form, FormulaItems());
}

TextField* Formula_LabelLayoutForm::AddSample(Form& form) {
  color_ = form.Name("cmbCN", NamesOnFile(session, NameKind::Formulas));
  connect(color_, &TextField::Left, this, [this](QWidget* to) {
    if (GoesOnWithin(*this, to)) ReadSample();
  });
  connect(color_, &NameBox::Picked, this, [this] { ReadSample(); });
  return color_;
}

void Formula_LabelLayoutForm::ReadSample() {
  if (color_->Name().empty() || Accepted(FormulaLabelData(session, color_->Name()))) RefreshSurface();
}

LabelDrawing Formula_LabelLayoutForm::DrawData() {
  SmallLabelData data;
  if (!color_->Name().empty() && session.DataFileDB)
    data = FormulaLabelData(session, color_->Name()).value_or(SmallLabelData{});
  return DrawSmallLabel(Design(), data);
}

LabelDrawing Formula_LabelLayoutForm::DrawSamples() {
  SmallLabelData names = OwnNames(FormulaItems());
  for (auto& [item, text] : names.texts)
    if (item == "Formula")
      text = U8(tr("First ingredient  50.000\nSecond ingredient  30.000\nThird ingredient  20.000"));
  return DrawSmallLabel(Design(), names);
}

}  // namespace vellumark::desktop
