#include "desktop/batch/dispenser_selector.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QStorageInfo>
#include <QTabWidget>
#include <algorithm>

#include "core/batch/dispense.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"
#include "desktop/tools/checked_list.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kLastKey = "dispenser";
constexpr int kLongestName = 30;
constexpr int kSize[] = {800, 440};

// Where a folder can be looked for: not what the system has beside, for itself.
QStringList Drives() {
  QStringList drives;
  for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
    const QString root = volume.rootPath();
    const bool own = root.startsWith("/proc") || root.startsWith("/sys") || root.startsWith("/dev") ||
                     (root.startsWith("/run") && !root.startsWith("/run/media"));
    if (volume.isReady() && !own && QFileInfo(root).isDir()) drives += QDir::toNativeSeparators(root);
  }
  drives.removeDuplicates();
  drives.sort();
  return drives;
}

}  // namespace

// The dispensers as they can be checked to be removed.
class DispenserSelector::Listed final : public CheckedSource {
 public:
  explicit Listed(const std::vector<DispenserRow>& rows) : rows_(rows) {}
  void Begin() { ResetChecks(rows_.size()); }
  int Rows() const override { return static_cast<int>(rows_.size()); }
  std::string Text(int row, int column) const override {
    const DispenserRow& one = rows_.at(static_cast<std::size_t>(row));
    switch (column) {
      case 1:
        return one.Name;
      case 2:
        return one.Manufacturer + " / " + one.FileType;
      case 3:
        return one.Drive;
      case 4:
        return one.Pathway;
      default:
        return {};
    }
  }

 private:
  const std::vector<DispenserRow>& rows_;
};

DispenserSelector::DispenserSelector(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "DispenserSelector", tr("Dispenser")) {
  Form form(*this);
  TabSet tabs = form.Tabs("TabDispenser");
  BuildDispense(tabs.Page(tr("Dispense"), "TabDispense"));
  BuildAdd(tabs.Page(tr("Add Dispenser"), "TabAddDispenser"));
  BuildRemove(tabs.Page(tr("Remove Dispenser"), "TabRemoveDispenser"));
  SetDefaultButton(save_);
  SetDefaultButton(send_);
  connect(tabs.Widget(), &QTabWidget::currentChanged, this, [this](int page) { SetDefaultButton(page == 0 ? send_ : save_); });
  resize(kSize[0], kSize[1]);
}

void DispenserSelector::BuildDispense(Form form) {
  selected_ = form.Combo("cmbDispSel");
  selected_->setMinimumWidth(240);
  form.Row(tr("Dispen&ser"), selected_);
  pathway_ = Explain(form, {}, "lblDispenserPathway");
  form.Row(tr("Folder"), pathway_);
  form.Row(additives_ = form.Check("chkDispAdditives", tr("Dispense &Additive Ingredients")));
  form.Row(recycles_ = form.Check("chkDispRecycles", tr("Dispense &Recycles / Workoff")));
  form.Space();
  for (const QString& text :
       {tr("This dispense feature creates a batch export file which can be imported into dispensing software."),
        tr("File exports are sent to a designated folder so dispensing software can import the batch details."),
        tr("Multiple file formats are available to offer compatibility with most manufacturers.")})
    form.Wide(Explain(form, text));
  form.Stretch();
  form.ButtonsWithoutDefault({send_ = form.Button("cmdSend", tr("Sen&d")), form.Button("cmdClose", tr("Close"))});
  selected_->OnChosen([this](int) { ShowChosen(); });
  for (CheckField* check : {additives_, recycles_})
    connect(check, &QCheckBox::clicked, this, &DispenserSelector::StoreChecks);
}

