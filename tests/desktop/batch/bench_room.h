#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <memory>
#include <string>
#include <vector>

#include "core/settings/settings.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/cell_button.h"
#include "desktop/batch/register.h"
#include "desktop/kit/grid.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/sample_room.h"

namespace vellumark::test {

using desktop::CellButton;

/// The Batch Window on the screen of an ink room, by the keys and clicks of an operator.
struct BenchRoom : testing::Test, InkRoom {
  BenchRoom() {
    RegisterBatchWindows(windows);
    session.RecordsetsOpen = true;
    Setting("InvLotTracking", "0");
    Setting("InvRecordMethod", "0");
  }

  /// Two inks, a target of both, and a leftover of 4 lb. that is half red, half blue.
  void HaveTarget() {
    Basic("RED", {{"Inventory", 100.0F}, {"PurchaseCost", 4.0F}, {"Red", 220}, {"Green", 30}, {"Blue", 40}});
    Basic("BLUE", {{"Inventory", 100.0F}, {"PurchaseCost", 6.0F}, {"Red", 20}, {"Green", 60}, {"Blue", 200}});
    Basic("DRIER", {{"Inventory", 10.0F}, {"PurchaseCost", 2.0F}});
    Mix("TARGET", {{"RED", 60}, {"BLUE", 40}}, {{"Recycle", true}, {"Inventory", 0.0F}});
    Mix("LEFTOVER", {{"RED", 50}, {"BLUE", 50}}, {{"Recycle", true}, {"Inventory", 4.0F}});
  }

  desktop::BatchForm& Open() {
    form = qobject_cast<desktop::BatchForm*>(Windows().OpenForm("BatchForm"));
    ShowActive(*form);
    return *form;
  }
  desktop::BatchForm& OpenTarget() {
    HaveTarget();
    return Open();
  }
  /// Name, Enter, quantity, and then the key of an action.
  void Make(const std::string& name, const std::string& quantity, Qt::Key action) {
    form->FocusField("cmbColorName");
    TypeOn(name);
    PressOn(Qt::Key_Return);
    TypeOn(quantity);
    PressOn(action);
  }

  /// Does `act`, which opens a dialog, and `inside` in it; afterwards the window is in front again.
  void InDialog(const std::function<void()>& act, const std::function<void(QWidget&)>& inside) {
    WithModal(act, inside);
    ShowActive(*form);
  }

  std::string Text(const char* field) { return Control<QLineEdit>(*form, field).text().toStdString(); }
  std::string Label(const char* name) { return Control<QLabel>(*form, name).text().toStdString(); }
  CellButton& Cell(const char* name, int row) {
    return Control<CellButton>(*form, (std::string(name) + std::to_string(row)).c_str());
  }
  bool IsOn(const char* name) { return Control(*form, name).isEnabled(); }
  bool IsShown(const char* name) { return Control(*form, name).isVisible(); }
  /// "Mix LEFTOVER 4.000 lb." for each row on screen.
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (int i = 0; i < 22; ++i) {
      if (!Cell("lblAmount", i).isVisible()) break;
      const std::string number = std::to_string(i);
      rows.push_back(Label(("lblKind" + number).c_str()) + " " + Cell("lblName", i).text().toStdString() + " " +
                     Cell("lblAmount", i).text().toStdString() + " " + Label(("lblUnit" + number).c_str()));
    }
    return rows;
  }
  desktop::Grid& RecycleList() { return Control<desktop::Grid>(*form, "fgRecList"); }
  /// The Recycle List as it is shown: "LEFTOVER 80.00% 4.000".
  std::vector<std::string> Listed() {
    std::vector<std::string> lines;
    const QAbstractItemModel& model = *RecycleList().View().model();
    for (int row = 0; row < model.rowCount(); ++row) {
      QStringList cells;
      for (int column = 0; column < model.columnCount(); ++column) cells += model.index(row, column).data().toString();
      lines.push_back(cells.join(' ').toStdString());
    }
    return lines;
  }
  std::vector<std::string> Captions() {
    std::vector<std::string> captions;
    const QAbstractItemModel& model = *RecycleList().View().model();
    for (int column = 0; column < model.columnCount(); ++column)
      captions.push_back(model.headerData(column, Qt::Horizontal).toString().toStdString());
    return captions;
  }
  /// A click on a cell of the Recycle List.
  void ClickListed(int row) {
    QTableView& view = RecycleList().View();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      view.visualRect(view.model()->index(row, 0)).center());
    Settle();
  }
  Value Scalar(std::string_view sql, std::initializer_list<Value> parameters = {}) {
    return At().File().Scalar(sql, parameters);
  }
  float Stock(const char* table, const std::string& name) {
    return static_cast<float>(
        Scalar(std::string("SELECT Inventory FROM INK_") + table + " WHERE Color_Name = ?1", {name}).Number());
  }
  float BasicStock(const std::string& name) { return Stock("Basic", name); }
  float MixStock(const std::string& name) { return Stock("Mix", name); }

  /// From now on the questions are answered by `other`; for what no script can foresee.
  void AnswerBy(Prompt& other) {
    otherSession_ = std::make_unique<Session>(other, progress, clock);
    otherSession_->DataFolder = session.DataFolder;
    otherSession_->support = std::move(session.support);
    otherSession_->DataFileDB = std::move(session.DataFileDB);
    otherSession_->DataFileDB->SetChanges(&otherSession_->changes);
    otherSession_->DataFileName = session.DataFileName;
    otherSession_->DataFileOpen = otherSession_->RecordsetsOpen = true;
    otherSession_->CurrentDatabase = "INK";
    otherSession_->databaseList = {"INK"};
    ReadSettings(*otherSession_);
    otherWindows_ = std::make_unique<desktop::WindowList>(*otherSession_);
    RegisterBatchWindows(*otherWindows_);
  }
  Session& At() { return otherSession_ == nullptr ? session : *otherSession_; }
  desktop::WindowList& Windows() { return otherWindows_ == nullptr ? windows : *otherWindows_; }

  desktop::WindowList windows{session};
  desktop::BatchForm* form = nullptr;

 private:
  std::unique_ptr<Session> otherSession_;
  std::unique_ptr<desktop::WindowList> otherWindows_;
};

using Texts = std::vector<std::string>;

}  // namespace vellumark::test
