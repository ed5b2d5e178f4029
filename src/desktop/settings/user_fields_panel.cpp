#include "desktop/settings/user_fields_panel.h"

#include <QCoreApplication>

#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

constexpr int kTextWidth = static_cast<int>(kUserTextWidth);
constexpr int kCaptionWidth = 208;

QString Tr(const char* text) {
  return QCoreApplication::translate("UserFieldsPanel", text);
}

QString Numbered(const char* name, int number) {
  return QString("%1%2").arg(QLatin1String(name)).arg(number);
}

QStringList DecimalChoices() {
  QStringList choices;
  for (int decimals = 0; decimals <= kMostUserDecimals; ++decimals) choices += QString::number(decimals);
  return choices;
}

TextField* ShortText(Form& form, const QString& name, const QString& accessible) {
  TextField* field = form.Text(name, TextRule::Any(kTextWidth));
  field->setFixedWidth(kCaptionWidth);
  field->setAccessibleName(accessible);
  return field;
}

}  // namespace

void UserFieldsPanel::BuildTexts(Form form, const QString& meaning) {
  form.Wide(Explain(form, meaning));
  for (int i = 0; i < kUserFields; ++i) {
    TextLine& line = texts_.at(static_cast<std::size_t>(i));
    line.caption = ShortText(form, Numbered("txtTextCaption", i), Tr("Caption of text %1").arg(i + 1));
    line.hasDefault = form.Check(Numbered("chkTextDefault", i), Tr("Default"));
    line.value = ShortText(form, Numbered("txtTextValue", i), Tr("Default of text %1").arg(i + 1));
    line.required = form.Check(Numbered("chkTextRequired", i), Tr("Required"));
    form.Row(Tr("Text %1").arg(i + 1), {line.caption, line.hasDefault, line.value, line.required});
  }
}

void UserFieldsPanel::BuildNumbers(Form form, const QString& meaning) {
  form.Wide(Explain(form, meaning));
  for (int i = 0; i < kUserFields; ++i) {
    NumberLine& line = numbers_.at(static_cast<std::size_t>(i));
    line.caption = ShortText(form, Numbered("txtNumberCaption", i), Tr("Caption of number %1").arg(i + 1));
    line.decimals = form.Combo(Numbered("cmbNumberFormat", i), DecimalChoices());
    line.decimals->setAccessibleName(Tr("Decimals of number %1").arg(i + 1));
    form.Row(Tr("Number %1").arg(i + 1), {line.caption, line.decimals, form.Hint(Tr("decimals"))});
  }
}

void UserFieldsPanel::Show(const UserFieldOptions& options) {
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const UserTextOption& text = options.texts.at(i);
    texts_[i].caption->SetText(text.caption);
    texts_[i].hasDefault->setChecked(text.hasDefault);
    texts_[i].value->SetText(text.value);
    texts_[i].required->setChecked(text.required);
    const UserNumberOption& number = options.numbers.at(i);
    numbers_[i].caption->SetText(number.caption);
    numbers_[i].decimals->setCurrentIndex(number.decimals);
  }
}

UserFieldOptions UserFieldsPanel::Typed() const {
  UserFieldOptions options;
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const TextLine& text = texts_[i];
    options.texts.at(i) = {text.caption->Text(), text.hasDefault->isChecked(), text.value->Text(),
                           text.required->isChecked()};
    options.numbers.at(i) = {numbers_[i].caption->Text(), numbers_[i].decimals->currentIndex()};
  }
  return options;
}

void UserFieldsPanel::UpdateEnabled() {
  for (const TextLine& line : texts_)
    if (line.value != nullptr) line.value->setEnabled(line.hasDefault->isChecked());
}

}  // namespace vellumark::desktop
