#include "desktop/reports/quick_find_form.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongest = 60;
constexpr std::chrono::milliseconds kMoment(10);

QString KindText(const QuickHit& hit) {
  switch (hit.kind) {
    case QuickHit::Kind::Command:
      return QuickFindForm::tr("Command");
    case QuickHit::Kind::Formula:
      return QuickFindForm::tr("Master Formula");
    case QuickHit::Kind::Basic:
      return QuickFindForm::tr("Basic / Additive");
    case QuickHit::Kind::Batch:
      return QuickFindForm::tr("Batch");
    case QuickHit::Kind::Job:
      return QuickFindForm::tr("Job");
    case QuickHit::Kind::Lot:
      return QuickFindForm::tr("Lot");
    default:
      return QuickFindForm::tr("Design");
  }
}

const char* MarkOf(const QuickHit& hit) {
  switch (hit.kind) {
    case QuickHit::Kind::Formula:
      return "Color";
    case QuickHit::Kind::Basic:
      return "basic";
    case QuickHit::Kind::Batch:
      return "Batch";
    case QuickHit::Kind::Job:
      return "Job";
    case QuickHit::Kind::Lot:
      return "lot";
    case QuickHit::Kind::Design:
      return "InkEst";
    default:
      return "Find";
  }
}

}  // namespace

class QuickFindForm::Source : public GridSource {
 public:
  std::vector<QuickHit> hits;

  int Rows() const override { return static_cast<int>(hits.size()); }
  std::string Text(int row, int column) const override {
    const QuickHit& hit = hits.at(static_cast<std::size_t>(row));
    return column == 0 ? hit.name : column == 1 ? hit.detail : U8(KindText(hit));
  }
  const char* Mark(int row, int column) const override {
    return column == 0 ? MarkOf(hits.at(static_cast<std::size_t>(row))) : nullptr;
  }
};

QuickFindForm::QuickFindForm(WindowList& windowList, QWidget* owner, std::shared_ptr<QuickIndex> index)
    : Dialog(windowList, owner, "QuickFindForm", tr("Find anything")),
      index_(std::move(index)),
      source_(std::make_shared<Source>()) {
  Form form(*this);
  typed_ = form.Text("txtFind", TextRule::Any(kLongest));
  typed_->setPlaceholderText(tr("Name, code, number or command"));
  typed_->setAccessibleName(tr("Find"));
  typed_->setMaximumWidth(QWIDGETSIZE_MAX);
  typed_->DoNotTrack();
  typed_->installEventFilter(this);
  form.Wide(typed_);
  list_ = form.Table("fgHits");
  std::vector<GridColumn> columns{GridColumn::Text(tr("Name"), 288), GridColumn::Text(tr("More"), 288),
                                  GridColumn::Text(tr("Kind"), 144)};
  for (GridColumn& column : columns) column.sortable = false;
  list_->SetColumns(std::move(columns));
  list_->SetSource(source_);
  list_->setAccessibleName(tr("Found"));
  form.Wide(list_, 1);
  form.Buttons({open_ = form.Button("cmdOpen", tr("&Open")), form.Button("cmdCancel", tr("Cancel"))});
  connect(typed_, &QLineEdit::textChanged, this, &QuickFindForm::Search);
  connect(list_, &Grid::RowActivated, this, &QuickFindForm::cmdOpen_Click);
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  reading_.setParent(this);
  connect(&reading_, &QTimer::timeout, this, &QuickFindForm::ReadOn);
  resize(800, 480);
}

QuickFindForm::~QuickFindForm() = default;

void QuickFindForm::OnOpen(const Arguments& arguments) {
  using Commands = std::vector<std::pair<std::string, std::string>>;
  if (arguments.Has("Commands")) index_->SetCommands(arguments.Get<Commands>("Commands"));
  if (session.RecordsetsOpen) {
    index_->Begin();
    reading_.start(0);
  }
  Search();
}

void QuickFindForm::ReadOn() {
  if (session.RecordsetsOpen && index_->ReadOn(kMoment)) return;
  reading_.stop();
  Search();
}

void QuickFindForm::Search() {
  const std::string typed = typed_->Text();
  source_->hits = index_->Find(typed);
  list_->SetEmptyText(typed.empty()         ? tr("Type what you look for")
                      : reading_.isActive() ? tr("Reading ...")
                                            : tr("Nothing is called so"));
  list_->SetCurrentRow(-1);
  list_->Refresh();
  if (source_->Rows() > 0) list_->SetCurrentRow(0);
  Changed();
}

void QuickFindForm::UpdateEnabled() {
  open_->setEnabled(list_->CurrentRow() >= 0);
}

void QuickFindForm::cmdOpen_Click() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  result.Set("Hit", source_->hits.at(static_cast<std::size_t>(row)));
  accept();
}

// The list is walked from the field.
bool QuickFindForm::eventFilter(QObject* watched, QEvent* event) {
  if (watched != typed_ || event->type() != QEvent::KeyPress) return Dialog::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  constexpr int kPage = 8;
  int step = 0;
  if (key == Qt::Key_Down) step = 1;
  if (key == Qt::Key_Up) step = -1;
  if (key == Qt::Key_PageDown) step = kPage;
  if (key == Qt::Key_PageUp) step = -kPage;
  if (step == 0) return false;
  if (source_->Rows() > 0) list_->SetCurrentRow(std::clamp(list_->CurrentRow() + step, 0, source_->Rows() - 1));
  return true;
}

}  // namespace vellumark::desktop
