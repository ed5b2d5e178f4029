// Formulas out and in by the windows of the program: a whole ink room in each of the formats, and the one of another shop.

#include <gtest/gtest.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <algorithm>

#include "core/base/number.h"
#include "core/colors/formulas.h"
#include "core/exchange/formula_export.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/message_prompt.h"
#include "running.h"
#include "support/cli_run.h"
#include "support/places.h"

namespace vellumark::test {
namespace {

struct ExchangeInProgramTest : testing::Test {
  ExchangeInProgramTest() {
    const std::string other = (room.folder / "Other.vkd").string();
    Must({"file", "create", other, "--database", "HOUSE", "--empty"});
    for (const auto& verb : std::vector<std::vector<std::string>>{
             {"color", "add", "ROYAL BASE", "PurchaseCost=9"},
             {"color", "add", "SHOP GREEN BASE", "PurchaseCost=7.5", "Color_Code=SG", "Notes=strong"},
             {"formula", "add", "HARBOUR BLUE 3", "ROYAL BASE=50", "SHOP GREEN BASE=50"},
             {"formula", "add", "SHOP GREEN", "SHOP GREEN BASE=100", "Color_Code=SG 1"}}) {
      std::vector<std::string> there{"--file", other};
      there.insert(there.end(), verb.begin(), verb.end());
      Must(there);
    }
    const std::string file = room.MakeFile();
    Must({"formula", "import", (SourceFolder() / "data/ink_room/ink_room.mfe").string()});
    Database::Open(file, OpenMode::Exclusive)
        ->Execute("UPDATE INK_Mix SET Color_Code = 'F' || RowKey; UPDATE INK_Basic SET Color_Code = 'B' || RowKey");
    running.chooseFile = [this](const desktop::FileChoice&) { return QString::fromStdString(chosen.string()); };
    running.prompt.SetHook([this](const Message& message) {
      told.push_back(message.text.substr(0, message.text.find('\n')));
      return message.buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    });
    if (!running.Start({desktop::ChooseFile, [this](const auto&) { return room.folder.Path(); }}))
      throw std::runtime_error("the program does not start");
  }
  ~ExchangeInProgramTest() override {
    running.windows.CloseChildWindows();
    running.program.Main().close();
    Settle();
  }

  void Must(const std::vector<std::string>& words) const {
    if (const CliAnswer answer = room.Run(words); answer.status != 0) throw std::runtime_error(answer.err);
  }
  desktop::Window& Open(const char* name) {
    desktop::Window* window = running.windows.OpenForm(name);
    if (window == nullptr) throw std::runtime_error(name);
    running.program.Main().activateWindow();
    Settle();
    told.clear();
    return *window;
  }
  static void Page(QWidget& window, int page) {
    Control<QTabWidget>(window, "tabSteps").setCurrentIndex(page);
    Settle();
  }
  void Choose(desktop::Window& window, const std::filesystem::path& file) {
    chosen = file;
    Click(window, "cmdBrowse");
  }

  void ExportAll(int format) {
    desktop::Window& form = Open("DBExport_Formulas");
    Page(form, 0);
    Click(form, "cmdSelectAll");
    Page(form, 1);
    Click(form, QString("optFormat%1").arg(format).toUtf8().constData());
    Page(form, 2);
    Choose(form, room.folder / ("out" + std::to_string(format) +
                                std::string(FormulaFormats()[static_cast<std::size_t>(format)].extension)));
    Click(form, "cmdSave");
    EXPECT_EQ(told, Lines{"Formulas have been exported to the file:"});
  }
  desktop::Window& Compare(const std::filesystem::path& file, const char* newDatabase = nullptr) {
    desktop::Window& form = Open("DBImport_Formulas");
    Page(form, 0);
    Choose(form, file);
    Click(form, newDatabase == nullptr ? "optDest_Existing" : "optDest_New");
    if (newDatabase != nullptr) Fill(form, "txtDBName", newDatabase);
    Click(form, "cmdCompare");
    return form;
  }

