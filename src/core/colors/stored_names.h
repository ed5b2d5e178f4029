#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/colors/guides.h"
#include "core/colors/name_map.h"

namespace vellumark {

/// The names of one kind of colour of a Database, read once, for work on many: what StoredName answers, and which row a
/// name stands in. It holds what it read: make a new one after a change of names.
class StoredNames {
 public:
  /// With `database` empty, of the current one. A Database that is still to be made has no names: `StoredNames{}`.
  StoredNames() = default;
  StoredNames(const Session& session, ColorKind kind, std::string_view database);

  /// The name under which the Database has, or would get, the colour.
  std::string Of(std::string_view name) const;
  /// The row of exactly that name; 0 when there is none.
  std::int64_t KeyOf(std::string_view name) const;
  std::size_t Count() const { return rows_.size(); }
  /// The guide's data for a name; the defaults where the guides do not have it.
  BookData BookOf(std::string_view name) const;

 private:
  struct Published {
    std::size_t guide = 0;  ///< in the order in which guides are searched
    std::string name;
    BookData book;
  };
  const Published* FindPublished(std::string_view name) const;

  bool madeFromGuides_ = false;
  NameMap<std::int64_t> rows_;
  NameMap<Published> published_;
};

}  // namespace vellumark
