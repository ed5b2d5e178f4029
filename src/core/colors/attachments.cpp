#include "core/colors/attachments.h"

#include "core/colors/swatch.h"

namespace vellumark {
namespace {

Result<void> SaveSwatch(Session& session, ColorKind kind, const std::string& name, const ColorAttachments& typed) {
  SwatchChange swatch;
  swatch.clears = typed.Red == "" && typed.Green == "" && typed.Blue == "";
  const auto read = [&](std::string_view field, const std::optional<std::string>& text,
                        std::optional<int>& part) -> Result<void> {
    if (!text || swatch.clears) return {};
    const auto value = ReadSwatchPart(field, text->empty() ? "0" : *text);
    if (!value) return std::unexpected(value.error());
    part = *value;
    return {};
  };
  if (auto red = read("Red", typed.Red, swatch.Red); !red) return red;
  if (auto green = read("Green", typed.Green, swatch.Green); !green) return green;
  if (auto blue = read("Blue", typed.Blue, swatch.Blue); !blue) return blue;
  if (!swatch.Any()) return {};
  return SetSwatch(session, kind, name, swatch);
}

// `save` writes the record of `work`, which changes only when everything was written.
template <class Work>
Result<void> SaveWhole(Session& session, ColorKind kind, Work& work, const ColorAttachments& attachments,
                       Result<void> (*save)(Session&, Work&)) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  Work saved = work;
  Transaction transaction(session.File());
  if (auto done = save(session, saved); !done) return done;
  if (auto set = SaveSwatch(session, kind, saved.Color_Name, attachments); !set) return set;
  if (attachments.measurements) WriteLabReadings(session, kind, saved.Color_Name, *attachments.measurements);
  transaction.Commit();
  work = std::move(saved);
  return {};
}

}  // namespace

Result<void> SaveBasic(Session& session, BasicWork& work, const ColorAttachments& attachments) {
  return SaveWhole<BasicWork>(session, ColorKind::Basic, work, attachments, &SaveBasic);
}

Result<void> SaveMix(Session& session, FormulaWork& work, const ColorAttachments& attachments) {
  return SaveWhole<FormulaWork>(session, ColorKind::Mix, work, attachments, &SaveMix);
}

}  // namespace vellumark