void DispenserSelector::BuildAdd(Form form) {
  name_ = form.Text("DispenserName", TextRule::Upper(kLongestName));
  form.Row(tr("&Name"), name_);
  QStringList formats;
  for (const DispenserFormat& format : DispenserFormats())
    formats += Q(std::string(format.code)) + "  (" + Q(std::string(format.extension)) + ")";
  form.Row(tr("&Format"), manufacturer_ = form.Combo("cmbDispManufacturer", formats));
  drive_ = form.Combo("cmbDrive");
  drive_->setMinimumWidth(200);
  form.Row(tr("&Drive"), {drive_, form.Button("cmdRefresh", tr("&Refresh"))});
  folder_ = form.Text("Pathway", TextRule::Any(200));
  form.Row(tr("F&older"), folder_);
  folders_ = new QListWidget;
  folders_->setObjectName("lstFolders");
  folders_->setUniformItemSizes(true);
  form.Row(tr("Folders in it"), folders_);
  form.ButtonsWithoutDefault({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdCloseAdd", tr("Close"), [this] { reject(); })});
  drive_->OnChosen([this](int) { GoToFolder(drive_->currentText()); });
  connect(folder_, &TextField::Left, this, [this] { GoToFolder(folder_->text()); });
  connect(folders_, &QListWidget::itemActivated, this, &DispenserSelector::EnterFolder);
}

void DispenserSelector::BuildRemove(Form form) {
  Grid* grid = form.Table("lstDispenser");
  grid->setAccessibleName(tr("Dispensers"));
  grid->SetEmptyText(tr("No Dispenser, add a dispenser."));
  listed_ = std::make_shared<Listed>(dispensers_);
  list_ = new CheckedList(*grid, listed_,
                          {GridColumn::Text(tr("Dispenser"), 160), GridColumn::Text(tr("Manufacturer / File Type"), 180),
                           GridColumn::Text(tr("Drive"), 64), GridColumn::Text(tr("Location"), 300)});
  connect(list_, &CheckedList::CheckedChanged, this, [this] { Changed(); });
  form.Wide(grid, 1);
  form.ButtonsWithoutDefault(
      {delete_ = form.Button("cmdDelete", tr("Remove")), form.Button("cmdCloseRemove", tr("Close"), [this] { reject(); })});
}

// ---- What is shown

void DispenserSelector::OnOpen(const Arguments&) {
  cmdRefresh_Click();
  Fill(U8(memory::Recall(kLastKey).toString()));
  const auto any = CheckAnyDispenser(session);
  if (Accepted(any)) {
    selected_->setFocus();
    ShowChosen();
  }
}

void DispenserSelector::Fill(const std::string& name) {
  dispensers_ = ReadDispensers(session);
  std::vector<std::string> names;
  for (const DispenserRow& row : dispensers_) names.push_back(row.Name);
  selected_->SetItems(names);
  selected_->SetText(name);
  if (selected_->currentIndex() < 0 && !names.empty()) selected_->setCurrentIndex(0);
  listed_->Begin();
  list_->Refresh();
  Changed();
}

void DispenserSelector::ShowChosen() {
  const auto row = ReadDispenser(session, selected_->Text());
  pathway_->setText(row ? Q(row->Pathway) : QString());
  additives_->setChecked(row && row->Additives);
  recycles_->setChecked(row && row->Recycles);
  if (row) Accepted(CheckDispenserFolder(*row));
}

void DispenserSelector::StoreChecks() {
  StoreDispenserChoice(session, selected_->Text(), additives_->isChecked(), recycles_->isChecked());
}

void DispenserSelector::UpdateEnabled() {
  const bool any = !dispensers_.empty();
  for (QWidget* control : std::initializer_list<QWidget*>{selected_, additives_, recycles_, send_}) control->setEnabled(any);
  delete_->setEnabled(!listed_->CheckedRows().empty());
}

// ---- Folders

void DispenserSelector::cmdRefresh_Click() {
  const QString chosen = drive_->currentText();
  drive_->clear();
  drive_->addItems(Drives());
  drive_->setCurrentText(chosen);
  GoToFolder(folder_->text().isEmpty() ? QDir::homePath() : folder_->text());
}

void DispenserSelector::GoToFolder(const QString& folder) {
  folders_->clear();
  folder_->SetText(U8(folder));
  const QDir dir(folder);
  if (folder.isEmpty() || !dir.exists()) return;
  folder_->SetText(U8(QDir::toNativeSeparators(dir.absolutePath())));
  if (!dir.isRoot()) folders_->addItem("..");
  folders_->addItems(dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase));
  folders_->setCurrentRow(0);
}

void DispenserSelector::EnterFolder() {
  const QListWidgetItem* item = folders_->currentItem();
  if (item != nullptr) GoToFolder(QDir::cleanPath(QDir(folder_->text()).absoluteFilePath(item->text())));
}

// ---- Commands

void DispenserSelector::cmdSend_Click() {
  const std::string name = selected_->Text();
  const auto row = ReadDispenser(session, name);
  if (row && !Accepted(CheckDispenserFolder(*row))) return;
  memory::Keep(kLastKey, Q(name));
  result.Set("Choice", DispenseChoice{name, additives_->isChecked(), recycles_->isChecked()});
  accept();
}

void DispenserSelector::cmdSave_Click() {
  const DispenserFormat& format = DispenserFormats()[static_cast<std::size_t>(std::max(manufacturer_->currentIndex(), 0))];
  const std::string name = name_->Text();
  const auto added = AddDispenser(session, name, format.code, folder_->Text());
  if (!Accepted(added)) {
    if (added.error().title == "Duplicate Name") name_->SetText("");
    return;
  }
  name_->SetText("");
  Fill(name);
  ShowChosen();
  FocusField("cmbDispSel");
}

void DispenserSelector::cmdDelete_Click() {
  std::vector<std::string> names;
  for (const int row : listed_->CheckedRows()) names.push_back(dispensers_.at(static_cast<std::size_t>(row)).Name);
  if (!Accepted(RemoveDispensers(session, names))) return;
  Fill(selected_->Text());
  ShowChosen();
}

}  // namespace vellumark::desktop
