#include "core/batch/more_data.h"

#include "core/base/text.h"
#include "core/batch/bench.h"
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
  data.lab = LabTexts(session, fields);
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
  for (std::size_t i = 0; i < kLabNumbers; ++i) entry[i] = OrZero(entry[i]);
  auto lab = ReadLabEntry(session, entry);
  if (!lab) return std::unexpected(lab.error());
  for (std::string* text : {&lab->Lab_LS, &lab->Lab_PT, &lab->Lab_Note}) *text = Left(*text, kBatchTextWidth);
  static_cast<LabReading&>(fields) = *lab;
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
  const LabReading& reading = fields;
  const LabEntry shown = LabTexts(session, reading);
  std::vector<DataLine> lines;
  for (std::size_t place = 0; const RecordField& field : LabFields()) {
    const std::string& text = shown.at(place++);
    const bool filled = field.amount ? field.ValueIn(&reading).Single() != 0 : !text.empty();
    if (filled) lines.push_back({field.caption, text});
  }
  return lines;
}

}  // namespace vellumark
