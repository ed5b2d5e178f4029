#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/changes.h"
#include "core/base/date.h"
#include "core/batch/batch_work.h"
#include "core/colors/lab.h"
#include "core/datafile/job_links.h"
#include "core/inventory/lot_selection.h"

namespace vellumark {

/// Where the Batch Window stands.
enum class BatchState {
  None,  ///< cleared
  Add,   ///< a new Batch was calculated and is not stored
  Edit,  ///< a saved Batch is open, its ingredients handed back to stock
};

constexpr std::size_t kMostJobLines = 10;
constexpr int kBatchUserFields = 6;

/// What one job got of the Batch, in the Batch's unit.
struct BatchJobLine {
  std::string JobNumber;
  float QtyIssued = 0;
  float QtyUsed = 0;
  bool operator==(const BatchJobLine&) const = default;
};

/// The fields beside the recipe: what the operator types into the window, its More Data and its lab window. The note of
/// the measurement has 30 characters here.
struct BatchFields : LabReading {
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
  std::string Notes;     ///< of the Batch; those of the formula are work.formula.Notes
  std::string IngNotes;  ///< notes of the ingredients
  std::string ShortNote;
  std::array<std::string, kBatchUserFields> UD_Text;
  std::array<float, kBatchUserFields> UD_Numeric{};
  bool operator==(const BatchFields&) const = default;
};

/// Where they stand in a Batch's row.
const FieldMap<BatchFields>& BatchRowFields();

/// A line of a saved Batch as it was loaded, and what it took from where.
struct OldBatchLine {
  std::string IngName;
  float IngQty = 0;
  LineKind IngType = LineKind::Basic;
  float Inventory = 0;  ///< as then shown, in the Batch's unit
  LotSelection lots;
};

/// What the scale said of the lines of one kind and name, in the Batch's unit.
struct WeighedLine {
  LineKind kind = LineKind::Basic;
  std::string name{};
  float BeginningWeight = 0;  ///< what was wanted
  float EndingWeight = 0;     ///< what was poured
  /// Of a Basic Color: what of that was put down as an addition.
  float difference = 0;
  bool operator==(const WeighedLine&) const = default;
};

/// What RecordHasChanged compares with.
struct RememberedBatch {
  std::string Color_Name;
  std::vector<std::pair<std::string, double>> rows;  ///< names and shown amounts
  std::vector<LotSelection> lots;                    ///< one for each row, while Lotted Inventory is in use
  BatchFields fields;
  std::vector<BatchJobLine> jobs;
  std::vector<WeighedLine> weighed;
  std::string returned;
  int UMF = 0;
  BatchCostModel cost;
  BatchFigures figures;
};

/// One Batch on the bench: its calculation (`work`) and everything that is stored with it. What the window edits.
struct BatchRecord {
  BatchState state = BatchState::None;
  BatchWork work;
  std::int64_t key = 0;      ///< of the stored row; 0 while there is none
  std::int32_t BatchNo = 0;  ///< of a new Batch the number that it will get
  std::optional<DateTime> Date_Entered;
  std::string Username;
  BatchFields fields;
  /// Marked as complete; stored whatever way the Batch is left but by giving it up.
  bool Complete = false;

  std::vector<BatchJobLine> jobs;  ///< at most ten
  float jobsTotal = 0;             ///< the total that they were last fitted to
  bool ReturnToInventory = true;   ///< what is made goes to stock; counts while there is no job
  float returned = 0;              ///< what goes to stock of what is made
  std::int32_t LotRefID = 0;       ///< lot of the made colour; 0 Unlotted Inventory; -1 when nothing went to stock
  std::string madeLotNumber;       ///< of that lot, as it is on file: references repeat after a merge or a deletion

  std::vector<WeighedLine> weighed;  ///< each kind and name once

  /// Of a new Batch that was sent to a dispenser: under which its files are noted (core/batch/sent_files); else 0.
  std::int32_t sender = 0;

  std::vector<OldBatchLine> OldLines;  ///< not empty: a saved Batch is open
  float oldReturned = 0;               ///< what the saved Batch has put into stock, in the inventory unit
  bool formulaUnchanged = true;        ///< since the Batch was saved
  bool modifiedFormula = false;        ///< the formula is there, but changed since
  bool mayChange = false;              ///< the guard before a change was passed
  bool askedAboutOld = false;          ///< the question about a Batch of earlier days was answered with Yes
  bool stockReturned = false;          ///< its ingredients are back in stock; a marker in the file tells it
  RememberedBatch remembered;

  /// "" without a job, the number of the only one, "- SPLIT -" for several.
  std::string JobNumber() const;
  /// What the only job uses, three decimals; empty otherwise.
  std::string QtyUsedText() const;
  /// `returned`, three decimals.
  std::string ReturnedText() const { return Fixed(returned, 3); }
};

/// "000042".
std::string BatchNoText(std::int32_t batchNo);

/// The cleared window: the next Batch number, the settings and defaults of a new Batch. Keeps nothing of the last one.
BatchRecord NewBatchRecord(const Session& session);

/// The number that the next new Batch gets: the counter, or the first one after it that no Batch of this Database has.
std::int32_t UpcomingBatchNo(const Session& session);

/// Of the changes of one commit: colours that got another name, or were merged into one, bear it from now on in a Batch
/// that is not stored. A saved Batch that is open is no longer editable then.
void FollowRenames(const Session& session, BatchRecord& record, const std::vector<Change>& changes);

/// True when anything differs from what the load remembered. Of a new Batch: when it has rows.
bool RecordHasChanged(const Session& session, const BatchRecord& record);
/// What RecordHasChanged compares with from now on.
void RememberRecord(BatchRecord& record);

/// True when an earlier Batch of this formula, of a lower number than `before`, had additions.
bool PriorBatchHadAdditions(const Session& session, std::string_view colorName, std::int32_t before);

/// What user-defined text `number`, 0 to 5, is in a new Batch; empty without a default.
std::string BatchUDTextDefault(const Session& session, int number);

}  // namespace vellumark
