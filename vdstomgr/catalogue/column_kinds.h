#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

#include "vdstomgr/catalogue/column_map.h"
#include "vdstomgr/catalogue/column_text.h"
#include "vdstomgr/records/fixed_text.h"

/// The kinds of columns that record maps are made of. A null column leaves its field as it is, but
/// empties a text that is set by a setter.
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

/// A number. Unsigned 32-bit numbers stand as signed ones in the table.
template <auto member>
consteval Column<RecordOf<member>> Number(const char* name) {
  using Record = RecordOf<member>;
  using Type = TypeOf<member>;
  using Stored = std::conditional_t<sizeof(Type) == 4, std::int32_t, Type>;
  return {name,
          [](const dao::Field& field, Record& record, std::string&) {
            if (!field.IsNull()) record.*member = static_cast<Type>(AsInteger(field));
          },
          [](const Record& record, dao::Value& value) {
            value.SetInteger(static_cast<Stored>(record.*member));
          }};
}

/// A text of limited length, held in the record itself.
template <auto member>
consteval Column<RecordOf<member>> FixedText(const char* name) {
  using Record = RecordOf<member>;
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            if (!field.IsNull()) CopyToFixed(record.*member, AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetText(value, record.*member); },
          sizeof(TypeOf<member>) - 1};
}

/// A text behind a getter and a setter.
template <auto getter, auto setter>
consteval Column<RecordOf<getter>> PropertyText(const char* name) {
  using Record = RecordOf<getter>;
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            (record.*setter)(AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetText(value, (record.*getter)()); },
          kAnyLength};
}

/// A byte count as a decimal text.
template <auto member>
consteval Column<RecordOf<member>> DecimalText(const char* name) {
  using Record = RecordOf<member>;
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            if (!field.IsNull()) record.*member = SizeFromText(AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetSize(value, record.*member); }};
}

/// A time in seconds since 1970 as a date text. What is no date reads as 0.
template <auto member, TimeText to_text>
consteval Column<RecordOf<member>> Time(const char* name) {
  using Record = RecordOf<member>;
  return {name,
          [](const dao::Field& field, Record& record, std::string& text) {
            if (!field.IsNull()) record.*member = TimeFromText(AsText(field, text));
          },
          [](const Record& record, dao::Value& value) { SetText(value, to_text(record.*member)); }};
}

/// The parts of a column that is read and written in different places of the order.
template <class Record>
consteval Column<Record> ReadOnly(Column<Record> column) {
  column.write = nullptr;
  return column;
}
template <class Record>
consteval Column<Record> WriteOnly(Column<Record> column) {
  column.read = nullptr;
  return column;
}

}  // namespace vdstomgr
