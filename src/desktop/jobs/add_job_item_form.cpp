#include "desktop/jobs/add_job_item_form.h"

#include <QTabWidget>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/inventory/stock_tables.h"
#include "core/jobs/design_work.h"
#include "core/jobs/job_options.h"
#include "core/session/rights.h"
#include "core/session/settings.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/jobs/design_box.h"
#include "desktop/jobs/photo_frame.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/tall_page.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

enum Column { Check, LotNum, Location, ContID, LotDay, InvQty, Take, Price };

constexpr QSize kPhoto{480, 320};

}  // namespace

// The places of the colour, Unlotted Inventory on top.
class AddJobItemForm::Source : public GridSource {
 public:
  Source(const JobItemWork& work, const Session& session) : work_(work), session_(session) {}

  int Rows() const override { return static_cast<int>(work_.rows.size()); }
  int FixedRows() const override { return std::min(1, Rows()); }
  std::string Text(int row, int column) const override {
    const JobStockRow& one = work_.rows.at(static_cast<std::size_t>(row));
    switch (column) {
      case LotNum:
        return one.stock.LotNumber;
      case Location:
        return one.stock.LotLoc;
      case ContID:
        return one.stock.LotContID;
      case LotDay:
        return one.stock.LotDate ? U8(DateText(one.stock.LotDate)) : std::string();
      case InvQty:
        return Fixed(one.stock.quantity, 3);
      case Take:
        return one.Marked() ? Fixed(one.take, 3) : std::string();
      case Price:
        return SeenBy(session_).prices ? AmountText(session_, AmountKey::Currency, one.stock.price) : std::string();
      default:
        return {};
    }
  }
  double Number(int row, int column) const override {
    const JobStockRow& one = work_.rows.at(static_cast<std::size_t>(row));
    if (column == LotDay) return one.stock.LotDate ? static_cast<double>(one.stock.LotDate->SecondNumber()) : kNoNumber;
    return GridSource::Number(row, column);
  }
  const char* Mark(int row, int column) const override {
    if (column == Check) return work_.rows.at(static_cast<std::size_t>(row)).Marked() ? "box-checked" : "box";
    return column == LotNum && row > 0 ? "lot" : nullptr;
  }

 private:
  const JobItemWork& work_;
  const Session& session_;
};

AddJobItemForm::AddJobItemForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AddJobItemForm", tr("Add Job Item")),
      source_(std::make_shared<Source>(work_, session)) {
  pictures_ = new PictureLoader(this);
  Form whole(*this);
  Form form = TallPart(*this, whole);
  designID_ = form.Add(new DesignBox("cmbDesignID", session));
  designID_->Means("DesignID");
  designID_->setMaximumWidth(240);
  form.Row(tr("Job Number"), job_ = form.Value("lblJobNumber", 1));
  form.Row(tr("Desig&n ID"), {designID_, description_ = form.Hint({}, "lblDescription")});
  database_ = form.Combo("cmbDatabases");
  color_ = form.Name("cmbColors", SortedNames({}));
  color_->Means("Color_Name");
  color_->setAccessibleName(tr("Color"));
  form.Row(tr("Data&base"), {database_, form.Hint(tr("Color")), color_, kind_ = form.Hint({}, "lblKind")});
  for (Field* field : std::initializer_list<Field*>{designID_, database_, color_}) field->DoNotTrack();
  TabSet tabs = form.Tabs("tabItem");
  tabs_ = tabs.Widget();
  BuildStock(tabs.Page(tr("&Stock"), "tabStock"));
  BuildCosts(tabs.Page(tr("C&osts"), "tabCosts"));
  BuildDesign(tabs.Page(tr("Des&ign"), "tabDesign"));
  BuildMoreData(tabs.Page(tr("&More Data"), "tabMoreData"));
  form.Wide(state_ = form.Hint({}, "lblState"));
  whole.Buttons({add_ = form.Button("cmdAddItem", tr("&Add Item"), Qt::CTRL | Qt::Key_S),
                form.Button("cmdClose", tr("Close")), form.Button("cmdHelp", tr("&Help"), Qt::Key_F1)});
  database_->OnChosen([this](int) { ShowDatabase(database_->Text()); });
  connect(color_, &TextField::Left, this, [this](QWidget* to) {
    if (to == nullptr || qobject_cast<QPushButton*>(to) == nullptr) EnterColor();
  });
  connect(color_, &NameBox::Picked, this, [this] { EnterColor(); });
  connect(designID_, &TextField::Left, this, [this] { EnterDesign(); });
  connect(designID_, &NameBox::Picked, this, [this] { EnterDesign(); });
  FitScreen(*this, {944, 664});
}

