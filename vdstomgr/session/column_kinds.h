#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/session/column_map.h"
#include "vdstomgr/session/column_text.h"

/// The kinds of columns that record maps are made of. A null column leaves its field as it is, but
/// empties a text that is set by a setter. `Record` is the record that has the member, or one
/// derived from it.
namespace vdstomgr {

template <class Member>
struct MemberOf;
template <class Record, class Type>
struct MemberOf<Type Record::*> {
  using record = Record;
  using type = Type;
};
template <auto member>
using RecordOf = typename MemberOf<decltype(member)>::record;
template <auto member>
using TypeOf = typename MemberOf<decltype(member)>::type;

template <auto member, class Record>
void ReadNumber(const dao::Field& field, Record& record, std::string&) {
  if (!field.IsNull()) record.*member = static_cast<TypeOf<member>>(AsInteger(field));
}

/// A number. Unsigned 32-bit numbers stand as signed ones in the table.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> Number(const char* name) {
  using Type = TypeOf<member>;
  using Stored = std::conditional_t<sizeof(Type) == 4, std::int32_t, Type>;
  return {name, ReadNumber<member, Record>, [](const Record& record, dao::Value& value) {
            value.SetInteger(static_cast<Stored>(record.*member));
          }};
}

/// A number that is not read while the record's mark is set.
template <auto member, auto mark, class Record = RecordOf<member>>
constexpr Column<Record> NumberUnless(const char* name) {
  Column<Record> column = Number<member, Record>(name);
  column.read = [](const dao::Field& field, Record& record, std::string& text) {
    if (!(record.*mark)) ReadNumber<member>(field, record, text);
  };
  return column;
}

/// A text of limited length, held in the record itself.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> FixedText(const char* name) {
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            if (!field.IsNull()) CopyToFixed(record.*member, AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetText(value, record.*member); },
          /*lossy=*/true};
}

/// A text held in the record itself that has a setter with a rule of its own, which a null column
/// is read through too, as an empty text.
template <auto member, auto setter, class Record = RecordOf<member>>
constexpr Column<Record> RuledText(const char* name) {
  Column<Record> column = FixedText<member, Record>(name);
  column.read = [](const dao::Field& field, Record& record, std::string& text) {
    (record.*setter)(AsText(field, text));
  };
  return column;
}

/// A text behind a getter and a setter.
template <auto getter, auto setter, class Record = RecordOf<getter>>
constexpr Column<Record> PropertyText(const char* name) {
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            (record.*setter)(AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetText(value, (record.*getter)()); },
          /*lossy=*/true};
}

/// A byte count as a decimal text.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> DecimalText(const char* name) {
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            if (!field.IsNull()) record.*member = SizeFromText(AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetSize(value, record.*member); }};
}

/// A byte count as a real number, so that it sorts as one.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> RealSize(const char* name) {
  return {name,
          [](const dao::Field& field, Record& record, std::string&) {
            if (!field.IsNull()) record.*member = SizeFromReal(AsReal(field));
          },
          [](const Record& record, dao::Value& value) {
            value.SetReal(static_cast<double>(record.*member));
          }};
}

/// A time in seconds since 1970 as a date text. What is no date reads as 0.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> Date(const char* name) {
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            if (!field.IsNull()) record.*member = TimeFromText(AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetDate(value, record.*member); }};
}

/// The same, but what is no date reads as -1.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> UncheckedDate(const char* name) {
  Column<Record> column = Date<member, Record>(name);
  column.read = [](const dao::Field& field, Record& record, std::string& text) {
    if (!field.IsNull()) record.*member = CUtilityLib::GetTime(AsText(field, text));
  };
  return column;
}

/// A time that has a setter with a rule of its own, which a null column is read through too, as 0.
/// Never written.
template <auto setter, class Record = RecordOf<setter>>
constexpr Column<Record> RuledDate(const char* name) {
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            (record.*setter)(TimeFromText(AsText(field, text)));
          },
          nullptr};
}

/// The day of a time: written beside its date, never read back.
template <auto member, class Record = RecordOf<member>>
constexpr Column<Record> Day(const char* name) {
  return {name, nullptr,
          [](const Record& record, dao::Value& value) { SetDay(value, record.*member); }};
}

}  // namespace vdstomgr
