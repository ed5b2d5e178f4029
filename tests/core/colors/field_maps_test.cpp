#include <gtest/gtest.h>

#include <algorithm>

#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/lab.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

using test::InkRoom;
using Type = RecordField::Type;

bool Holds(FieldType stored, Type member) {
  switch (stored) {
    case FieldType::Boolean:
      return member == Type::Flag;
    case FieldType::Byte:
      return member == Type::Byte || member == Type::Whole;
    case FieldType::Integer:
    case FieldType::Long:
      return member == Type::Whole;
    case FieldType::Single:
      return member == Type::Single;
    case FieldType::Date:
      return member == Type::Date;
    case FieldType::Text:
    case FieldType::Memo:
      return member == Type::Text;
  }
  return false;
}

// A column that the map of its record leaves out would be lost by whatever writes the record anew.
TEST(FieldMaps, TellEveryColumnOfTheirTables) {
  const struct {
    const Table& table;
    const FieldList& fields;
    std::size_t others;  // the name of the colour that a measurement belongs to
  } cases[] = {{schema::Basic, BasicFields(), 0},
               {schema::Mix, MixFields(), 0},
               {schema::BasicLab, LabFields(), 1},
               {schema::MixLab, LabFields(), 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.fields.size() + c.others, c.table.fields.size()) << c.table.name;
    for (const RecordField& field : c.fields) {
      const int place = c.table.Find(field.column);
      ASSERT_GE(place, 0) << c.table.name << " " << field.column;
      EXPECT_TRUE(Holds(c.table.fields[static_cast<std::size_t>(place)].type, field.type)) << field.column;
    }
  }
}

// Every field with a value of its own, written and read back: none lands in another one's member.
TEST(FieldMaps, ARowReadsBackWhole) {
  InkRoom room;
  const std::initializer_list<FieldUse> all{FieldUse::Key, FieldUse::Typed, FieldUse::Posted, FieldUse::Kept,
                                            FieldUse::Derived};
  MixColor mix;
  int next = 1;
  for (const RecordField& field : MixFields()) {
    const int value = next++;
    if (field.type == Type::Text) field.Text(&mix) = std::to_string(value);
    if (field.type == Type::Single) field.Single(&mix) = static_cast<float>(value) + 0.5F;
    if (field.type == Type::Flag) field.Flag(&mix) = false;
  }
  mix.LastProduced = DateTime{2026, 1, 2, 3, 4, 5};
  mix.LotRefID = 77;
  mix.book.Row = 3;
  mix.book.Blue = 255;
  InsertRow(room.session.File(), schema::Mix, room.session.Table(schema::Mix), MixFields().Cells(mix, all));
  const auto read = ReadMix(room.session, mix.Color_Name);
  ASSERT_TRUE(read);
  for (const RecordField& field : MixFields())
    EXPECT_EQ(field.ValueIn(static_cast<const MixColor*>(&*read)), field.ValueIn(&mix)) << field.column;
  room.session.File().Execute("DELETE FROM INK_Mix");  // its figures were made up
}

}  // namespace
}  // namespace vellumark