AddJobItemForm::~AddJobItemForm() = default;

void AddJobItemForm::BuildStock(Form form) {
  need_ = form.Number("txtNeed", 3, tr("0 to 99999"));
  propose_ = form.Button("cmdPropose", tr("Oldest &first"), Qt::Key_F2);
  form.Row(tr("Amo&unt"), {need_, form.Hint(Q(UnitName(session.UMI))), propose_, taken_ = form.Hint({}, "lblTaken")});
  stock_ = form.Table("InvColorList");
  stock_->SetColumns(StockColumns());
  stock_->SetSource(source_);
  stock_->SetEmptyText(tr("Type a color"));
  stock_->setAccessibleName(tr("Where the color can be taken from"));
  stock_->setMinimumHeight(120);
  form.Wide(stock_, 1);
  adjust_ = form.Number("AdjustInv", 3, {}, 12);
  adjust_->Means("QtyIssued");
  update_ = form.Button("cmdUpdate", tr("U&pdate"), Qt::Key_F5);
  clear_ = form.Button("cmdClearAdjust", tr("C&lear"), Qt::SHIFT | Qt::Key_F5);
  form.Row(tr("Ta&ke from this row"), {adjust_, update_, clear_});
  for (Field* field : {need_, adjust_}) field->DoNotTrack();
  connect(stock_, &Grid::CurrentRowChanged, this, &AddJobItemForm::ShowRow);
  connect(stock_, &Grid::RowActivated, this, [this] { FocusField("AdjustInv"); });
  new CheckKeys(*stock_, [this](int row) { Toggle(row); });
}

std::vector<GridColumn> AddJobItemForm::StockColumns() const {
  std::vector<GridColumn> columns{GridColumn::Text({}, 40),
                                  GridColumn::Text(tr("Lot Number"), 176),
                                  GridColumn::Text(tr("Location"), 112),
                                  GridColumn::Text(tr("Cont. ID"), 104),
                                  GridColumn::Text(tr("Date"), 104),
                                  GridColumn::Amount(WithUnit(tr("Inv."), session.UMI), 128),
                                  GridColumn::Amount(WithUnit(tr("Take"), session.UMI), 128),
                                  GridColumn::Number(tr("Unit Cost"), 96)};
  columns[Check].sortable = false;
  columns[LotDay].sort = GridColumn::Sort::Number;
  for (const Column column : {LotNum, Location, ContID}) columns[column].sort = GridColumn::Sort::TextNoCase;
  if (!SeenBy(session).prices) columns[Price].width = 0;
  return columns;
}

void AddJobItemForm::BuildCosts(Form form) {
  form.Wide(form.Hint(tr("What a Master Formula costs and emits in a Job. A Basic Color counts with its own figures.")));
  cost_ = form.Radio("optMixCost",
                     {{"optLotCost", tr("Lot Cost")},
                      {"optPurchaseCost", tr("Purchase Cost")},
                      {"optBasicCost", tr("Basic Cost")},
                      {"optNoCost", tr("No Cost")}},
                     Qt::Horizontal);
  QLabel* blocked = form.Label("lblPriceBlocked", "User Permissions - Price Blocked");
  form.Row(tr("Unit cost"), {cost_, blocked});
  const std::vector<RadioField::Option> emissions{
      {"", tr("Its own")}, {"", tr("Of its basics")}, {"", tr("None")}};
  const auto emission = [&](const char* name) {
    std::vector<RadioField::Option> options = emissions;
    for (std::size_t i = 0; i < options.size(); ++i) options[i].name = QString("%1%2").arg(name).arg(i);
    return form.Radio(name, options, Qt::Horizontal);
  };
  form.Row(tr("VOC"), VOC_ = emission("optMixVOC"));
  form.Row(tr("HAP"), HAP_ = emission("optMixHAP"));
  form.Row(tr("Of this color"), figures_ = form.Label("lblFigures"));
  form.Stretch();
  cost_->setVisible(SeenBy(session).prices);
  blocked->setVisible(!SeenBy(session).prices);
  const JobCosting costing = ReadJobCosting(session);
  cost_->Choose(costing.cost);
  VOC_->Choose(costing.VOC);
  HAP_->Choose(costing.HAP);
  for (RadioField* option : {cost_, VOC_, HAP_}) {
    option->DoNotTrack();
    connect(option, &RadioField::ChosenChanged, this, [this] { TakeCosting(); });
  }
}

