#include "core/jobs/design_uses.h"

#include <fmt/format.h>

#include "core/datafile/kept_rows.h"
#include "core/datafile/moved_rows.h"

namespace vellumark {
namespace {

// One field of all items of Jobs that bear the Design.
void RewriteItems(Session& session, Transaction& transaction, std::string_view designID, std::string_view field,
                  std::string_view value) {
  Statement rows = session.File().Prepare("SELECT DISTINCT JobNumber FROM JobRecords WHERE DesignID = ?");
  rows.Bind(1, designID);
  while (rows.Step()) transaction.Note({Change::Kind::Job, "", rows.Text(0), Change::What::Updated, {}});
  for (const Table* items : JobTables(session.File()))
    session.File()
        .Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE DesignID = ?2", Quoted(items->name), field))
        .Bind(1, value)
        .Bind(2, designID)
        .Run();
}

}  // namespace

std::string DesignUses(Database& file) {
  return fmt::format("(SELECT DesignID, Date_Entered FROM JobRecords UNION ALL SELECT DesignID, Date_Entered FROM {} AS "
                     "Moved) AS Uses",
                     MovedDesignUses(file));
}

void FollowLastUsed(Session& session, std::string_view designID) {
  if (designID.empty()) return;
  Transaction transaction(session.File());
  const Value latest = session.File().Scalar(
      fmt::format("SELECT MAX(Date_Entered) FROM {} WHERE DesignID = ?", DesignUses(session.File())), {Value(designID)});
  Statement update = session.File().Prepare(
      "UPDATE Designs SET LastUsed = ?1 WHERE DesignID = ?2 AND COALESCE(LastUsed, '') <> COALESCE(?1, '')");
  if (update.Bind(1, latest).Bind(2, designID).Run() > 0)
    transaction.Note({Change::Kind::Design, "", std::string(designID), Change::What::Updated, {}});
  transaction.Commit();
}

void FollowLastUsed(Session& session) {
  Transaction transaction(session.File());
  std::vector<std::string> designs;
  {
    Statement rows = session.File().Prepare(
        fmt::format("SELECT DesignID FROM Designs WHERE COALESCE(LastUsed, '') <> COALESCE((SELECT MAX(Date_Entered) FROM "
                    "{} WHERE Uses.DesignID = Designs.DesignID), '')",
                    DesignUses(session.File())));
    while (rows.Step()) designs.push_back(rows.Text(0));
  }
  for (const std::string& design : designs) FollowLastUsed(session, design);
  transaction.Commit();
}

bool JobsBearDesign(const Session& session, std::string_view designID) {
  return !session.File().Scalar("SELECT 1 FROM JobRecords WHERE DesignID = ? LIMIT 1", {Value(designID)}).IsNull();
}

void RenameJobDesign(Session& session, std::string_view designID, std::string_view newID) {
  Transaction transaction(session.File());
  RewriteItems(session, transaction, designID, "DesignID", newID);
  RenameMovedDesign(session.File(), designID, newID);
  transaction.Commit();
}

void RewriteJobDesignDesc(Session& session, std::string_view designID, std::string_view description) {
  Transaction transaction(session.File());
  RewriteItems(session, transaction, designID, "DesignDesc", description);
  transaction.Commit();
}

}  // namespace vellumark
