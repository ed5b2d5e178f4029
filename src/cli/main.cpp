// vellumark-cli: the rules of The Vellumark from the command line.

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "cli/frame.h"
#include "cli/login.h"
#include "cli/seams.h"
#include "core/base/date.h"
#include "core/base/number.h"
#include "core/base/platform.h"
#include "core/base/text.h"
#include "core/base/write_over.h"
#include "core/colors/rollup.h"
#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/shell/opening.h"
#include "core/shell/startup.h"

namespace vellumark::cli {
namespace {

namespace fs = std::filesystem;

struct GlobalOptions {
  std::string dataFolder;
  std::string file;
  std::string database;
  std::string user;
  std::string password;
  bool json = false;
  std::string today;
  std::string now;
  std::vector<std::string> answers;
  bool yes = false;
  bool no = false;
};

void AddGlobalOptions(CLI::App& app, GlobalOptions& options) {
  const auto text = [&app](const char* name, std::string& value, const char* help, const char* what) {
    app.add_option(name, value, help)->type_name(what)->check(NotEmpty);
  };
  text("--data-folder", options.dataFolder,
       "Folder of the Support Files (else VELLUMARK_DATA_FOLDER, the shared or the user's own folder)", "DIR");
  text("--file", options.file, "The Data File (else the one stored in the settings)", "PATH");
  text("--db", options.database, "The Database (else the file's current one)", "NAME");
  app.add_option("--user", options.user, "User name, where the Data File has users")->type_name("NAME");
  app.add_option("--password", options.password, "The user's password")->envname("VELLUMARK_PASSWORD");
  app.add_flag("--json", options.json, "Answer with one JSON value");
  text("--today", options.today, "The date that counts as today, YYYY-MM-DD", "DATE");
  text("--now", options.now, "The time that counts as now, \"YYYY-MM-DD HH:MM:SS\"", "TIME");
  OneEachTime(app.add_option("--answer", options.answers,
                             "\"TITLE=yes\" answers the question of that title: yes, no, ok, cancel"))
      ->type_name("TITLE=ANSWER");
  CLI::Option* yes = app.add_flag("--yes", options.yes, "Answer every other question with Yes");
  app.add_flag("--no", options.no, "Answer every other question with No")->excludes(yes);
}

/// Thrown for words on the command line that the parser could not judge.
struct WrongUsage {
  std::string text;
};

void TakeAnswers(const GlobalOptions& options, OptionPrompt& prompt) {
  for (const std::string& answer : options.answers) {
    const auto pair = SplitPair(answer, true);
    const std::string word = pair ? Upper(TrimView(pair->second)) : "";
    if (word == "YES") {
      prompt.AddAnswer(pair->first, Answer::Yes);
    } else if (word == "NO") {
      prompt.AddAnswer(pair->first, Answer::No);
    } else if (word == "OK") {
      prompt.AddAnswer(pair->first, Answer::Ok);
    } else if (word == "CANCEL") {
      prompt.AddAnswer(pair->first, Answer::Cancel);
    } else {
      throw WrongUsage{fmt::format("--answer {}: expected \"TITLE=yes\", no, ok or cancel", answer)};
    }
  }
  if (options.yes) prompt.SetRest(OptionPrompt::Rest::Yes);
  if (options.no) prompt.SetRest(OptionPrompt::Rest::No);
}

std::unique_ptr<Clock> ChosenClock(const GlobalOptions& options) {
  const std::string& text = options.now.empty() ? options.today : options.now;
  if (text.empty()) return std::make_unique<SystemClock>();
  const auto time = ParseDateTime(text);
  if (!time) throw WrongUsage{fmt::format("{} is not a date of the form YYYY-MM-DD or \"YYYY-MM-DD HH:MM:SS\"", text)};
  return std::make_unique<FixedClock>(*time);
}

Result<void> OpenForVerb(Context& context, const GlobalOptions& options, Needs needs) {
  Session& session = context.session;
  NoWindows windows(options.user, options.password);
  if (context.dataFile.empty())
    return Refuse("Data File", "No Data File is known yet. Name one with --file, or make one with: file create PATH");
  if (std::error_code error; !fs::exists(context.dataFile, error)) throw Failure(context.dataFile, "does not exist");
  session.DataFileName.clear();
  const DataFileKind kind = LookAtDataFile(context.dataFile);
  if (const VersionGate gate = GateOf(kind.version); gate == VersionGate::Older || (kind.jet && gate != VersionGate::Unusable))
    return Refuse("Data File",
                  fmt::format("Data File: {}\nhas a file version of: {}\n\n{} must be brought up to version {} first, with: file "
                              "upgrade PATH",
                              context.dataFile, kind.version,
                              kind.jet ? std::string("A Jet file") : fmt::format("Files of versions 2 to {}", kFileVersion - 1),
                              kFileVersion));
  if (!CheckDataFile(session, context.dataFile, windows)) return Refuse("Data File", session.StartupMessage);
  session.DataFileName = context.dataFile;
  OpenDataFile(session, windows);
  RunSupportLadder(session);
  if (!options.database.empty()) {
    if (auto changed = ChangeDatabase(session, options.database, false); !changed) return changed;
  }
  return needs == Needs::Writable ? RequireWritable(session) : Result<void>{};
}

// A refusal that cannot be written as JSON still stands on standard error and in the exit status. Behind the beginning
// of a list it is not written: what was cut off is no JSON value, and nobody takes it for a whole list.
int Report(Output& output, const Refusal& refusal, bool json, std::string_view kind, int exitCode) {
  const std::string text = refusal.declined ? "The question was answered with No; nothing was changed." : refusal.text;
  if (output.Drop() && json) {
    const Json answer{{std::string(kind), Json{{"title", refusal.title}, {"text", text}, {"field", refusal.field}}}};
    try {
      output.Write(JsonText(answer) + "\n");
      output.Finish();
    } catch (const Failure& unheard) {
      WriteError(Headed(unheard.subject, unheard.cause) + "\n");
    }
  }
  WriteError(Headed(refusal.title, text) + "\n");
  return exitCode;
}

Arrangement ArrangementOf(const ListWish& wish, const ListTable& table) {
  const auto column = [&](const std::string& name) -> std::optional<std::size_t> {
    if (name.empty()) return std::nullopt;
    if (const auto found = table.Find(name)) return found;
    std::string captions;
    for (const std::size_t shown : table.Shown())
      captions += (captions.empty() ? "" : ", ") + table.columns[shown].Caption();
    throw WrongUsage{fmt::format("{} is no column of this list, which has {}", name, captions)};
  };
  return {column(wish.sort), wish.descending, column(wish.then), wish.descending, wish.filter, wish.limit};
}

/// The file that was printed into, or the refusal when nothing was.
Result<Json> Print(const Context& context, const Commands& commands) {
  const std::string& out = commands.print.out;
  if (const auto may = MayWriteOver(context.session.prompt, out, "out"); !may) return std::unexpected(may.error());
  const Sheet sheet =
      context.sheet ? *context.sheet
                    : Sheet::Of(context.title, Arranged(*context.list, ArrangementOf(commands.wish, *context.list)));
  const int pages = paper::PrintToFile(context.session, sheet, commands.print.paper, out);
  if (pages == 0) return Refuse("Print", "Nothing was printed.");
  return Json{{"File", fs::absolute(out).string()}, {"Pages", pages}};
}

void WriteAnswer(Output& output, const Context& context, const Json& answer, const ListWish& wish) {
  if (context.list) {
    const ListTable list = Arranged(*context.list, ArrangementOf(wish, *context.list));
    context.json ? WriteJson(list, output) : WriteText(list, output);
  } else {
    output.Write(context.json ? JsonText(answer) + "\n" : context.text.empty() ? ReadableText(answer) : context.text);
  }
  output.Finish();
}

int RunChosen(const GlobalOptions& options, const Commands& commands) {
  Output output;
  OptionPrompt prompt;
  TerminalProgress progress;
  try {
    TakeAnswers(options, prompt);
    const std::unique_ptr<Clock> clock = ChosenClock(options);
    Session session(prompt, progress, *clock);
    PrepareSupportFiles(session, ResolveFolders(FolderSources::OfThisProcess(options.dataFolder)));
    Context context{.session = session,
                    .json = options.json,
                    .dataFile = options.file.empty() ? session.DataFileName : options.file,
                    .user = options.user,
                    .password = options.password};
    context.prints = !commands.print.out.empty();
    if (!options.file.empty()) context.dataFile = fs::absolute(options.file).string();

    context.open = [&] { return OpenForVerb(context, options, Needs::Writable); };

    Result<void> opened;
    if (commands.needs == Needs::Nothing || commands.needs == Needs::Login) {
      opened = RequireInDefaultFile(context, commands.act, commands.needs == Needs::Login);
      if (opened) RunSupportLadder(session);
    } else {
      opened = OpenForVerb(context, options, commands.needs);
      if (opened) opened = RequireAtDoor(session, commands.act);
    }
    if (!opened) return Report(output, opened.error(), options.json, "refused", ExitRefused);
    Result<Json> answer = commands.chosen(context);
    if (answer && context.prints) {
      answer = Print(context, commands);
      context.list.reset();
      context.text.clear();
    }
    if (!answer) return Report(output, answer.error(), options.json, "refused", ExitRefused);
    // A command is a session of its own: what it left stale in the formulas is brought up to date before it ends.
    RunPendingPassesOrTell(session);
    progress.End();
    WriteAnswer(output, context, *answer, commands.wish);
    return context.exitStatus;
  } catch (const WrongUsage& usage) {
    WriteError(usage.text + "\n");
    return ExitUsage;
  } catch (const RefusedLogin& login) {
    progress.End();
    return Report(output, login.refusal, options.json, "refused", ExitRefused);
  } catch (const UnansweredQuestion& question) {
    progress.End();
    return Report(output, {question.message.title, question.message.text, ""}, options.json, "question", ExitQuestion);
  } catch (const BadValue& bad) {
    progress.End();
    return Report(output, {"Invalid Value", bad.what(), ""}, options.json, "refused", ExitRefused);
  } catch (const Failure& failure) {
    progress.End();
    return Report(output, {failure.subject, failure.cause, ""}, options.json, "failed", ExitFailed);
  } catch (const fs::filesystem_error& error) {
    progress.End();
    return Report(output, {error.path1().string(), error.code().message(), ""}, options.json, "failed", ExitFailed);
  }
}

/// The words of the command line for its parser: a number such as -.5, as some programs print it, would be taken for an
/// option.
std::vector<std::string> Readable(std::vector<std::string> words) {
  for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i)
    if (words[i].starts_with("-.") && ParseNumber(words[i]) && (i == 0 || !words[i - 1].starts_with("--")))
      words[i].insert(1, 1, '0');
  return words;
}

// A list of processes shows the words of each: passwords among them no longer than it takes to read them.
void HideSecrets(int argc, char** argv) {
  bool next = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    std::size_t from = next ? 0 : word.size();
    next = word == "--password";
    for (const std::string_view key : {"CloudHostPassword=", "AdminPassword=", "--password="})
      if (word.starts_with(key)) from = key.size();
    std::fill(argv[i] + from, argv[i] + word.size(), '*');
  }
}