void AddJobItemForm::BuildDesign(Form form) {
  std::vector<Form> sides = form.Columns(2);
  sides[0].Wide(designText_ = form.Label("lblDesign"));
  designNotes_ = form.Label("lblNotes");
  for (QLabel* label : {designText_, designNotes_}) label->setWordWrap(true);
  sides[0].Wide(designNotes_);
  sides[0].Stretch();
  photo_ = new PhotoFrame("picPhoto");
  photo_->setAcceptDrops(false);
  photo_->setMinimumHeight(96);
  photo_->setMaximumHeight(144);
  sides[1].Wide(photo_, 1);
  colors_ = std::make_shared<RecordRows<DesignColorCost>>(DesignColorColumns(session));
  designColors_ = form.Table("DesignColorList");
  designColors_->setAccessibleName(tr("Colors of the Design"));
  designColors_->SetColumns(colors_->Columns());
  designColors_->SetSource(colors_);
  designColors_->SetEmptyText(tr("Choose a Design above"));
  designColors_->setMinimumHeight(112);
  form.Wide(designColors_, 1);
  connect(designColors_, &Grid::RowActivated, this, &AddJobItemForm::TakeDesignColor);
  connect(designColors_, &Grid::CellClicked, this, [this](int row) { TakeDesignColor(row); });
}

void AddJobItemForm::BuildMoreData(Form form) {
  std::vector<Form> sides = form.Columns(2);
  for (int i = 0; i < kJobUserFields; ++i) {
    const auto place = static_cast<std::size_t>(i);
    TextField* text = form.Text(QString("txtUDText%1").arg(i), TextRule::Any(static_cast<int>(kUserTextWidth)));
    text->Means(schema::Numbered("UD_Text", i));
    texts_.at(place) = text;
    QLabel* required = form.Hint(tr("required"));
    required->setVisible(GetSetting(session, setting::JobUDTxtRequired[i]));
    sides[0].Row(Q(GetSetting(session, setting::JobCustomTextLabelCaption[i])).replace('&', "&&"), {text, required});
    NumberField* number =
        form.Number(QString("txtUDNumeric%1").arg(i), GetSetting(session, setting::Jobs_UDNum_Format[i]));
    number->Means(schema::Numbered("UD_Numeric", i));
    numbers_.at(place) = number;
    sides[1].Row(Q(GetSetting(session, setting::JobCustomNumericLabelCaption[i])).replace('&', "&&"), number);
  }
  form.Stretch();
}

// ---- Opening, and changes elsewhere

void AddJobItemForm::OnOpen(const Arguments& arguments) {
  work_.entry = NewJobItem(session);
  work_.entry.JobNumber = arguments.Text("JobNumber");
  job_->SetText(work_.entry.JobNumber);
  for (std::size_t i = 0; i < texts_.size(); ++i) texts_.at(i)->SetText(work_.entry.UD_Text.at(i));
  database_->SetItems(session.databaseList);
  ShowDatabase(session.CurrentDatabase);
  if (arguments.Has("DesignID")) designID_->SetText(arguments.Text("DesignID"));
  EnterDesign();
  ShowStock();
  color_->setFocus();
}

void AddJobItemForm::OnChanges(const std::vector<Change>&) {
  if (!session.DataFileDB) return;
  work_.Reread(session);
  ShowStock();
}

