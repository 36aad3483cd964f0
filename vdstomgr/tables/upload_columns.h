#pragma once

#include <iterator>

#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/sync_upload_list.h"
#include "vdstomgr/records/upload_list.h"
#include "vdstomgr/session/column_kinds.h"

/// The tables of both upload queues and what their columns hold.
namespace vdstomgr {

/// A queued record with what its row keeps of the file's kind beside.
template <class Record>
struct QueueRow : Record {
  BYTE byteSmall = 0;
  BYTE byteImage = 0;
};

template <class Row>
constexpr Column<Row> ReadOnly(Column<Row> column) {
  column.write = nullptr;
  return column;
}

/// The file's path, whose wide form is made when it is read.
template <class Row>
constexpr Column<Row> SourcePath(const char* name) {
  Column<Row> column = FixedText<&QueuedUpload::szOPPath, Row>(name);
  column.read = [](const dao::Field& field, Row& row, std::string& text) {
    CopyToFixed(row.szOPPath, AsText(field, text));
    CUtilityLib::MbcsFileToUnicodeFile(row.szOPPath, row.wszOPPath,
                                       static_cast<int>(std::size(row.wszOPPath)));
  };
  return column;
}

/// A flag of 32 bits that is kept as a byte.
template <auto member, class Row>
constexpr Column<Row> ByteFlag(const char* name) {
  Column<Row> column = Number<member, Row>(name);
  column.write = [](const Row& row, dao::Value& value) {
    value.SetInteger(static_cast<BYTE>(row.*member));
  };
  return column;
}

/// Which row, and where in the queue.
template <class Row>
inline constexpr std::array kQueuePlaceColumns{
    ReadOnly(Number<&QueuedUpload::nID, Row>("nID")),
    Number<&QueuedUpload::nDispOrder, Row>("nDispOrder"),
    FixedText<&QueuedUpload::szGUID, Row>("szGUID"),
};

/// What is sent, and how far that got.
template <class Row>
inline constexpr std::array kQueueFileColumns{
    SourcePath<Row>("szOPPath"),
    DecimalText<&QueuedUpload::dxFileSize, Row>("dxFileSize"),
    DecimalText<&QueuedUpload::dxSentBytes, Row>("dxSentBytes"),
    Number<&Row::byteSmall>("byteSmall"),
    Number<&Row::byteImage>("byteImage"),
    RuledText<&QueuedUpload::szFileName, &QueuedUpload::SetFileName, Row>("szFileName"),
    Number<&QueuedUpload::byteRotate, Row>("byteRotate"),
    FixedText<&QueuedUpload::szServerPath, Row>("szServerPath"),
    Number<&QueuedUpload::nStatus, Row>("nStatus"),
    Number<&QueuedUpload::nThumbStatus, Row>("nThumbStatus"),
    FixedText<&QueuedUpload::szLTBPath, Row>("szLTBPath"),
    FixedText<&QueuedUpload::szRPPath, Row>("szRPPath"),
    FixedText<&QueuedUpload::szExifString, Row>("szExifString"),
    Number<&QueuedUpload::byteResume, Row>("byteResume"),
};

/// A queue's table: its name, the columns that change with a record, all columns.
template <class Record>
struct QueueTable;

template <>
struct QueueTable<UPLOADLIST> {
  using Row = QueueRow<UPLOADLIST>;
  static constexpr const char* kName = "UploadList";
  static constexpr ColumnMap kFile{kQueueFileColumns<Row>};
  static constexpr ColumnMap kAll{Join(kQueuePlaceColumns<Row>, kQueueFileColumns<Row>)};
};

template <>
struct QueueTable<SYNCUPLOADLIST> {
  using Row = QueueRow<SYNCUPLOADLIST>;
  static constexpr const char* kName = "SyncUploadList";
  static constexpr std::array kFileColumns = Join(
      kQueueFileColumns<Row>,
      std::array{ByteFlag<&SYNCUPLOADLIST::bOnlyOneTime, Row>("bOnlyOneTime"),
                 ByteFlag<&SYNCUPLOADLIST::bPostEndMsgToSyncDlg, Row>("bPostEndMsgToSyncDlg")});
  static constexpr ColumnMap kFile{kFileColumns};
  static constexpr ColumnMap kAll{Join(kQueuePlaceColumns<Row>, kFileColumns)};
};

/// What a list of uploads shows.
inline constexpr ColumnMap kUploadListColumns(std::array{
    Number<&QueuedUpload::nID, UPLOADLIST>("nID"),
    Number<&QueuedUpload::nDispOrder, UPLOADLIST>("nDispOrder"),
    FixedText<&QueuedUpload::szGUID, UPLOADLIST>("szGUID"),
    SourcePath<UPLOADLIST>("szOPPath"),
    DecimalText<&QueuedUpload::dxFileSize, UPLOADLIST>("dxFileSize"),
    DecimalText<&QueuedUpload::dxSentBytes, UPLOADLIST>("dxSentBytes"),
    RuledText<&QueuedUpload::szFileName, &QueuedUpload::SetFileName, UPLOADLIST>("szFileName"),
    Number<&QueuedUpload::byteRotate, UPLOADLIST>("byteRotate"),
    FixedText<&QueuedUpload::szServerPath, UPLOADLIST>("szServerPath"),
    Number<&QueuedUpload::nStatus, UPLOADLIST>("nStatus"),
    Number<&QueuedUpload::byteResume, UPLOADLIST>("byteResume"),
});

}  // namespace vdstomgr
