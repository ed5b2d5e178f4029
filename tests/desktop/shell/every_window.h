#pragma once

#include <gtest/gtest.h>

#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <set>

#include "core/batch/open.h"
#include "core/colors/formula_work.h"
#include "core/colors/formulas.h"
#include "desktop/kit/message_prompt.h"
#include "exchange_arguments.h"
#include "furnished_room.h"
#include "running.h"
#include "support/old_files.h"

namespace vellumark::test {

/// The program on a furnished ink room, and a way to visit each of its windows.
struct EveryWindow : testing::Test {
  using Lines = std::vector<std::string>;
  using Visit = std::function<void(QWidget& window)>;

  EveryWindow() : running(room.folder.Path()) {
    if (!running.Start({desktop::ChooseFile, [this](const auto&) { return room.folder.Path(); }}))
      throw std::runtime_error("the program does not start");
    WriteOldFile(older, OldTables(MakeOldRoom(3), 39, 0));
    running.prompt.SetHook([this](const Message& message) {
      told.push_back(message.title);
      return message.buttons == Buttons::Ok || message.buttons == Buttons::OkCancel ? Answer::Ok : Answer::No;
    });
    // Whatever else comes up on the way is noted and goes.
    QObject::connect(&others, &QTimer::timeout, [this] {
      auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (modal == nullptr || modal == visited || (visited == nullptr && modal->objectName() == awaited) ||
          dynamic_cast<desktop::WaitWindow*>(modal) != nullptr)
        return;
      told.push_back(modal->objectName().toStdString());
      modal->reject();
    });
    others.start(10);
    running.program.Main().setUpdatesEnabled(false);  // nobody looks
  }
  ~EveryWindow() override {
    others.stop();
    running.program.Main().close();
    Settle();
  }

  desktop::Arguments ShownBy(const std::string& name) {
    using desktop::Arguments;
    static const std::set<std::string_view> ofRecord{"CostInfForm",        "CostModelForm",  "VOC_HAP_CalcForm",
                                                     "MoreDataForm",       "JobItemsForm",   "AdjustBasicForm",
                                                     "AdjustAdditionForm", "AddAdditionForm"};
    if (ofRecord.contains(name)) {
      record = ReadBatch(running.session, 1);
      return {{"Record", &*record}, {"Row", 0}};
    }
    if (name == "SaveModifiedBatch") {
      record = ReadBatch(running.session, 1);
      return {{"Record", static_cast<const BatchRecord*>(&*record)}};
    }
    if (name == "MixColorsForm") return {{"FindRecord", "TINT"}};
    if (name == "BatchForm") return {{"Color_Name", "TARGET"}};
    if (name == "ViewBatchForm") return {{"BatchNo", 1}};
    if (name == "AdjustFormulaForm" || name == "DuplicateFormulaForm")
      return {{"Work", LoadFormulaWork(running.session, *ReadMix(running.session, "TINT"))}};
    if (name == "NewMixNameForm") return {{"Color_Name", "TINT"}};
    if (name == "ImportColumnsForm") return OwnColumns(room.folder.Path());
    if (name == "ImportCompareFormulasForm" || name == "ImportCompareCloudFormulas") return ComparedTarget(running.session);
    return {{"FindRecord", "RED"},  {"Color_Name", "RED"},
            {"SetName", "STD SET"}, {"Kind", ColorKind::Basic},
            {"DesignID", "BOX"},    {"Username", "ANN"},
            {"Path", older},        {"FileVersion", 39},
            {"JobNumber", "J1"},    {"Rows", std::vector<std::int64_t>{1}},
            {"Number", 0},          {"IsNumber", false}};
  }

  /// Opens the window of that name, visits it and lets it go unsaved. One that needs what only the window behind it has
  /// is passed over.
  void On(const std::string& name, const Visit& visit) { On(name, ShownBy(name), visit); }
  void On(const std::string& name, const desktop::Arguments& arguments, const Visit& visit) {
    Settle();
    told.clear();
    bool isDialog = false;
    try {
      desktop::Window* window = running.windows.OpenForm(name, arguments);
      Settle();
      if (window != nullptr) visit(*window);
      running.windows.CloseChildWindows();
    } catch (const std::logic_error& none) {
      isDialog = std::string_view(none.what()).starts_with("there is no window");
      if (!isDialog) throw;
    }
    if (isDialog) {
      QTimer poll;
      QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        const QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || dialog->objectName().toStdString() != name) return;
        poll.stop();
        visited = dialog;
        Settle();
        visit(*dialog);
        if (dialog != nullptr) dialog->done(QDialog::Rejected);
      });
      poll.start(1);
      awaited = QString::fromStdString(name);
      try {
        running.windows.RunDialog(name, arguments);
      } catch (const std::logic_error& missing) {
        EXPECT_TRUE(std::string_view(missing.what()).starts_with("argument ")) << missing.what();
      }
      visited = nullptr;
      awaited.clear();
    }
    Settle();
  }

  FurnishedRoom room;
  const std::string older = (room.folder / "Old.vkd").string();  ///< a Data File of an earlier version
  RunningProgram<desktop::MessagePrompt> running;
  QTimer others;
  QString awaited;  ///< the dialog that is being opened and not visited yet
  QPointer<QDialog> visited;
  std::optional<BatchRecord> record;
  Lines told;
};

}  // namespace vellumark::test
