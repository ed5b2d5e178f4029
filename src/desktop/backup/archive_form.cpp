#include "desktop/backup/archive_form.h"

#include <QFileInfo>
#include <QLabel>

#include "core/shell/archiving.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QString DayText(const std::optional<DateTime>& day) {
  return day ? QLocale().toString(QDate(day->year, day->month, day->day), QLocale::ShortFormat) : QStringLiteral("-");
}

}  // namespace

ArchiveForm::ArchiveForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ArchiveForm", tr("Archive Data File")), preview_(PreviewArchive(session)) {
  Form form(*this);
  const auto line = [&](const QString& text, const QString& value, const char* name) {
    form.Row(text, form.Label(name, value));
  };
  line(tr("According to the computer, today's date is : "), DayText(preview_.today), "lblToday");
  line(tr("The oldest Batch Record in the Data File is : "), DayText(preview_.oldest), "lblOldestBatchRecord");
  line(tr("Batch && Job Records dated before : "), DayText(preview_.cutoff), "lblCutoffDate");
  Paragraph(form, tr("are the only items") + " " + tr("removed from the Data File."));
  Paragraph(form, tr("Does not remove Master Formulas && Basic Colors from the Data File.").replace("&&", "&"));
  auto* grid = form.Table("fg");
  auto source = std::make_shared<RecordRows<MovingCount>>(MovingColumns());
  source->rows = preview_.counts;
  grid->SetColumns(source->Columns());
  grid->SetSource(source);
  const ListTable table = MovingColumns().Of(preview_.counts);
  TableTotals totals(table);
  table.read([&](const TableRow& row) {
    totals.Add(row);
    return true;
  });
  grid->SetTotals(totals.Texts());
  form.Wide(grid, 1);
  line(tr("Archive"), Q(preview_.archive.filename().string()), "lblArchiveName");
  // Whoever presses Enter without reading moves nothing.
  form.ButtonsWithoutDefault({archive_ = form.Button("cmdArchive", tr("&Archive")), form.Button("cmdSkip", tr("&Skip"))});
  findChild<QLabel*>("lblArchiveName")->setToolTip(Q(preview_.archive.string()));
  resize(720, 520);
}

void ArchiveForm::UpdateEnabled() {
  archive_->setEnabled(preview_.Records() > 0);
}

void ArchiveForm::cmdArchive_Click() {
  bool moved = false;
  WithFiles(*this, tr("Archive Data File"), [&] { moved = FormHost::Accepted(ArchiveDataFile(session)); });
  if (moved) accept();
}

}  // namespace vellumark::desktop
