#include "desktop/labels/label_form.h"

#include <QLayout>
#include <algorithm>

#include "core/colors/names.h"
#include "core/session/settings.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kSquareKey = "labels/qr";
constexpr int kLeastWidth = 96;
constexpr int kHazardWidth = 48;
constexpr std::size_t kFirstColumn = 8;
constexpr std::size_t kFirstMiscCode = kLabelFields - 2;
constexpr std::array<std::string_view, 3> kHazards{"Health", "Fire", "Reactivity"};
// What layouts say themselves.
constexpr std::array<std::string_view, 4> kMiscTexts{"Misc Text 1", "Misc Text 2", "Misc Text 3", "Misc Text 4"};

// In the order of the fields.
constexpr std::array<const char*, kLabelFields> kCaptions{
    QT_TRANSLATE_NOOP("LabelForm", "Color &Name"),   QT_TRANSLATE_NOOP("LabelForm", "Color Code"),
    QT_TRANSLATE_NOOP("LabelForm", "Database"),      QT_TRANSLATE_NOOP("LabelForm", "Batch ID #"),
    QT_TRANSLATE_NOOP("LabelForm", "Date"),          QT_TRANSLATE_NOOP("LabelForm", "Lot Number"),
    QT_TRANSLATE_NOOP("LabelForm", "Lot Location"),  QT_TRANSLATE_NOOP("LabelForm", "Lot Cont ID"),
    QT_TRANSLATE_NOOP("LabelForm", "&Job Number"),   QT_TRANSLATE_NOOP("LabelForm", "Username"),
    QT_TRANSLATE_NOOP("LabelForm", "Short Note"),    QT_TRANSLATE_NOOP("LabelForm", "Misc. Text &1"),
    QT_TRANSLATE_NOOP("LabelForm", "Misc. Text &2"), QT_TRANSLATE_NOOP("LabelForm", "Misc. Text &3"),
    QT_TRANSLATE_NOOP("LabelForm", "Misc. Text &4"), QT_TRANSLATE_NOOP("LabelForm", "Misc Bar Code Data 1"),
    QT_TRANSLATE_NOOP("LabelForm", "Misc Bar Code Data 2"),
};

}  // namespace

LabelForm::LabelForm(WindowList& windowList, PrintDevices devices)
    : LabelWindow(windowList, WindowsOf(LabelKind::Label), tr("Labels"), std::move(devices)) {
  Build([this](Form fields) { BuildFields(fields); }, Command{"cmdGetColorInfo", tr("Get &Data"), Qt::Key_F2});
  fields_[0]->setFocus();
}

void LabelForm::BuildFields(Form form) {
  previous_ = form.Button("cmdPreviousLabel", tr("Previous Label"));
  next_ = form.Button("cmdNextLabel", tr("Next Label"));
  which_ = form.Label("lblLabel");
  form.Row({previous_, next_, which_});
  std::vector<Form> columns = form.Columns(2);
  for (std::size_t i = 0; i < kFirstMiscCode; ++i) FieldOf(columns[i < kFirstColumn ? 0 : 1], i);
  FieldOf(columns[0], kFirstMiscCode);
  for (std::size_t i = 0; i < kHazards.size(); ++i)
    fields_[kLabelFields + i] = Loose(columns[1].Text("txt" + Q(kHazards[i]), TextRule::Any(5)));
  TextField* health = fields_[kLabelFields];
  TextField* fire = fields_[kLabelFields + 1];
  TextField* reactivity = fields_[kLabelFields + 2];
  columns[1].Row(tr("Health, Fire, React."), {health, fire, reactivity});
  for (std::size_t i = 0; i < kHazards.size(); ++i) {
    fields_[kLabelFields + i]->setFixedWidth(kHazardWidth);
    fields_[kLabelFields + i]->setAccessibleName(Q(kHazards[i]));
  }
  FieldOf(columns[1], kFirstMiscCode + 1);
  identifiers_ = Loose(form.Check("chk_BC_Identifier", tr("Add data identifiers to the barcode used on the label.")));
  identifiers_->setToolTip(
      tr("These are the five key fields currently used within Vellumark that ensure scanned data is processed "
         "correctly. Checked ensures barcoded data will work properly within Vellumark. Unchecked will create barcodes "
         "that can be used in other software."));
  identifiers_->setChecked(GetSetting(session, setting::BC_Label_Prefix_Identifier));
  connect(identifiers_, &QCheckBox::toggled, this,
          [this](bool on) { StoreSettings(session, {setting::BC_Label_Prefix_Identifier.To(on)}); });
  form.Wide(identifiers_);
  square_ = Loose(form.Check("chkQRCode", tr("Add one QR Code with all of the data")));
  square_->setToolTip(tr("One scan instead of five: each field with its identifier, a line each."));
  square_->setChecked(memory::Recall(kSquareKey).toBool());
  connect(square_, &QCheckBox::toggled, this, [](bool on) { memory::Keep(kSquareKey, on); });
  form.Wide(square_);
  form.Stretch();
}

