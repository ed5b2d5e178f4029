#include "desktop/cloud/file_rows.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

enum { kName, kDate, kSize, kNote };

// Hosts tell the time of Greenwich.
QDateTime TimeOf(const CloudFile& file) {
  const DateTime& told = *file.date;
  return QDateTime(QDate(told.year, told.month, told.day), QTime(told.hour, told.minute, told.second), Qt::UTC).toLocalTime();
}

std::string TextOf(const CloudFile& file, int column) {
  switch (column) {
    case kName:
      return file.name;
    case kDate:
      return file.date ? U8(QLocale().toString(TimeOf(file), QLocale::ShortFormat)) : std::string();
    case kSize:
      return U8(QLocale().formattedDataSize(file.size, 1, QLocale::DataSizeTraditionalFormat));
    case kNote:
      return file.note;
    default:
      return {};
  }
}

double NumberOf(const CloudFile& file, int column) {
  if (column == kDate && file.date) return static_cast<double>(TimeOf(file).toSecsSinceEpoch());
  return column == kSize ? static_cast<double>(file.size) : kNoNumber;
}

}  // namespace

std::vector<GridColumn> FileRows::Columns(const QString& note) {
  GridColumn date = GridColumn::Text(Grid::tr("Date"), 160);
  date.sort = GridColumn::Sort::Number;
  std::vector<GridColumn> columns{GridColumn::Text(Grid::tr("File"), 384), date, GridColumn::Number(Grid::tr("Size"), 88)};
  if (!note.isEmpty()) columns.push_back(GridColumn::Text(note, 96));
  return columns;
}

std::string FileRows::Text(int row, int column) const {
  return column == 0 ? std::string() : TextOf(files->at(static_cast<std::size_t>(row)), column - 1);
}

double FileRows::Number(int row, int column) const {
  return column == 0 ? CheckedSource::Number(row, column) : NumberOf(files->at(static_cast<std::size_t>(row)), column - 1);
}

std::vector<CloudFile> FileRows::CheckedFiles() const {
  std::vector<CloudFile> checked;
  for (const int row : CheckedRows()) checked.push_back(files->at(static_cast<std::size_t>(row)));
  return checked;
}

std::string FileChoiceRows::Text(int row, int column) const {
  return TextOf(files->at(static_cast<std::size_t>(row)), column);
}

double FileChoiceRows::Number(int row, int column) const {
  return NumberOf(files->at(static_cast<std::size_t>(row)), column);
}

}  // namespace vellumark::desktop
