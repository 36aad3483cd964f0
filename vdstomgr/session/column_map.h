#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "vdstomgr/platform/dao/dao_recordset.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/session/column_text.h"

namespace vdstomgr {

/// One column of a record's table: how it fills the record, and how the record fills it. A column
/// without a way to read or to write is passed over there.
template <class Record>
struct Column {
  const char* name;
  /// `text` is memory to convert texts in.
  void (*read)(const dao::Field& field, Record& record, std::string& text);
  void (*write)(const Record& record, dao::Value& value);
  /// A text that a record may hold otherwise than the table does: cut, in a code page that lacks
  /// some of its characters, or as the rule of its setter has it.
  bool lossy = false;
};

/// The columns of one list followed by those of another.
template <class Record, std::size_t A, std::size_t B>
consteval std::array<Column<Record>, A + B> Join(const std::array<Column<Record>, A>& first,
                                                 const std::array<Column<Record>, B>& second) {
  std::array<Column<Record>, A + B> all{};
  std::ranges::copy(second, std::ranges::copy(first, all.begin()).out);
  return all;
}

/// What writing a record does with a row that is there, and with one that is not.
enum class Write { AddOnly, EditOnly, AddOrEdit };

/// A record's mapping to its table: its columns in the order in which they are read and written.
template <class Record, std::size_t N>
class ColumnMap {
 public:
  consteval ColumnMap(const std::array<Column<Record>, N>& columns) : columns_(columns) {
    std::ranges::transform(columns, names_.begin(), &Column<Record>::name);
  }

  /// Fills `record` from the current row. Throws CDaoException when a column is missing.
  void Read(CDaoRecordset& recordset, Record& record) const {
    dao::Query& query = recordset.Query();
    std::string& text = ScratchText();
    const int* position = Positions(recordset);
    for (const Column<Record>& column : columns_) {
      if (column.read) column.read(query.Get(*position), record, text);
      ++position;
    }
  }
  /// The current row as a record; null columns leave its fields at their first values.
  Record ReadFresh(CDaoRecordset& recordset) const {
    Record record{};
    Read(recordset, record);
    return record;
  }

  /// Rewrites the current row or, when there is none, adds one, as far as `how` allows. Answers
  /// whether it wrote.
  bool WriteRow(CDaoRecordset& recordset, const Record& record, Write how) const {
    if (recordset.IsEOF()) {
      if (how != Write::EditOnly) Add(recordset, record);
      return how != Write::EditOnly;
    }
    if (how != Write::AddOnly) Edit(recordset, record);
    return how != Write::AddOnly;
  }

  /// Adds a row made of `record`.
  void Add(CDaoRecordset& recordset, const Record& record) const {
    recordset.AddNew();
    Fill(recordset, record);
    recordset.Update();
  }

  /// Rewrites the current row. A lossy column keeps its text when the record's is what it reads as.
  void Edit(CDaoRecordset& recordset, const Record& record) const {
    recordset.Edit();
    Fill(recordset, record);
    const int* position = Positions(recordset);
    for (const Column<Record>& column : columns_) {
      if (column.write && column.lossy)
        KeepText(column, recordset.Query().Get(*position), recordset.Draft().Set(*position));
      ++position;
    }
    recordset.Update();
  }

  /// Fills the pending row.
  void Fill(CDaoRecordset& recordset, const Record& record) const {
    const int* position = Positions(recordset);
    dao::RowDraft& draft = recordset.Draft();
    for (const Column<Record>& column : columns_) {
      if (column.write) column.write(record, draft.Set(*position));
      ++position;
    }
  }

 private:
  /// Puts the stored text back into `value` when reading it and writing it again gives that value.
  static void KeepText(const Column<Record>& column, const dao::Field& stored, dao::Value& value) {
    if (stored.kind != dao::Kind::Text || stored.bytes == value.bytes) return;
    Record record{};
    dao::Value again;
    column.read(stored, record, ScratchText());
    column.write(record, again);
    if (again.bytes == value.bytes) value.bytes = stored.bytes;
  }

  const int* Positions(CDaoRecordset& recordset) const {
    return recordset.Query().Columns().Positions(this, names_).data();
  }

  std::array<Column<Record>, N> columns_;
  std::array<const char*, N> names_{};
};

}  // namespace vdstomgr
