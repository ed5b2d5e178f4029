#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/session/session.h"

namespace vellumark {

enum class FindSubject { Basic, Mix, Batch, Job, Design };

/// What a field holds, which decides how it can be compared.
enum class FindKind { Text, Number, Percent, Date, Flag };

/// "is equal to" and "contains" for texts, "=", ">=" and "<=" for numbers and dates, "=" alone for yes and no.
std::vector<std::string_view> FindComparisons(FindKind kind);

/// One field of a find window.
struct FindField {
  std::string caption;
  FindKind kind = FindKind::Text;
  std::vector<std::string> columns{};  ///< of the table; a text of several stands in any of them
  int decimals = 3;                    ///< of what is displayed
  enum class Special {
    None,
    ColorName,    ///< with or without "PANTONE "
    InBatchUnit,  ///< shown in the inventory unit
    WithLots,     ///< a colour's stock and that of its lots
    LotsOfColor,  ///< the lot numbers of a colour
    LotsOfBatch,  ///< the lots that went into a Batch
  } special = Special::None;
};

/// The fields that the user may search by: without right to see them, costs are none.
std::vector<FindField> FindFields(const Session& session, FindSubject subject);

/// A row of the window that is filled in.
struct FindTerm {
  std::string field;  ///< its caption, or the name of its column in the table
  std::string comparison;
  std::string value;
  /// Those of the field where it is known: a field of the user's own may be captioned like another one.
  std::optional<std::vector<std::string>> columns{};
};

struct FindRequest {
  FindSubject subject = FindSubject::Batch;
  std::vector<FindTerm> terms{};         ///< one with an empty value says nothing; none: everything is found
  bool any = false;                      ///< one term is enough
  std::vector<std::string> databases{};  ///< empty: the current one
};

/// What was found.
struct FindAnswer {
  ListTable table;
  std::int64_t count = 0;
  bool complete = true;
  std::string warningTitle;
  std::string warning;
};

/// Compares what is displayed: quantities with three decimals in the inventory unit, whole days, percents with two.
/// Refuses a value that is none of its field's, a field and a comparison that are not there, and an empty answer.
Result<FindAnswer> Find(Session& session, const FindRequest& request);

}  // namespace vellumark