int Main(int argc, char** argv) {
  CLI::App app("The Vellumark from the command line", "vellumark-cli");
  app.set_version_flag("--version", std::string("vellumark-cli ") + VELLUMARK_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 done, 1 refused by a rule, 2 wrong usage, 3 a question stood unanswered and nothing was "
      "changed,\n"
      "4 a file, disk or line failed.");
  GlobalOptions options;
  AddGlobalOptions(app, options);
  Commands commands;
  AddFileCommands(app, commands);
  AddSettingsCommands(app, commands);
  AddDatabaseCommands(app, commands);
  AddTemplateCommands(app, commands);
  AddColorCommands(app, commands);
  AddFormulaCommands(app, commands);
  AddAdditiveSetCommands(app, commands);
  AddToolsCommands(app, commands);
  AddStockCommands(app, commands);
  AddBatchCommands(app, commands);
  AddJobCommands(app, commands);
  AddScaleCommands(app, commands);
  AddDispenserCommands(app, commands);
  AddDesignCommands(app, commands);
  AddEstimateCommands(app, commands);
  AddReportCommands(app, commands);
  AddFindCommands(app, commands);
  AddArchiveCommands(app, commands);
  AddBackupCommands(app, commands);
  AddCloudCommands(app, commands);
  AddLabelCommands(app, commands);
  AddUndoCommands(app, commands);
  AddUsersCommands(app, commands);
  const std::vector<std::string> words = Readable(platform::BeginProgram(argc, argv));
  HideSecrets(argc, argv);
  if (const auto ended = app.parse(words)) return *ended == 0 ? ExitDone : ExitUsage;
  return RunChosen(options, commands);
}

}  // namespace
}  // namespace vellumark::cli

int main(int argc, char** argv) {
  try {
    return vellumark::cli::Main(argc, argv);
  } catch (const std::exception& error) {
    // A fault of the program itself, not of its input.
    vellumark::cli::WriteError(fmt::format("vellumark-cli failed: {}\n", error.what()));
    return 70;
  }
}