TextField* LabelForm::FieldOf(Form& form, std::size_t field) {
  const LabelField& known = LabelFields()[field];
  TextField* text = Loose(form.Text(Q(known.control), TextRule::Any(static_cast<int>(known.longest))));
  text->setMinimumWidth(std::min(text->minimumWidth(), kLeastWidth));
  fields_[field] = text;
  QLabel* caption = form.Row(tr(kCaptions[field]), text);
  if (known.lot) lotRows_.insert(lotRows_.end(), {text, caption});
  // What a scanner types stands without its tag, a guide's colour in the guide's capitals.
  connect(text, &TextField::Left, this, [text, field] {
    if (HasScanTag(text->Text())) text->SetText(StripScanTag(text->Text()));
    if (field == 0 && text->text().startsWith(Q(kPantonePrefix), Qt::CaseInsensitive))
      text->SetText(std::string(kPantonePrefix) + text->Text().substr(kPantonePrefix.size()));
  });
  return text;
}

void LabelForm::UpdateEnabled() {
  if (square_ == nullptr) return;
  const bool lots = session.InvLotTracking == 1;
  for (QWidget* part : lotRows_) part->setVisible(lots);
  if (!showing_) Read();
  for (QWidget* part : std::initializer_list<QWidget*>{previous_, next_, which_}) part->setVisible(labels_.size() > 1);
  previous_->setEnabled(shown_ > 0);
  next_->setEnabled(shown_ + 1 < labels_.size());
  which_->setText(tr("Label %1 of %2").arg(shown_ + 1).arg(labels_.size()));
  LabelWindow::UpdateEnabled();
}

std::string& LabelForm::TextOf(LabelData& data, std::size_t field) {
  return field < kLabelFields ? data.texts[field] : data[kHazards.at(field - kLabelFields)];
}

void LabelForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Labels")) Take(arguments.Get<std::vector<LabelData>>("Labels"));
}

void LabelForm::Take(std::vector<LabelData> labels) {
  if (labels.empty()) return;
  LabelData own = DataOfLayout(session, Layout());
  for (LabelData& data : labels)
    for (std::size_t i = 0; i < kTexts; ++i)
      if (TextOf(data, i).empty()) TextOf(data, i) = TextOf(own, i);
  labels_ = std::move(labels);
  Show(0);
  SetCount(static_cast<int>(labels_.size()));
}

void LabelForm::Show(std::size_t label) {
  showing_ = true;
  shown_ = label;
  for (std::size_t i = 0; i < kTexts; ++i) fields_[i]->SetText(TextOf(labels_[shown_], i));
  showing_ = false;
  Changed();
}

void LabelForm::Read() {
  LabelData& data = labels_[shown_];
  LabelData before = data;
  for (std::size_t i = 0; i < kTexts; ++i) TextOf(data, i) = fields_[i]->Text();
  // What is typed over is another colour or lot than the one on file.
  const auto changed = [&](std::string_view item) { return data[item] != before[item]; };
  if (changed("Color Name") || changed("Database")) data.kind.reset();
  if (!data.kind || changed("Lot Number") || changed("Lot Cont ID")) data.LotRefID = 0;
}

