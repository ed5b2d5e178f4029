#include "desktop/batch/more_data_form.h"

#include "core/base/text.h"
#include "core/batch/more_data.h"
#include "core/session/settings.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/tall_page.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kTextWidth = static_cast<int>(kBatchTextWidth);
constexpr int kLabDecimals = 2;

// A caption of the operator's own: its "&" is no mnemonic.
QString Caption(const std::string& text) {
  return Q(text).replace('&', QStringLiteral("&&"));
}

// A text that the list does not have stands before its first entry, so that Down takes that one.
void ShowChoice(ComboField& combo, const std::string& text) {
  combo.setCurrentIndex(combo.findText(Q(text), Qt::MatchFixedString));
  combo.setEditText(Q(text));
}

}  // namespace

MoreDataForm::MoreDataForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "MoreDataForm", tr("More Data")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  std::vector<Form> columns = form.Columns(2);
  BuildUserFields(columns[0]);
  BuildLab(columns[1]);
  form.Stretch();
  whole.Buttons({form.Button("cmdOK", tr("OK")), form.Button("cmdCancel", tr("Cancel"))});
  FitScreen(*this, {960, 600});
}

void MoreDataForm::BuildUserFields(Form form) {
  form.Heading(tr("User Defined"));
  for (int i = 0; i < kBatchUserFields; ++i) {
    const auto place = static_cast<std::size_t>(i);
    TextField* text = form.Text(QString("txtUDText%1").arg(i), TextRule::Any(kTextWidth));
    texts_.at(place) = text;
    missing_.at(place) = form.Hint(tr("required"), QString("lblRequired%1").arg(i));
    form.Row(Caption(GetSetting(session, setting::BatchCustomTextLabelCaption[i])), {text, missing_.at(place)});
    missing_.at(place)->setVisible(GetSetting(session, setting::BatchUDTxtRequired[i]));
  }
  form.Space();
  for (int i = 0; i < kBatchUserFields; ++i) {
    NumberField* number =
        form.Number(QString("txtUDNumeric%1").arg(i), GetSetting(session, setting::Batches_UDNum_Format[i]));
    number->Means("UD_Numeric" + std::to_string(i));
    form.Row(Caption(GetSetting(session, setting::BatchCustomNumericLabelCaption[i])), number);
    numbers_.at(static_cast<std::size_t>(i)) = number;
  }
}

void MoreDataForm::BuildLab(Form form) {
  form.Heading(tr("L-a-b Delta Values"));
  const std::array<QString, 5> captions{tr("&L"), tr("&a"), tr("&b"), tr("&Delta"), tr("D&ensity")};
  for (std::size_t i = 0; i < lab_.size(); ++i) {
    lab_[i] = form.Number(Q((LabFields().begin() + static_cast<std::ptrdiff_t>(i))->Control()), kLabDecimals,
                          tr("-99999 to 99999"), 9);
    form.Row(captions[i], lab_[i]);
  }
  form.Row(tr("L&ight source"), lightSource_ = DropDown(form, "cmb_LS"));
  form.Row(tr("&Substrate"), substrate_ = DropDown(form, "cmb_PT"));
  form.Row(tr("&Note"), note_ = form.Text("txt_Note", TextRule::Any(kTextWidth)));
  lightSource_->SetItems(KnownLightSources(session, ColorKind::Mix));
  substrate_->SetItems(KnownSubstrates(session, ColorKind::Mix));
}

ComboField* MoreDataForm::DropDown(Form& form, const char* name) {
  // Made editable before the form listens to it, which must hear its line of text too.
  auto* combo = new ComboField(name);
  combo->setEditable(true);
  combo->setInsertPolicy(QComboBox::NoInsert);
  combo->lineEdit()->setMaxLength(kTextWidth);
  combo->setMinimumWidth(240);
  return form.Add(combo);
}

void MoreDataForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  const MoreData shown = ShowMoreData(session, record_->fields);
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    texts_[i]->SetText(shown.texts.at(i));
    numbers_[i]->SetText(shown.numbers.at(i));
  }
  for (std::size_t i = 0; i < lab_.size(); ++i) lab_[i]->SetText(shown.lab[i]);
  ShowChoice(*lightSource_, shown.lab[5]);
  ShowChoice(*substrate_, shown.lab[6]);
  note_->SetText(shown.lab[7]);
}

void MoreDataForm::UpdateEnabled() {
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const bool missing = TrimView(texts_[i]->Text()).empty();
    missing_[i]->setText(missing ? tr("required") : QString());
  }
}

void MoreDataForm::cmdOK_Click() {
  MoreData typed;
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    typed.texts.at(i) = texts_[i]->Text();
    typed.numbers.at(i) = numbers_[i]->Text();
  }
  typed.lab = {lab_[0]->Text(), lab_[1]->Text(),      lab_[2]->Text(),    lab_[3]->Text(),
               lab_[4]->Text(), lightSource_->Text(), substrate_->Text(), note_->Text()};
  if (Accepted(EnterMoreData(session, *record_, typed))) accept();
}

bool MoreDataForm::MayClose() {
  return !IsDirty() || MayDiscard(session);
}

}  // namespace vellumark::desktop