bool AddJobItemForm::MayClose() {
  return work_.Taken() == 0 || MayDiscard(session);
}

void AddJobItemForm::UpdateEnabled() {
  if (add_ == nullptr) return;
  const bool row = stock_->CurrentRow() >= 0;
  add_->setEnabled(work_.Taken() > 0);
  propose_->setEnabled(work_.chosen);
  adjust_->setEnabled(row);
  update_->setEnabled(row);
  clear_->setEnabled(work_.Taken() > 0);
}

// ---- The colour

void AddJobItemForm::ShowDatabase(const std::string& name) {
  database_->SetText(name);
  color_->SetSource(SortedNames(DesignColorNames(session, name)));
  if (work_.chosen && !EqualNoCase(name, work_.entry.Database)) {
    work_.Clear();
    color_->SetText("");
    ShowStock();
  }
}

bool AddJobItemForm::EnterColor() {
  const std::string name = color_->Name();
  if (name.empty()) {
    work_.Clear();
    ShowStock();
    return false;
  }
  if (work_.chosen && EqualNoCase(name, work_.entry.Color_Name)) return true;
  const bool chosen = Accepted(work_.ChooseColor(session, database_->Text(), name));
  if (!chosen) work_.Clear();
  state_->clear();
  tabs_->setCurrentIndex(0);
  ShowStock();
  return chosen;
}

// ---- The stock

void AddJobItemForm::ShowStock() {
  kind_->setText(work_.chosen ? Q(KindText(work_.entry.kind)) : QString());
  const int row = stock_->CurrentRow();
  stock_->Refresh();
  if (row < 0 && !work_.rows.empty()) stock_->SetCurrentRow(0);
  const QString unit = Q(UnitName(session.UMI));
  taken_->setText(work_.Taken() > 0 ? tr("%1 %2 marked").arg(Q(Fixed(work_.Taken(), 3)), unit) : QString());
  QString figures;
  if (const auto color = work_.chosen ? JobFiguresOf(session, work_.entry.Database, work_.entry.Color_Name,
                                                     work_.entry.kind, work_.entry.costing)
                                      : std::nullopt) {
    figures = tr("VOC %1, HAP %2 per %3").arg(Q(Fixed(color->VOC, 3)), Q(Fixed(color->HAP, 3)), unit);
  }
  figures_->setText(figures);
  ShowRow(stock_->CurrentRow());
}

void AddJobItemForm::ShowRow(int row) {
  const bool there = row >= 0 && row < source_->Rows();
  adjust_->SetText(there ? Fixed(work_.rows.at(static_cast<std::size_t>(row)).take, 3) : "");
  Changed();
}

void AddJobItemForm::Toggle(int row) {
  work_.Toggle(static_cast<std::size_t>(row));
  ShowStock();
}

void AddJobItemForm::cmdPropose_Click() {
  const auto left = work_.Propose(need_->Text());
  if (!left) {
    Refusal refusal = left.error();
    refusal.field = "txtNeed";
    return ShowRefusal(refusal);
  }
  ShowStock();
  if (*left > 0)
    taken_->setText(tr("%1 %2 marked, %3 are missing")
                        .arg(Q(Fixed(work_.Taken(), 3)), Q(UnitName(session.UMI)), Q(Fixed(*left, 3))));
  if (work_.Taken() > 0) add_->setFocus();
}

void AddJobItemForm::cmdUpdate_Click() {
  const int row = stock_->CurrentRow();
  if (row < 0 || !Accepted(work_.SetTake(static_cast<std::size_t>(row), adjust_->Text()))) return;
  ShowStock();
  stock_->setFocus();
}

void AddJobItemForm::cmdClearAdjust_Click() {
  work_.ClearTakes();
  ShowStock();
  stock_->setFocus();
}

void AddJobItemForm::TakeCosting() {
  const JobCosting costing{cost_->Chosen(), VOC_->Chosen(), HAP_->Chosen()};
  if (costing == work_.entry.costing) return;
  work_.entry.costing = costing;
  StoreJobCosting(session, costing);
  work_.Reread(session);
  ShowStock();
}