void LabelForm::LayoutChosen(const std::string& layout) {
  LabelData own = DataOfLayout(session, layout);
  for (LabelData& data : labels_) {
    for (const std::string_view item : kMiscTexts) data[item] = own[item];
    for (const std::string_view item : kHazards) data[item] = own[item];
    for (std::size_t i = kFirstMiscCode; i < kLabelFields; ++i) data.texts[i].clear();
  }
  Show(shown_);
}

void LabelForm::ClearFields() {
  labels_.assign(1, DataOfLayout(session, Layout()));
  Show(0);
  fields_[0]->setFocus();
}

LabelOptions LabelForm::Options() const {
  return {.identifiers = identifiers_->isChecked(), .qrCode = square_->isChecked()};
}

Result<std::vector<LabelDrawing>> LabelForm::Draw(const std::string& layout) {
  for (std::size_t i = kFirstMiscCode; i < kLabelFields; ++i) {
    const bool typed =
        LabelSetting(session, LabelKind::Label, layout, std::string(LabelFields()[i].item) + " Combined").empty();
    fields_[i]->setReadOnly(!typed);
    fields_[i]->setToolTip(typed ? QString() : tr("The layout puts it together from other fields."));
  }
  std::vector<LabelDrawing> drawings;
  for (LabelData& data : labels_) {
    if (const auto combined = CombineMiscBarCodes(session, layout, data); !combined)
      return std::unexpected(combined.error());
    drawings.push_back(DrawLabel(session, layout, data, Options()));
  }
  showing_ = true;
  for (std::size_t i = kFirstMiscCode; i < kLabelFields; ++i)
    if (fields_[i]->isReadOnly()) fields_[i]->SetText(labels_[shown_].texts[i]);
  showing_ = false;
  return drawings;
}

void LabelForm::cmdPreviousLabel_Click() {
  if (shown_ > 0) Show(shown_ - 1);
}

void LabelForm::cmdNextLabel_Click() {
  if (shown_ + 1 < labels_.size()) Show(shown_ + 1);
}

void LabelForm::cmdGetColorInfo_Click() {
  const auto chosen = windows.RunDialog("LabelDataSelection");
  if (!chosen || !chosen->Has("Labels")) return;
  Take(chosen->Get<std::vector<LabelData>>("Labels"));
  fields_[0]->setFocus();
}

// ---- The last labels again

QVariantMap LabelForm::Filled() const {
  QVariantList all;
  for (LabelData data : labels_) {
    QStringList texts;
    for (std::size_t i = 0; i < kTexts; ++i) texts += Q(TextOf(data, i));
    texts << (!data.kind ? "" : *data.kind == ColorKind::Mix ? "2" : "1") << QString::number(data.LotRefID);
    all += QVariant(texts);
  }
  return {{"Data", all}, {"Identifiers", identifiers_->isChecked()}, {"QRCode", square_->isChecked()}};
}

void LabelForm::Fill(const QVariantMap& filled) {
  std::vector<LabelData> labels;
  for (const QVariant& one : filled["Data"].toList()) {
    const QStringList texts = one.toStringList();
    if (texts.size() != static_cast<qsizetype>(kTexts) + 2) continue;
    LabelData data;
    for (std::size_t i = 0; i < kTexts; ++i) TextOf(data, i) = U8(texts[static_cast<qsizetype>(i)]);
    if (const QString& kind = texts[kTexts]; !kind.isEmpty()) data.kind = kind == "2" ? ColorKind::Mix : ColorKind::Basic;
    data.LotRefID = texts[kTexts + 1].toInt();
    labels.push_back(std::move(data));
  }
  if (labels.empty()) return;
  labels_ = std::move(labels);
  Show(0);
  identifiers_->setChecked(filled["Identifiers"].toBool());
  square_->setChecked(filled["QRCode"].toBool());
}

}  // namespace vellumark::desktop
