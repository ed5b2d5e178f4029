#include "desktop/inventory/stock_history_form.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/inventory/color_stock.h"
#include "core/inventory/stock_tables.h"
#include "core/labels/scan_undo.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

enum Column { When, Who, Event, ColorName, Kind, Lot, Difference, Left, Document, Reason };  // in the order of kShown

const std::vector<std::string_view> kShown{"Date",       "User",   "Source", "Color Name", "Type",
                                           "Lot Number", "Change", "Result", "Document",   "Reason"};
constexpr std::size_t kScreen = 200;  // lines, more than a window shows
constexpr qint64 kMoment = 20;        // milliseconds

}  // namespace

// The latest line first, read as far as it is looked at.
class StockHistoryForm::Source : public RecordSource<StockLine>, public RowTargets {
 public:
  explicit Source(const Session& session) : RecordSource(HistoryColumns(session), kShown), progress_(session.progress) {}

  void Show(std::function<StockHistoryReader()> begin) {
    begin_ = std::move(begin);
    onlyNewer_ = false;
  }
  /// What is read next comes before what is there, which stays.
  void ReadOnlyNewer() { onlyNewer_ = true; }

  bool BeginReading(const std::function<bool(int row)>& keep) override {
    keep_ = keep;
    if (std::exchange(onlyNewer_, false)) {
      ReadNewer();
      standsAsItWas_ = true;
      return true;
    }
    lines_.clear();
    newest_ = 0;
    reader_ = begin_ ? begin_() : StockHistoryReader();
    more_ = true;
    return true;
  }
  bool ReadOn() override {
    if (std::exchange(standsAsItWas_, false)) return more_;
    const std::size_t enough = lines_.size() + kScreen;
    QElapsedTimer time;
    time.start();
    while (more_ && lines_.size() < enough && time.elapsed() < kMoment) {
      std::vector<StockLine> piece;
      more_ = reader_.ReadOn(piece);
      if (!piece.empty()) {
        newest_ = std::max(newest_, piece.front().id);
        oldest_ = piece.back().id;
      }
      Keep(piece);
    }
    return more_;
  }
  void ReadAll(const std::function<void()>& then) override {
    const ProgressRun run(progress_, "Sorting Stock History ...");
    const auto all = static_cast<double>(std::max<std::int64_t>(newest_, 1));
    while (ReadOn()) progress_.Percent(100 * (1 - static_cast<double>(oldest_) / all));
    then();
  }
  bool IsSortedBy(const GridSort& sort) const override {
    return sort.column < 0 || (sort.column == When && sort.descending);
  }
  std::int64_t Key(int row) const override { return lines_.at(static_cast<std::size_t>(row)).id; }
  int RowOf(std::int64_t key) const override {
    const auto found = std::ranges::lower_bound(lines_, key, std::greater{}, &StockLine::id);
    return found == lines_.end() || found->id != key ? -1 : static_cast<int>(found - lines_.begin());
  }

  int Rows() const override { return static_cast<int>(lines_.size()); }
  const StockLine& Line(int row) const { return At(row); }
  std::vector<RowTarget> Targets(int row) const override { return vellumark::TargetsOf(At(row)); }
  std::string Text(int row, int column) const override {
    return (column == Difference && At(row).change > 0 ? "+" : "") + RecordSource::Text(row, column);
  }
  double Number(int row, int column) const override {
    if (column == When) return static_cast<double>(At(row).id);  // the order of writing
    return RecordSource::Number(row, column);
  }

 protected:
  const StockLine& At(int row) const override { return lines_.at(static_cast<std::size_t>(row)); }

 private:
  void Keep(std::vector<StockLine>& piece) {
    for (StockLine& line : piece) {
      lines_.push_back(std::move(line));
      if (keep_ && !keep_(static_cast<int>(lines_.size()) - 1)) lines_.pop_back();
    }
  }

  void ReadNewer() {
    std::vector<StockLine> older;
    older.swap(lines_);
    StockHistoryReader reader = begin_ ? begin_() : StockHistoryReader();
    const std::int64_t known = newest_;
    for (bool newer = true; newer;) {
      std::vector<StockLine> piece;
      newer = reader.ReadOn(piece) && (piece.empty() || piece.back().id > known);
      std::erase_if(piece, [&](const StockLine& line) { return line.id <= known; });
      if (!piece.empty()) newest_ = std::max(newest_, piece.front().id);
      Keep(piece);
    }
    std::ranges::move(older, std::back_inserter(lines_));
  }

  std::vector<StockLine> lines_;
  std::function<StockHistoryReader()> begin_;
  std::function<bool(int row)> keep_;
  StockHistoryReader reader_;
  Progress& progress_;
  std::int64_t newest_ = 0;  // that was read, kept or not
  std::int64_t oldest_ = 0;
  bool more_ = false;
  bool onlyNewer_ = false;
  bool standsAsItWas_ = false;
};

