#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "cli/frame.h"
#include "core/base/counted.h"
#include "core/base/text.h"
#include "core/exchange/design_file.h"
#include "core/jobs/design_bench.h"
#include "core/jobs/design_tables.h"
#include "core/jobs/design_work.h"
#include "paper/photo_maker.h"

namespace vellumark::cli {
namespace {

Result<Json> Answer(Context& context, std::string_view id) {
  Session& session = context.session;
  const auto work = OpenDesign(session, id);
  if (!work) return std::unexpected(work.error());
  const std::vector<DesignColor> colors = work->design.Colors();
  const ListTable costs = DesignColorColumns(session).Of(DesignCosts(session, colors));
  const std::string total = DesignTotalCost(session, colors);
  Json answer = RowJson(DesignColumns(session).Of({work->design}));
  answer["Colors"] = RowsJson(costs);
  answer["TotalCost"] = total;
  answer["Photos"] = Json::array();
  for (const LinkedPhoto& photo : work->photos)
    answer["Photos"].push_back({{"Name", photo.name}, {"Missing", IsPhotoMissing(session, photo)}});
  if (!context.json) {
    const Design& design = work->design;
    context.text =
        fmt::format("{}  {}\n{}, {} x {} in.\n\n", design.DesignID, design.Description,
                    Counted(design.Impressions, "impression"), LengthText(design.Length, LengthUnit::Inch), LengthText(design.Width, LengthUnit::Inch));
    context.text += TableText(costs) + fmt::format("Total Cost {}\n", total);
    for (const LinkedPhoto& photo : work->photos)
      context.text += fmt::format("photo {}{}\n", photo.name, IsPhotoMissing(session, photo) ? " (missing)" : "");
    if (!design.Notes.empty()) context.text += "\n" + design.Notes + "\n";
  }
  return answer;
}

struct EditOptions {
  std::string id;
  std::vector<std::string> pairs;
  std::vector<std::string> removed;
  std::string unit = "in.";
};

bool IsField(std::string_view name) {
  const RecordField* field = DesignFields().FindSettable(name, true);
  return field != nullptr;
}

// "NAME=QTY", "NAME@DATABASE=QTY:PERCENT".
Result<void> PutColor(Session& session, DesignWork& work, const std::string& name, const std::string& amount) {
  DesignColorEntry entry;
  const std::size_t at = name.find('@');
  entry.name = name.substr(0, at);
  if (at != std::string::npos) entry.database = Trim(name.substr(at + 1));
  const std::size_t colon = amount.find(':');
  entry.quantity = amount.substr(0, colon);
  if (colon != std::string::npos) entry.percent = amount.substr(colon + 1);
  return PutDesignColor(session, work, entry);
}

Result<Json> Write(Context& context, const EditOptions& options, bool isNew) {
  Session& session = context.session;
  auto work = isNew ? BeginDesign(session, options.id) : OpenDesign(session, options.id);
  if (!work) return std::unexpected(work.error());
  for (const std::string& name : options.removed) {
    const std::size_t before = work->design.Colors().size();
    RemoveDesignColor(*work, name);
    if (work->design.Colors().size() == before)
      return Refuse("Color Not Found", fmt::format("{} is no colour of this Design.", name), "IngName");
  }
  for (const std::string& text : options.pairs) {
    const auto field = SplitPair(text);
    const auto color = SplitPair(text, true);
    const auto taken = IsField(field->first)
                           ? EnterDesignField(*work, field->first, field->second, *ParseLengthUnit(options.unit))
                           : PutColor(session, *work, color->first, color->second);
    if (!taken) return std::unexpected(taken.error());
  }
  if (const auto saved = SaveDesign(session, *work); !saved) return std::unexpected(saved.error());
  return Answer(context, work->design.DesignID);
}

struct PhotoOptions {
  std::string id;
  std::string action;
  std::string file;
  std::string newName;
};

Result<Json> ListOwnPhotos(Context& context, const DesignWork& work) {
  return context.Answer(TableOf<LinkedPhoto>()
                            .Add("Name", &LinkedPhoto::name, "Photo")
                            .Add("Missing", [&session = context.session](
                                                const LinkedPhoto& photo) { return IsPhotoMissing(session, photo); })
                            .Of(work.photos));
}

Result<Json> ChangePhotos(Context& context, const PhotoOptions& options) {
  Session& session = context.session;
  auto work = OpenDesign(session, options.id);
  if (!work) return std::unexpected(work.error());
  if (options.action == "list") return ListOwnPhotos(context, *work);
  if (options.file.empty()) return Refuse("Design Photo", "Enter the file or the name of the photo.", "PhotoName");
  Result<void> done;
  if (options.action == "add") {
    auto picked = PickPhoto(paper::JpegMaker(), options.file);
    if (!picked) return std::unexpected(picked.error());
    if (!options.newName.empty()) picked->name = options.newName;
    done = UsePhoto(session, *work, *picked);
  } else if (options.action == "remove") {
    done = RemovePhoto(session, *work, options.file);
  } else {
    done = RenamePhoto(session, *work, options.file, options.newName);
  }
  if (done) done = SaveDesign(session, *work);
  if (!done) return std::unexpected(done.error());
  return Answer(context, work->design.DesignID);
}

ListTable LibraryTable(const Session& session) {
  return TableOf<LibraryPhoto>()
      .Add("Name", &LibraryPhoto::name, "Photo")
      .Add("Bytes", &LibraryPhoto::bytes)
      .Add("Missing", &LibraryPhoto::missing)
      .Add("Designs", &LibraryPhoto::designs)
      .Of(ListLibrary(session));
}

Result<Json> Export(Context& context, const std::string& typed, const std::vector<std::string>& ids) {
  const auto path = std::filesystem::absolute(typed);
  const auto count = ExportDesigns(context.session, ids, path);
  if (!count) return std::unexpected(count.error());
  context.text = fmt::format("Designs have been successfully exported\n\n{}\n", path.string());
  return Json{{"File", path.string()}, {"Designs", *count}};
}

Result<Json> Import(Context& context, const std::string& path, const std::vector<std::string>& ids) {
  const auto report = ImportDesigns(context.session, paper::JpegMaker(), path, ids);
  if (!report) return std::unexpected(report.error());
  if (const std::string text = PhotoImportText(*report); !text.empty())
    context.session.prompt.Tell("Design Photo Import Error", text, Icon::Exclamation);
  context.text = fmt::format("Designs have been imported\n\n{} added, {} changed, {} the same already, {}\n",
                             report->added, report->changed, report->same, Counted(report->photos, "photo"));
  return Json{{"Added", report->added},
              {"Changed", report->changed},
              {"Same", report->same},
              {"Photos", report->photos},
              {"PhotosMatched", report->photosMatched},
              {"PhotosMissing", report->photosMissing},
              {"PhotosKept", report->photosKept}};
}

Result<Json> PreviewImport(Context& context, const std::string& path) {
  auto designs = ReadDesignFile(context.session, path);
  if (!designs) return std::unexpected(designs.error());
  using Row = IncomingDesign;
  return context.Answer(TableOf<Row>()
                            .Add(
                                "DesignID", [](const Row& row) { return row.design.DesignID; }, "Design ID")
                            .Add("ModType", [](const Row& row) { return std::string(ModText(row.mod)); })
                            .Add(
                                "InDatabase", [](const Row& row) { return row.mod != Row::Mod::New; }, "In Database")
                            .Add(
                                "Description", [](const Row& row) { return row.design.Description; }, "Desc")
                            .Of(*std::move(designs)));
}

std::string CheckPair(const std::string& text) {
  return SplitPair(text) ? std::string() : text + " is not NAME=QTY or FIELD=VALUE";
}

std::string IsLengthUnit(const std::string& text) {
  return ParseLengthUnit(text) ? std::string() : text + " is not in. or mm.";
}

std::shared_ptr<std::string> AddID(CLI::App* verb) {
  const auto id = std::make_shared<std::string>();
  verb->add_option("ID", *id, "The Design")->required()->check(NotEmpty);
  return id;
}

void AddEditing(CLI::App* noun, Commands& commands) {
  for (const bool isNew : {true, false}) {
    auto* verb = isNew ? noun->add_subcommand("add", "Enter a new one")
                       : noun->add_subcommand("edit", "Change fields, add colours or change their lines");
    const auto options = std::make_shared<EditOptions>();
    verb->add_option("ID", options->id, "Its name")->required()->check(NotEmpty);
    verb->add_option(
            "NAME=QTY", options->pairs,
            "Colours, \"NAME@DATABASE=QTY:PERCENT\" as far as wanted, and the fields Description, Impressions, "
            "Length, Width, Notes")
        ->check(CheckPair);
    verb->add_option("--uom", options->unit, "Unit of Length and Width: in. or mm.")->check(IsLengthUnit);
    if (!isNew) OneEachTime(verb->add_option("--remove", options->removed, "A colour to take off"))->type_name("NAME");
    commands.Add(verb, Needs::Writable, [options, isNew](Context& context) { return Write(context, *options, isNew); });
  }
  for (const bool copies : {false, true}) {
    auto* verb = copies ? noun->add_subcommand("copy", "A new one with everything of another")
                        : noun->add_subcommand("rename", "Give one another name, on its Job Records too");
    const auto id = AddID(verb);
    const auto newID = std::make_shared<std::string>();
    verb->add_option("NEW", *newID, "The new name")->required();
    commands.Add(verb, Needs::Writable, [id, newID, copies](Context& context) -> Result<Json> {
      const auto made = copies ? CopyDesign(context.session, *id, *newID) : RenameDesign(context.session, *id, *newID);
      if (!made) return std::unexpected(made.error());
      return Answer(context, *made);
    });
  }
  auto* remove = noun->add_subcommand("delete", "Remove one, and the photos that nobody else links");
  const auto removed = AddID(remove);
  commands.Add(remove, Needs::Writable, [removed](Context& context) -> Result<Json> {
    if (const auto done = DeleteDesign(context.session, *removed); !done) return std::unexpected(done.error());
    return Json{{"DesignID", ReadDesignID(*removed)}, {"Deleted", true}};
  });
}

void AddPhotos(CLI::App* noun, Commands& commands) {
  auto* photo = noun->add_subcommand("photo", "The photos of one: list, add FILE [NEW], remove NAME, rename NAME NEW");
  const auto options = std::make_shared<PhotoOptions>();
  photo->add_option("ID", options->id, "The Design")->required()->check(NotEmpty);
  photo->add_option("ACTION", options->action, "What is to be done")
      ->required()
      ->check(CLI::IsMember({"list", "add", "remove", "rename"}));
  photo->add_option("FILE", options->file, "A picture, JPEG or PNG; or the name of a photo");
  photo->add_option("NEW", options->newName, "A name for it");
  commands.Add(photo, Needs::Writable, [options](Context& context) { return ChangePhotos(context, *options); });
  commands.AddList(noun->add_subcommand("photos", "The library of photos, with the Designs that link them"),
                   Needs::File, "Design Photos",
                   [](Context& context) { return context.Answer(LibraryTable(context.session)); });
}

void AddExchange(CLI::App* noun, Commands& commands) {
  for (const bool out : {true, false}) {
    auto* verb = out ? noun->add_subcommand("export", "Write Designs to a file, with their photos beside it")
                     : noun->add_subcommand("import", "Bring in the Designs of a file, all or none");
    const auto file = std::make_shared<std::string>();
    const auto ids = std::make_shared<std::vector<std::string>>();
    const auto preview = std::make_shared<bool>(false);
    verb->add_option("FILE", *file, "The file")->required()->check(NotEmpty);
    verb->add_option("ID", *ids, "Designs; all when none is named");
    if (!out) verb->add_flag("--preview", *preview, "Only show what is in the file");
    commands.Add(verb, out ? Needs::File : Needs::Writable, [=](Context& context) {
      if (*preview) return PreviewImport(context, *file);
      return out ? Export(context, *file, *ids) : Import(context, *file, *ids);
    });
  }
}

void AddBench(CLI::App* noun, Commands& commands) {
  auto* bench = noun->add_subcommand("bench", "What a run needs of each colour, what stock has, what is to be made");
  const auto id = AddID(bench);
  const auto wish = std::make_shared<RunWish>();
  bench->add_option("--impressions", wish->impressions, "Of the run")->required()->check(NotEmpty);
  auto* estimate = bench->add_flag("--estimate", wish->estimate, "By size and coverage, not by the stored quantities");
  bench->add_option("--ink", wish->ink, "Type of ink, 0 to 7")->check(CLI::Range(0, kInkTypes - 1))->needs(estimate);
  bench->add_option("--stock", wish->stock, "Type of stock, 0 to 3")
      ->check(CLI::Range(0, kStockTypes - 1))
      ->needs(estimate);
  commands.AddList(bench, Needs::File, "Run of a Design", [id, wish](Context& context) -> Result<Json> {
    const auto design = FindDesign(context.session, *id);
    if (!design) return std::unexpected(design.error());
    auto needs = NeedsOfRun(context.session, *design, *wish);
    if (!needs) return std::unexpected(needs.error());
    return context.Answer(RunNeedColumns(context.session).Of(*std::move(needs)));
  });
}

}  // namespace

void AddDesignCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "design",
                           "Designs: list, show, add, edit, rename, copy, delete, photo, photos, export, import, and "
                           "bench for a run of one");
  commands.AddList(noun->add_subcommand("list", "All, in the order of their names"), Needs::File, "Designs",
                   [](Context& context) { return context.Answer(ListDesigns(context.session)); });
  auto* show = noun->add_subcommand("show", "One with its colours, costs and photos");
  const auto shown = AddID(show);
  commands.Add(show, Needs::File, [shown](Context& context) { return Answer(context, *shown); });
  AddEditing(noun, commands);
  AddPhotos(noun, commands);
  AddExchange(noun, commands);
  AddBench(noun, commands);
}

}  // namespace vellumark::cli
