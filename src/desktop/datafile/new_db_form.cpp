#include "desktop/datafile/new_db_form.h"

#include <QBoxLayout>

#include "core/colors/guide_database.h"
#include "core/datafile/databases.h"
#include "core/shell/opening.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// In the order of OptDBType.
constexpr int kFromGuides = 1;
constexpr int kFromDatabase = 2;

}  // namespace

NewDBForm::NewDBForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "NewDBForm", tr("New Database")) {
  Form form(*this);
  name_ = form.Text("txtDBName", TextRule::DatabaseName(static_cast<int>(kDatabaseNameLength)));
  name_->SetWidthInChars(static_cast<int>(kDatabaseNameLength) + 2);
  form.Row(tr("Database &name"), {name_, form.Hint(tr("(15 characters maximum)"))});
  form.Heading(tr("Contents"));
  type_ = form.Radio("OptDBType", {{"OptDBType0", tr("Empty database")},
                                   {"OptDBType1", tr("Formulas from a Pantone product guide")},
                                   {"OptDBType2", tr("Formulas from an existing database")}});
  form.Wide(type_);
  QLabel* empty = form.Hint(tr("(Contains no Basics, Additives or Formulas)"), "lblEmpty");
  empty->setIndent(space::kGroup);
  qobject_cast<QBoxLayout*>(type_->layout())->insertWidget(1, empty);
  form.Space();
  FindGuides(form);
  databases_ = form.Combo("cmbDatabases");
  databases_->setMinimumWidth(200);
  databases_->SetItems(session.databaseList);
  databases_->setCurrentIndex(session.databaseList.empty() ? -1 : 0);
  databases_->SetText(session.CurrentDatabase);
  form.Row(tr("&Existing database"), databases_);
  form.Buttons({form.Button("cmdCreate", tr("&Create")), form.Button("cmdCancel", tr("Cancel"))});
  type_->Button(kFromDatabase)->setEnabled(!session.databaseList.empty());
  setMinimumWidth(560);
  FitHeight(*this);
  name_->setFocus();
}

// A template that cannot be read is no reason not to make a Database without guides.
void NewDBForm::FindGuides(Form& form) {
  QString hint;
  try {
    guides_ = GuidesInTemplate(session);
    if (guides_.empty()) hint = Q(HowToGetTemplate(session));
  } catch (const Failure& failure) {
    hint = Q(failure.subject) + ": " + Q(failure.cause);
  }
  list_ = form.CheckList("lstPantoneData");
  QStringList titles;
  for (const Guide* guide : guides_) titles += Q(guide->title);
  list_->SetItems(titles);
  list_->setFixedHeight(5 * space::kRowHeight + space::kUnit);
  if (guides_.empty()) {
    list_->setParent(this);
    list_->hide();
    QuietParagraph(form, hint, "lblNoGuides");
  } else {
    form.Row(tr("Product &guides"), list_);
  }
  type_->Button(kFromGuides)->setEnabled(!guides_.empty());
}

void NewDBForm::UpdateEnabled() {
  list_->setEnabled(type_->Chosen() == kFromGuides);
  databases_->setEnabled(type_->Chosen() == kFromDatabase);
}

NewDatabaseContent NewDBForm::Content() const {
  NewDatabaseContent content;
  if (type_->Chosen() == kFromGuides) {
    content.kind = NewDatabaseContent::Kind::Guides;
    for (int row = 0; row < list_->count(); ++row)
      if (list_->IsChecked(row)) content.guides.emplace_back(guides_.at(static_cast<std::size_t>(row))->code);
  } else if (type_->Chosen() == kFromDatabase) {
    content.kind = NewDatabaseContent::Kind::Copy;
    content.source = databases_->Text();
  }
  return content;
}

void NewDBForm::cmdCreate_Click() {
  const auto made = NewDatabase(session, name_->Text(), Content());
  if (!FormHost::Accepted(made)) return;
  result.Set("Database", *made);
  accept();
}

void NewDBForm::reject() {
  if (session.DataFileOpen && session.databaseList.empty()) MakeFirstDatabase(session, "NEW DB", FirstContent::Empty);
  Dialog::reject();
}

}  // namespace vellumark::desktop