StockHistoryForm::StockHistoryForm(WindowList& windowList)
    : Window(windowList, "StockHistoryForm", tr("Stock History")), source_(std::make_shared<Source>(session)) {
  setWindowIcon(Icon("Inventory"));
  Form form(*this);
  name_ = form.Name("cmbColorName", ColorsOnFile(session));
  name_->setPlaceholderText(tr("All colors"));
  lot_ = form.Text("txtLotNumber", TextRule::Any(kLotTextLength));
  lot_->setPlaceholderText(tr("All lots"));
  lot_->setAccessibleName(tr("Lot Number"));
  lot_->setMinimumWidth(160);
  lot_->setMaximumWidth(200);
  for (TextField* field : {static_cast<TextField*>(name_), lot_}) field->DoNotTrack();
  auto* find = form.Button("cmdFind", tr("S&how"));
  form.Row(tr("&Name"), {name_, form.Hint(tr("Lot Number")), lot_, find, form.Button("cmdClear", tr("C&lear")),
                         count_ = form.Hint({}, "lblCount")});
  SetDefaultButton(find);
  list_ = form.Table("fgHistory");
  std::vector<GridColumn> columns = source_->Columns();
  for (const int column : {Who, Kind, Document, Reason}) columns[static_cast<std::size_t>(column)].choosable = true;
  list_->SetColumns(std::move(columns));
  QLineEdit* filter = list_->ShowFilter(tr("Filter"));
  list_->SetEmptyText(tr("No stock has moved"));
  list_->SetSource(source_);
  list_->SetSort({When, true});
  list_->setAccessibleName(tr("Stock history"));
  form.Wide(list_, 1);
  takeBack_ = form.Button("cmdTakeBack", tr("&Take back"));
  takeBack_->setToolTip(tr("Undo a scanned booking or one of a Job"));
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  connect(list_, &Grid::RowActivated, this, [this](int row) { LeadOn(row); });
  connect(RowMenu::Of(*list_), &RowMenu::Opens, this, [this, filter](QMenu& menu, int row) {
    const QString user = Q(source_->Line(row).user);
    if (user.isEmpty()) return;
    menu.addSeparator();
    connect(menu.addAction(tr("Only lines of %1").arg(user)), &QAction::triggered, this,
            [filter, user] { filter->setText(user); });
  });
  form.ButtonsWithoutDefault(
      {form.Button("cmdClose", tr("Close")), takeBack_, print_ = form.Button("cmdPrint", tr("&Print"))});
  connect(&list_->Model(), &GridModel::RowsRead, this, [this] { ShowCount(); });
  connect(name_, &NameBox::Picked, this, [this] { cmdFind_Click(); });
}

StockHistoryForm::~StockHistoryForm() = default;

void StockHistoryForm::OnOpen(const Arguments& arguments) {
  name_->SetText(arguments.Has("Color_Name") ? arguments.Text("Color_Name") : std::string());
  lot_->SetText("");
  cmdFind_Click();
  if (arguments.Has("Kind")) {
    shownKind_ = arguments.Get<ColorKind>("Kind");
    ShowLines();
  }
}

void StockHistoryForm::cmdFind_Click() {
  const std::string name = ReadName(session, name_->Text());
  shownName_ = name.empty() ? std::nullopt : std::optional(name);
  shownKind_.reset();
  ShowLines();
}

void StockHistoryForm::cmdClear_Click() {
  name_->SetText("");
  lot_->SetText("");
  cmdFind_Click();
  name_->setFocus();
}

void StockHistoryForm::UpdateEnabled() {
  print_->setEnabled(CanPrint(windows));
  const int row = list_->CurrentRow();
  takeBack_->setEnabled(row >= 0 && IsScanBooking(source_->Line(row).event, source_->Line(row).change));
}

// Enter opens what moved the stock.
void StockHistoryForm::LeadOn(int row) {
  const std::vector<RowTarget> targets = source_->Targets(row);
  if (targets.empty()) return;
  QMenu menu;
  AddRowActions(windows, menu, {targets.front()}, this);
  if (!menu.isEmpty()) menu.actions().front()->trigger();
}

void StockHistoryForm::cmdTakeBack_Click() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  const std::int64_t line = source_->Line(row).id;
  if (!session.prompt.Ask(U8(tr("Take Back")), U8(tr("Take this booking back?")), Answer::No)) return;
  Accepted(UndoScan(session, line));
}

void StockHistoryForm::cmdPrint_Click() {
  PrintSheet(windows, Sheet::Of(U8(tr("Stock History")), ListHistory(session, Filter())));
}

StockHistoryFilter StockHistoryForm::Filter() const {
  StockHistoryFilter filter;
  filter.name = shownName_;
  filter.kind = shownKind_;
  if (const std::string lot = Trim(lot_->Text()); !lot.empty()) filter.lot = lot;
  return filter;
}

void StockHistoryForm::ShowLines() {
  source_->Show([this, filter = Filter()] { return StockHistoryReader(session, filter); });
  list_->Refresh();
}

void StockHistoryForm::ShowCount() {
  const QString lines = QLocale().toString(source_->Rows());
  if (list_->Model().canFetchMore())
    count_->setText(tr("The latest %1 lines").arg(lines));
  else
    count_->setText(source_->Rows() == 1 ? tr("1 line") : tr("%1 lines").arg(lines));
}

// Of two colours of one name the other one's rename leaves the name; it is followed when no colour bears it any more.
bool StockHistoryForm::IsShown(const Change& change) const {
  if (!EqualNoCase(change.database, session.CurrentDatabase)) return false;
  if (shownKind_) return change.kind == ChangeKind(*shownKind_);
  if (change.kind != Change::Kind::Basic && change.kind != Change::Kind::Mix) return false;
  const ColorKind other = change.kind == Change::Kind::Mix ? ColorKind::Basic : ColorKind::Mix;
  return !ColorIsThere(session, other, *shownName_);
}

void StockHistoryForm::OnChanges(const std::vector<Change>& changes) {
  for (const Change& change : changes) {
    if (shownName_ && change.what == Change::What::Renamed && EqualNoCase(change.name, *shownName_) &&
        IsShown(change)) {
      shownName_ = change.newName;
      name_->SetText(change.newName);
    }
  }
  const bool onlyStock =
      std::ranges::all_of(changes, [](const Change& change) { return change.what == Change::What::Updated; });
  if (!onlyStock || !Trim(lot_->Text()).empty()) return ShowLines();
  source_->ReadOnlyNewer();
  list_->Refresh();
}

}  // namespace vellumark::desktop
