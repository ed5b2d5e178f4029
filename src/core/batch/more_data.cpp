#include "core/batch/more_data.h"

#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/colors/amounts.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

std::string OrZero(const std::string& typed) {
  return Trim(typed).empty() ? "0" : typed;
}

}  // namespace

MoreData ShowMoreData(const Session& session, const BatchFields& fields) {
  MoreData data;
  data.texts = fields.UD_Text;
  for (int i = 0; i < kBatchUserFields; ++i) {
    const auto place = static_cast<std::size_t>(i);
    data.numbers.at(place) = Fixed(fields.UD_Numeric.at(place), GetSetting(session, setting::Batches_UDNum_Format[i]));
  }
  const auto lab = [&](float value) { return AmountText(session, AmountKey::Lab, value); };
  data.lab = {lab(fields.Lab_L),       lab(fields.Lab_a), lab(fields.Lab_b), lab(fields.Lab_D),
              lab(fields.Lab_Density), fields.Lab_LS,     fields.Lab_PT,     fields.Lab_Note};
  return data;
}

Result<void> EnterMoreData(Session& session, BatchRecord& record, const MoreData& typed) {
  BatchFields fields = record.fields;
  for (int i = 0; i < kBatchUserFields; ++i) {
    const auto place = static_cast<std::size_t>(i);
    fields.UD_Text.at(place) = Left(TrimView(typed.texts.at(place)), kBatchTextWidth);
    const auto number = ReadUDNumeric(session, i, typed.numbers.at(place));
    if (!number) return std::unexpected(number.error());
    fields.UD_Numeric.at(place) = *number;
  }
  LabEntry entry = typed.lab;
  for (std::string* number : {&entry.L, &entry.a, &entry.b, &entry.D, &entry.density}) *number = OrZero(*number);
  const auto lab = ReadLabEntry(session, entry);
  if (!lab) return std::unexpected(lab.error());
  fields.Lab_L = lab->Lab_L;
  fields.Lab_a = lab->Lab_a;
  fields.Lab_b = lab->Lab_b;
  fields.Lab_D = lab->Lab_D;
  fields.Lab_Density = lab->Lab_Density;
  fields.Lab_LS = Left(lab->Lab_LS, kBatchTextWidth);
  fields.Lab_PT = Left(lab->Lab_PT, kBatchTextWidth);
  fields.Lab_Note = Left(lab->Lab_Note, kBatchTextWidth);
  if (fields == record.fields) return {};
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  record.fields = std::move(fields);
  return {};
}

std::vector<DataLine> UserDataLines(const Session& session, const BatchFields& fields) {
  const MoreData shown = ShowMoreData(session, fields);
  std::vector<DataLine> lines;
  for (int i = 0; i < kBatchUserFields; ++i) {
    const std::string& text = shown.texts.at(static_cast<std::size_t>(i));
    if (!text.empty()) lines.push_back({GetSetting(session, setting::BatchCustomTextLabelCaption[i]), text});
  }
  for (int i = 0; i < kBatchUserFields; ++i) {
    const auto place = static_cast<std::size_t>(i);
    if (fields.UD_Numeric.at(place) != 0)
      lines.push_back({GetSetting(session, setting::BatchCustomNumericLabelCaption[i]), shown.numbers.at(place)});
  }
  return lines;
}

std::vector<DataLine> LabLines(const Session& session, const BatchFields& fields) {
  const LabEntry shown = ShowMoreData(session, fields).lab;
  std::vector<DataLine> lines;
  const auto number = [&](const char* caption, float value, const std::string& text) {
    if (value != 0) lines.push_back({caption, text});
  };
  const auto text = [&](const char* caption, const std::string& value) {
    if (!value.empty()) lines.push_back({caption, value});
  };
  number("L", fields.Lab_L, shown.L);
  number("a", fields.Lab_a, shown.a);
  number("b", fields.Lab_b, shown.b);
  number("Delta", fields.Lab_D, shown.D);
  number("Density", fields.Lab_Density, shown.density);
  text("Light Source", shown.lightSource);
  text("Substrate", shown.substrate);
  text("Lab Note", shown.note);
  return lines;
}

}  // namespace vellumark
