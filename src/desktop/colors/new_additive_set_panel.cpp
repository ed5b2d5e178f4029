#include "desktop/colors/new_additive_set_panel.h"

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 2;
constexpr int kPercentChars = 5;

QString FieldName(const char* word, std::size_t row) {
  return Q(schema::Numbered(word, static_cast<int>(row)));
}

}  // namespace

NewAdditiveSetPanel::NewAdditiveSetPanel(FormHost& host) : QObject(&host.Self()), host_(host) {}

void NewAdditiveSetPanel::Build(Form form) {
  form.Heading(tr("New Additive Set"));
  name_ = form.Text("txtAddSetName", TextRule::UpperName(kSetNameLength));
  name_->Means("SetName");
  name_->setAccessibleName(tr("Name of the new Additive Set"));
  name_->setPlaceholderText(tr("Name"));
  form.Wide(name_);
  for (std::size_t row = 0; row < lines_.size(); ++row) BuildLine(form, row);
  const QString hint =
      tr("Each Additive in the set cannot exceed a value of 10%.\n"
         "The percentages in the Additive Set are normalized into a \n"
         "Master Formula using these fixed values.");
  for (const Line& line : lines_) line.percent->setToolTip(hint);
  // The last two lines are one sentence, which the panel breaks as it needs.
  QLabel* rule = form.Hint(QString(hint).replace(" \n", " "), "lblAddSetHint");
  rule->setWordWrap(true);
  form.Wide(rule);
  form.ButtonsWithoutDefault({form.Button("cmdNewAddSave", tr("Sa&ve set"), [this] { Q_EMIT SaveClicked(); }),
                              form.Button("cmdNewAddCancel", tr("Cancel set"), [this] { Q_EMIT CancelClicked(); })});
  connect(name_, &TextField::Left, this, &NewAdditiveSetPanel::NameLeft);
}

void NewAdditiveSetPanel::BuildLine(Form& form, std::size_t row) {
  Line& line = lines_[row];
  const int number = static_cast<int>(row) + 1;
  line.name = form.Name(FieldName("SetIng", row), NamesOnFile(host_.session, NameKind::Additives));
  line.name->setAccessibleName(tr("Additive %1").arg(number));
  line.percent = form.Number(FieldName("SetPercent", row), kPercentDecimals, {}, kPercentChars);
  line.percent->setAccessibleName(tr("Percent of additive %1").arg(number));
  auto* box = new QWidget;
  auto* across = new QHBoxLayout(box);
  across->setContentsMargins(0, 0, 0, 0);
  across->addWidget(line.name, 1);
  across->addWidget(line.percent);
  across->addWidget(form.Hint("%"));
  form.Wide(box);
  connect(line.name, &TextField::Left, this, [this, row](QWidget* to) { IngredientLeft(row, to); });
  connect(line.percent, &TextField::Left, this, [this, row](QWidget* to) { PercentLeft(row, to); });
}

AdditiveSetWork NewAdditiveSetPanel::Work() const {
  AdditiveSetWork work;
  work.SetName = name_->Text();
  for (std::size_t row = 0; row < lines_.size(); ++row)
    work.rows[row] = {lines_[row].name->Text(), lines_[row].percent->Text()};
  return work;
}

bool NewAdditiveSetPanel::IsFilled() const {
  if (name_ == nullptr) return false;
  return !Trim(name_->Text()).empty() || std::ranges::any_of(lines_, [](const Line& line) {
    return !Trim(line.name->Text()).empty() || !Trim(line.percent->Text()).empty();
  });
}

bool NewAdditiveSetPanel::Create(std::string& setName) {
  const Result<AdditiveSet> made = CreateAdditiveSet(host_.session, Work(), Act::EditFormulas);
  if (!host_.Accepted(made)) return false;
  setName = made->SetName;
  Empty();
  return true;
}

void NewAdditiveSetPanel::Empty() {
  if (name_ == nullptr) return;
  Put(*name_, "", false);
  for (Line& line : lines_) {
    Put(*line.name, "", false);
    Put(*line.percent, "", false);
    line.entered.clear();
  }
}

void NewAdditiveSetPanel::FocusName() {
  host_.FocusField("txtAddSetName");
}

void NewAdditiveSetPanel::NameLeft(QWidget* to) {
  if (!GoesOnWithin(host_, to)) return;
  const Result<std::string> name = EnterSetName(host_.session, name_->Text());
  if (host_.Accepted(name) && *name != name_->Text()) name_->SetText(*name);
}

void NewAdditiveSetPanel::IngredientLeft(std::size_t row, QWidget* to) {
  Line& line = lines_[row];
  if (!GoesOnWithin(host_, to) || EqualNoCase(line.name->Text(), line.entered)) return;
  const Result<std::string> name = EnterSetIngredient(host_.session, Work(), row, line.name->Text());
  if (!host_.Accepted(name)) return;
  line.entered = *name;
  if (*name != line.name->Text()) line.name->SetText(*name);
}

void NewAdditiveSetPanel::PercentLeft(std::size_t row, QWidget* to) {
  NumberField& percent = *lines_[row].percent;
  if (!GoesOnWithin(host_, to) || Trim(percent.Text()).empty()) return;
  const Result<double> value = ReadSetPercent(percent.Text(), U8(percent.objectName()));
  if (!host_.Accepted(value)) return;
  const std::string text = Fixed(*value, kPercentDecimals);
  if (text != percent.Text()) percent.SetText(text);
}

}  // namespace vellumark::desktop
