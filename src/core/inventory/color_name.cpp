#include "core/inventory/color_name.h"

#include "core/colors/guides.h"
#include "core/inventory/lots.h"

namespace vellumark {

std::string SpelledOnFile(const Session& session, const std::string& name, std::optional<ColorKind> wanted,
                          std::string_view database) {
  if (session.FindDatabase(database) == nullptr) return name;
  for (const bool asTyped : {true, false})
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
      if (wanted && wanted != kind) continue;
      const std::string spelled = asTyped ? name : StoredName(session, kind, name, database);
      if (ColorIsThere(session, kind, spelled, database)) return spelled;
    }
  return name;
}

}  // namespace vellumark
