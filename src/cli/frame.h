#pragma once

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/arguments.h"
#include "cli/output.h"
#include "core/base/refusal.h"
#include "core/base/sheet.h"
#include "core/base/table.h"
#include "core/session/acts.h"
#include "paper/print_file.h"

namespace vellumark::cli {

enum Exit : int { ExitDone = 0, ExitRefused = 1, ExitUsage = 2, ExitQuestion = 3, ExitFailed = 4 };

/// What stands open when a verb runs.
enum class Needs {
  Nothing,   ///< Support Files and settings only
  Login,     ///< the same, for a user of the default Data File, where it has users: what he sees goes by his rights
  File,      ///< the Data File, its current Database (or the one of --db) too
  Writable,  ///< the same, refused while the file is an archive or backup copy
};

/// What a verb works with.
struct Context {
  Session& session;
  bool json = false;
  std::string dataFile;  ///< --file, or the default of the settings; not opened with Needs::Nothing
  /// The answer for people. When empty it is made from the JSON: arrays of objects as a table, an object as a line for
  /// each key.
  std::string text = {};
  /// The answer that is a list: it is read and written row by row when the verb is done.
  std::optional<ListTable> list = {};
  std::string title = {};           ///< of the list on paper
  std::optional<Sheet> sheet = {};  ///< what --out prints in the place of the list
  bool prints = false;              ///< --out was given: the answer is for people, on paper
  int exitStatus = ExitDone;        ///< of an answer that is whole and tells of something amiss
  std::string user = {};            ///< --user; empty when not given
  std::string password = {};        ///< --password, or VELLUMARK_PASSWORD
  /// Opens `dataFile` for writing, for a verb with Needs::Nothing that finds that it needs it.
  std::function<Result<void>()> open = {};

  /// What a verb returns that answers with a list.
  Result<Json> Answer(ListTable table) {
    list = std::move(table);
    return Json();
  }
};

/// How a list is wanted, as given on the command line.
struct ListWish {
  std::string sort;
  std::string then;
  bool descending = false;
  std::string filter;
  std::optional<std::size_t> limit;
};

/// Where an answer is to be printed, and how.
struct PrintWish {
  std::string out;  ///< a PDF; empty: it is not printed
  paper::PaperWish paper;
};

/// A verb's procedure: its JSON answer, or the refusal of the rule that stopped it. Json() (null) prints nothing.
using Action = std::function<Result<Json>(Context&)>;

/// Collects what was chosen on the command line.
class Commands {
 public:
  /// `verb` is a subcommand of a noun; its options write into variables that `action` holds (by shared_ptr). A command
  /// without a row in the table of acts is a fault of the program: std::logic_error.
  void Add(CLI::App* verb, Needs needs, Action action);
  /// A verb that lists, with the options for its order, for what is wanted of it, and for printing it under `title`.
  void AddList(CLI::App* verb, Needs needs, std::string title, Action action);
  /// Gives a verb that answers with a list or a sheet the options for printing it.
  CLI::Option* AddPrinting(CLI::App* verb);

  Needs needs = Needs::Nothing;
  Act act = Act::Look;
  Action chosen;
  ListWish wish;
  PrintWish print;
};

/// The options of the pages that `out` asks for.
void AddPaper(CLI::App* verb, CLI::Option* out, PrintWish& print);

/// The noun's App under `app`, with its help.
CLI::App* AddNoun(CLI::App& app, const std::string& name, const std::string& description);

/// Fault of an option or argument without a text, as scripts pass it when a variable of theirs is empty.
std::string NotEmpty(const std::string& text);
/// A list given by one option several times, one item each time, so that it takes no word that follows.
CLI::Option* OneEachTime(CLI::Option* option);

/// "FIELD=VALUE" apart at the first "="; nothing without one. For "NAME=AMOUNT" with names that hold "=", the last one.
std::optional<std::pair<std::string, std::string>> SplitPair(std::string_view text, bool atLast = false);

/// A value of the Data File: Singles as the shortest decimal, dates as text (the time left out when it is midnight), an
/// absent value as null. `field` tells Boolean and Date.
Json FieldJson(const Field& field, const Value& value);

/// The readable form of an answer.
std::string ReadableText(const Json& answer);

// One per noun.
void AddFileCommands(CLI::App& app, Commands& commands);
void AddSettingsCommands(CLI::App& app, Commands& commands);
void AddDatabaseCommands(CLI::App& app, Commands& commands);
void AddTemplateCommands(CLI::App& app, Commands& commands);
void AddColorCommands(CLI::App& app, Commands& commands);
void AddFormulaCommands(CLI::App& app, Commands& commands);
/// The verbs `import` and `export` of the noun `formula`.
void AddFormulaExchangeCommands(CLI::App& formulaNoun, Commands& commands);
void AddAdditiveSetCommands(CLI::App& app, Commands& commands);
/// The bulk tools of a Database.
void AddToolsCommands(CLI::App& app, Commands& commands);
void AddStockCommands(CLI::App& app, Commands& commands);
void AddBatchCommands(CLI::App& app, Commands& commands);
void AddJobCommands(CLI::App& app, Commands& commands);
/// The nouns `scale` and `dispenser`.
void AddScaleCommands(CLI::App& app, Commands& commands);
void AddDispenserCommands(CLI::App& app, Commands& commands);
void AddDesignCommands(CLI::App& app, Commands& commands);
void AddEstimateCommands(CLI::App& app, Commands& commands);
void AddReportCommands(CLI::App& app, Commands& commands);
void AddFindCommands(CLI::App& app, Commands& commands);
void AddArchiveCommands(CLI::App& app, Commands& commands);
void AddBackupCommands(CLI::App& app, Commands& commands);
void AddCloudCommands(CLI::App& app, Commands& commands);
/// The verb `report-upload` of the noun `cloud`: `send` gets the name of a report and its text.
void AddReportUpload(CLI::App* cloudNoun, Commands& commands,
                     std::function<Result<Json>(Context&, const std::string& name, const std::string& text)> send);
void AddLabelCommands(CLI::App& app, Commands& commands);
void AddUndoCommands(CLI::App& app, Commands& commands);
void AddUsersCommands(CLI::App& app, Commands& commands);

}  // namespace vellumark::cli
