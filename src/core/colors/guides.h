#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/datafile/field_map.h"
#include "core/session/session.h"

namespace vellumark {

/// Where a colour stands in a published guide, and its swatch. A colour of no guide holds these defaults.
struct BookData {
  std::string Color_Guide;
  std::string Page = "0";
  int Row = 0;
  int Red = 0;
  int Green = 0;
  int Blue = 0;
  /// Black is an ink of a guide only: a colour of no guide that holds zeros has no swatch.
  bool HasSwatch() const { return !Color_Guide.empty() || Red != 0 || Green != 0 || Blue != 0; }
  bool operator==(const BookData&) const = default;
};

/// The pieces of the template in the order in which they are searched. A site may hold only some of them.
inline constexpr std::array<std::string_view, 5> kGuideBasicTables{
    "FGuide_BColors_GP1601A", "FGuide_BColors_GP1601B", "Metallics_BColors", "PastelNeons_BColors", "Goe_BColors"};
inline constexpr std::array<std::string_view, 5> kGuideMixTables{
    "FGuide_MColors_GP1601A", "FGuide_MColors_GP1601B", "Metallics_MColors", "PastelNeons_MColors", "Goe_MColors"};

/// Whether a Database is made from guides whose template is there. `database` empty means the current one.
bool MadeFromGuides(const Session& session, std::string_view database = {});

/// The template of the guides of a Database, opened for as long as this object lives where the session does not have it
/// open: it has that of the current Database alone.
class TemplateOf {
 public:
  explicit TemplateOf(const Session& session, std::string_view database = {});
  /// Null when the Database is not made from guides or their template is not there.
  Database* operator->() const { return file_; }
  explicit operator bool() const { return file_ != nullptr; }

 private:
  std::unique_ptr<Database> own_;
  Database* file_ = nullptr;
};

/// The spelling under which the guides hold the ingredient or formula, tried as it stands and behind "PANTONE "; empty
/// when there is no template or no such name.
std::string GetTemplateBasicName(const Session& session, std::string_view name, std::string_view database = {});
std::string GetTemplateMixName(const Session& session, std::string_view name, std::string_view database = {});

/// False for a Database that is not made from guides. `database` empty means the current one.
bool IsPantoneBookBasic(const Session& session, std::string_view name, std::string_view database = {});
bool IsPantoneBookMix(const Session& session, std::string_view name, std::string_view database = {});

/// The name under which a Database has, or would get, a colour that a file or a recipe from elsewhere names: as it
/// stands when that is on file; in a Database made from guides else in the guide's spelling, or behind "PANTONE " when
/// that is on file. So a colour never comes a second time under a name without its prefix.
std::string StoredName(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});

/// The guide's data for a name; the defaults when the Database or the name is not of a guide.
BookData BookDataOfBasic(const Session& session, std::string_view name, std::string_view database = {});
BookData BookDataOfMix(const Session& session, std::string_view name, std::string_view database = {});

/// The guide fields of a row; those of a colour that has them as `book`.
const FieldMap<BookData>& BookFields();
template <class Color>
void AddBookFields(FieldMap<Color>& fields) {
  for (const RecordField& field : BookFields()) fields.AddPart(field, &Color::book);
}

/// How a row's guide is shown: "GoeGuide" gets its mark, the two halves of a pastels and neons guide are joined.
/// Empty when the colour stands in no guide.
std::string GuideCaption(std::string_view colorName, const BookData& book);

}  // namespace vellumark