  // Formulas by name, each with what stands in it to the last bit.
  using Lines = std::vector<std::string>;
  Lines Formulas(const std::string& database, bool codes, bool ordered) {
    Lines lines;
    const auto names = FormulasOfRange(running.session, {.database = database});
    for (const std::string& name : names.value_or(Lines{})) {
      const auto mix = ReadMix(running.session, name, database);
      Lines parts;
      for (const Ingredient& line : mix->Ingredients()) parts.push_back(line.name + "=" + ShortestText(line.amount));
      if (!ordered) std::ranges::sort(parts);
      std::string text = name + (codes ? "[" + mix->Color_Code + "]" : "");
      for (const std::string& part : parts) text += " " + part;
      lines.push_back(text);
    }
    return lines;
  }
  Lines Basics(const std::string& database, bool codes) {
    Lines lines;
    Statement row = running.session.File().Prepare("SELECT Color_Name, Color_Code FROM " + Quoted(database + "_Basic") +
                                                   " ORDER BY Color_Name");
    while (row.Step()) lines.push_back(row.Text(0) + (codes ? "[" + row.Text(1) + "]" : ""));
    return lines;
  }

  CliRoom room;
  RunningProgram<desktop::MessagePrompt> running{room.folder.Path()};
  std::filesystem::path chosen;
  Lines told;
};

TEST_F(ExchangeInProgramTest, AnInkRoomComesBackIntoANewDatabaseInEveryFormat) {
  for (int format = 0; format < kWrittenFormats; ++format) {
    SCOPED_TRACE(format);
    ExportAll(format);
    const std::string database = "BACK " + std::to_string(format);
    desktop::Window& form = Compare(chosen, database.c_str());
    EXPECT_EQ(Control<QLabel>(form, "lblCounts").text().toStdString(),
              "304 new, 0 different, 0 the same, 0 refused. Chosen: 304");
    told.clear();
    Click(form, "cmdImport");
    EXPECT_EQ(told, Lines{"Import Data has completed successfully."});
    const auto kind = static_cast<FormulaFormat>(format);
    const bool header = kind >= FormulaFormat::Header2;
    const bool codes = header || kind == FormulaFormat::Zg || kind == FormulaFormat::Ja;
    EXPECT_EQ(Formulas(database, codes, !header), Formulas("INK", codes, !header));
    const bool basicCodes = kind == FormulaFormat::Header2 || kind == FormulaFormat::Header2Xls;
    EXPECT_EQ(Basics(database, basicCodes), Basics("INK", basicCodes));
  }
}

TEST_F(ExchangeInProgramTest, AnotherShopsFormulasAreComparedChosenMergedAndTakenBack) {
  const Lines before = Formulas("INK", true, true);
  const Lines basics = Basics("INK", true);
  desktop::Window& form = Compare(room.folder / "Other.vkd");
  auto& list = Control<desktop::Grid>(form, "fgCompare");
  Lines shown;
  for (const int row : list.ShownRows())
    shown.push_back(list.Model().Source()->Text(row, 1) + ", " + list.Model().Source()->Text(row, 2) + ": " +
                    list.Model().Source()->Text(row, 4));
  EXPECT_EQ(shown, (Lines{"HARBOUR BLUE 3, Different: ROYAL BASE +48.240, SHOP GREEN BASE added, TRANSPARENT WHITE gone, "
                          "4C CYAN gone",
                          "SHOP GREEN, New: "}));
  EXPECT_EQ(Formulas("INK", true, true), before);
  Picture(running.program.Main(), "import-in-program");
  list.SetCurrentRow(0);
  WithModal([&] { Click(form, "cmdView"); },
            [](QWidget& dialog) {
              Click(dialog, "chkTake");
              Click(dialog, "cmdOK");
            });
  told.clear();
  Click(form, "cmdImport");
  EXPECT_EQ(told, Lines{"Import Data has completed successfully."});
  EXPECT_EQ(Formulas("INK", true, true).size(), before.size() + 1);
  EXPECT_EQ(ReadMix(running.session, "HARBOUR BLUE 3")->Ingredients(),
            (Recipe{{"ROYAL BASE", 50}, {"SHOP GREEN BASE", 50}}));
  EXPECT_EQ(ReadMix(running.session, "SHOP GREEN")->Color_Code, "SG 1");
  EXPECT_EQ(ReadMix(running.session, "SHOP GREEN")->BasicCost, 7.5F);
  const std::string report = Control<QPlainTextEdit>(form, "txtReport").toPlainText().toStdString();
  for (const char* line : {"Formulas added (1)", "Formulas changed (1)", "Basic Colors made (1)"})
    EXPECT_NE(report.find(line), std::string::npos) << report;
  Click(form, "cmdUndo");
  EXPECT_EQ(Formulas("INK", true, true), before);
  EXPECT_EQ(Basics("INK", true), basics);
}

}  // namespace
}  // namespace vellumark::test
