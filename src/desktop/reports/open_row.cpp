#include "desktop/reports/open_row.h"

#include <QApplication>

#include "core/base/text.h"

namespace vellumark::desktop {
namespace {

void OpenKnown(WindowList& windows, const std::string& window, const Arguments& arguments) {
  if (windows.Knows(window))
    windows.OpenForm(window, arguments);
  else
    QApplication::beep();
}

}  // namespace

void OpenRow(WindowList& windows, const RowTarget& target) {
  using Kind = RowTarget::Kind;
  const Session& session = windows.session;
  const bool here = EqualNoCase(target.database, session.CurrentDatabase);
  switch (target.kind) {
    case Kind::Batch:
    case Kind::Basic:
    case Kind::Mix:
      if (!here) {
        windows.RunDialog("ViewRecordForm", {{"Target", target}});
      } else if (target.kind == Kind::Batch) {
        const bool busy = windows.IsInEdit("BatchForm") || windows.IsInEdit("MixColorsForm");
        OpenKnown(windows, busy ? "ViewBatchForm" : "BatchForm", {{"BatchNo", target.BatchNo}});
      } else {
        OpenKnown(windows, target.kind == Kind::Mix ? "MixColorsForm" : "BasicColorsForm",
                  {{"FindRecord", target.name}});
      }
      return;
    case Kind::Job:
      return OpenKnown(windows, "JobForm", {{"JobNumber", target.name}});
    case Kind::Design:
      return OpenKnown(windows, "JobDesigns", {{"DesignID", target.name}});
    case Kind::Database:
      if (session.FindDatabase(target.database) == nullptr) {
        windows.session.prompt.Tell("No Information Found",
                                    "There was no more information found for this database. This Database may have "
                                    "been deleted.");
        return;
      }
      break;
    case Kind::None:
      break;
  }
  QApplication::beep();
}

}  // namespace vellumark::desktop
