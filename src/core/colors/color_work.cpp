#include "core/colors/color_work.h"

#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"

namespace vellumark {
namespace {

void TakeTyped(const Session& session, const RecordField& field, const void* from, void* to) {
  if (field.amount) return;
  field.CopyTo(field, from, to);
  if (field.shape == TextShape::Code)
    field.Text(to) = Left(field.Text(to), static_cast<std::size_t>(session.NameLength));
  if (field.shape == TextShape::Note) field.Text(to) = TrimmedNotes(field.Text(to));
}

}  // namespace

template <class Color>
Result<Color> ReadTyped(const Session& session, const FieldMap<Color>& fields, const ColorWork<Color>& work) {
  Color color;
  color.Color_Name = work.Color_Name;
  if (auto read = ReadFigures(session, fields, work.typed, work.loaded, &color); !read)
    return std::unexpected(read.error());
  for (const RecordField& field : fields)
    if (field.use == FieldUse::Typed) TakeTyped(session, field, static_cast<const Color*>(&work), &color);
  return color;
}

template Result<BasicColor> ReadTyped(const Session&, const FieldMap<BasicColor>&, const ColorWork<BasicColor>&);
template Result<MixColor> ReadTyped(const Session&, const FieldMap<MixColor>&, const ColorWork<MixColor>&);

std::string TrimmedNotes(std::string_view notes) {
  std::string trimmed = Trim(notes);
  while (!trimmed.empty() && (trimmed.back() == '\r' || trimmed.back() == '\n')) trimmed.pop_back();
  return trimmed;
}

}  // namespace vellumark