Result<JobItemEntry> AddJobItemForm::Entry() const {
  JobItemEntry entry = work_.Entry();
  entry.DesignID = design_ ? design_->DesignID : std::string();
  for (int i = 0; i < kJobUserFields; ++i) {
    const auto place = static_cast<std::size_t>(i);
    entry.UD_Text.at(place) = texts_.at(place)->Text();
    const auto number = ReadJobNumeric(session, i, numbers_.at(place)->Text());
    if (!number) return std::unexpected(number.error());
    entry.UD_Numeric.at(place) = *number;
  }
  return entry;
}

void AddJobItemForm::cmdAddItem_Click() {
  if (!EnterColor()) return;
  const auto entry = Entry();
  if (!Accepted(entry)) return;
  const auto added = AddJobItems(session, *entry);
  if (!Accepted(added)) return;
  const QString amount = tr("%1 %2").arg(Q(Fixed(work_.Taken(), 3)), Q(UnitName(session.UMI)));
  state_->setText(tr("Added: %1 of %2").arg(amount, Q(entry->Color_Name)));
  work_.Clear();
  color_->SetText("");
  need_->SetText("");
  ShowStock();
  color_->setFocus();
}

// ---- The Design

void AddJobItemForm::EnterDesign() {
  const std::string id = ReadDesignID(designID_->Text());
  if (design_ && EqualNoCase(id, design_->DesignID)) return;
  design_ = id.empty() ? std::nullopt : ReadDesign(session, id);
  if (!id.empty() && !design_)
    ShowRefusal({"Design Not Found", U8(tr("There is no Design %1 in this Data File.").arg(Q(id))), "DesignID"});
  ShowDesign();
  if (design_) tabs_->setCurrentIndex(2);
}

void AddJobItemForm::ShowDesign() {
  pictures_->Drop();
  designID_->SetText(design_ ? design_->DesignID : std::string());
  description_->setText(design_ ? Q(design_->Description) : QString());
  colors_->rows.clear();
  QString text;
  if (design_) {
    const LengthUnit unit = LengthUnit::Inch;
    text = tr("%1, %2 x %3 %4\ncreated %5, changed %6, used %7")
               .arg(design_->Impressions == 1 ? tr("1 impression") : tr("%1 impressions").arg(design_->Impressions))
               .arg(Q(LengthText(design_->Length, unit)), Q(LengthText(design_->Width, unit)),
                    Q(std::string(LengthUnitName(unit))))
               .arg(DateText(design_->Created), DateText(design_->LastModified), DateText(design_->LastUsed));
    colors_->rows = DesignCosts(session, design_->Colors());
  }
  designText_->setText(text);
  designNotes_->setText(design_ ? Q(Left(design_->Notes, 300)) : QString());
  designColors_->Refresh();
  photo_->Show({}, design_ ? tr("No photo") : QString());
  const std::vector<std::string> photos = design_ ? design_->Photos() : std::vector<std::string>{};
  if (const auto file = photos.empty() ? std::nullopt : PhotoFile(session, photos.front()))
    pictures_->Load([file] { return ReadFileBytes(*file); }, kPhoto,
                    [this](const QImage& image) { photo_->Show(image, tr("No photo")); });
  Changed();
}

void AddJobItemForm::TakeDesignColor(int row) {
  if (row < 0) return;
  const DesignColor color = colors_->rows.at(static_cast<std::size_t>(row)).color;
  if (!color.IngDB.empty() && session.FindDatabase(color.IngDB) == nullptr)
    return ShowRefusal({"Color Not Found", U8(tr("There is no Database %1.").arg(Q(color.IngDB))), "cmbDatabases"});
  if (!color.IngDB.empty()) ShowDatabase(color.IngDB);
  color_->SetText(color.IngName);
  if (!Accepted(work_.ChooseColor(session, database_->Text(), color.IngName, color.Kind()))) work_.Clear();
  need_->SetText(color.IngQty > 0 ? Fixed(color.IngQty, 3) : "");
  tabs_->setCurrentIndex(0);
  ShowStock();
  FocusField("txtNeed");
}

}  // namespace vellumark::desktop
