#include "vdstomgr/transfer/upload_list_file.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <stdexcept>

#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/csv_reader.h"
#include "vdstomgr/platform/utility/file_ex.h"
#include "vdstomgr/transfer/upload_queue.h"

namespace vdstomgr::transfer {

namespace {

/// The fields of a line in their order.
enum Field { kPlace, kGuid, kPath, kSize, kName, kRotate, kServerPath, kStatus, kResume };
constexpr int kFewestFields = kStatus + 1;
constexpr int kMostFields = kResume + 1;  // that mean something

struct TextField {
  Field field;
  const char* column;
};
constexpr TextField kTextFields[] = {{kGuid, "szGUID"},
                                     {kPath, "szOPPath"},
                                     {kSize, "dxFileSize"},
                                     {kName, "szFileName"},
                                     {kServerPath, "szServerPath"}};

/// A row of the queue as its line. What is in transfer goes on where it stopped.
CString LineOf(Row& row) {
  const int status = row.Integer("nStatus");
  const int resume = status == kInTransfer ? 1 : row.Byte("byteResume");
  CString line;
  line.Format("%d|\"%s\"|\"%s\"|%s|\"%s\"|%d|\"%s\"|%d|%d\r\n", row.Integer("nDispOrder"),
              row.Text("szGUID").GetString(), row.Text("szOPPath").GetString(),
              row.Text("dxFileSize").GetString(), row.Text("szFileName").GetString(),
              row.Byte("byteRotate"), row.Text("szServerPath").GetString(), status, resume);
  return line;
}

/// Lines on their way into a file, in large pieces. The file keeps in mind what did not get there.
class LineWriter {
 public:
  explicit LineWriter(CFileEx& file) : file_(file) {}
  ~LineWriter() { WritePiece(); }

  void Add(const CString& line) {
    piece_ += line.Str();
    if (piece_.size() >= kPieceBytes) WritePiece();
    is_empty_ = false;
  }
  bool IsEmpty() const { return is_empty_; }

 private:
  static constexpr std::size_t kPieceBytes = 64 << 10;

  void WritePiece() {
    file_.Write(piece_.data(), static_cast<UINT>(piece_.size()));
    piece_.clear();
  }

  CFileEx& file_;
  std::string piece_;
  bool is_empty_ = true;
};

/// The number at the start of a text, the nearest one that 32 bits hold.
std::int32_t NumberOf(const CString& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const long long number = std::strtoll(text, nullptr, 10);
  return static_cast<std::int32_t>(std::clamp(number, static_cast<long long>(Limits::min()),
                                              static_cast<long long>(Limits::max())));
}

void AddLine(CRkDaoRecordset& queue, const CStringArray& fields, std::uint64_t small_limit) {
  const CString& name = fields[kName];
  queue.AddNew();
  queue.SetFieldValue("nDispOrder", static_cast<DWORD>(NumberOf(fields[kPlace])));
  for (const TextField& text : kTextFields)
    queue.SetFieldValue(text.column, fields[text.field].GetString());
  queue.SetFieldValue("dxSentBytes", "0");
  queue.SetFieldValue("byteSmall", static_cast<BYTE>(IsSmallFile(
                                       name, CUtilityLib::StrToINT64(fields[kSize]), small_limit)));
  queue.SetFieldValue("byteImage", static_cast<BYTE>(IsImageFileName(name)));
  queue.SetFieldValue("byteRotate", static_cast<BYTE>(NumberOf(fields[kRotate])));
  queue.SetFieldValue("nStatus", DWORD{kReady});
  if (fields.GetSize() > kResume)
    queue.SetFieldValue("byteResume", static_cast<BYTE>(NumberOf(fields[kResume])));
  queue.SetFieldValue("nThumbStatus", DWORD{kThumbnailMissing});
  queue.Update();
}

/// Was there a row?
bool WriteUnfinished(DatabaseSession& db, CFileEx& file) {
  LineWriter lines(file);
  db.Guarded([&] {
    for (Row& row : db.Select("SELECT * FROM UploadList WHERE nStatus <> 2 AND nStatus <> 3"))
      lines.Add(LineOf(row));
  });
  return !lines.IsEmpty();
}

/// Adds the rows of lines up to a short one.
void AddLines(DatabaseSession& db, CsvReader& reader, const CRkCallback& progress,
              std::uint64_t small_limit) {
  Rows queue = db.Select("SELECT * FROM UploadList");
  CStringArray fields;
  int line = 0;
  while ((line = reader.Read(fields, kMostFields)) != -1 && fields.GetSize() >= kFewestFields) {
    if (IsFinished(NumberOf(fields[kStatus]))) continue;
    progress.SetProgress(static_cast<DWORD>(line), nullptr);
    AddLine(queue->Recordset(), fields, small_limit);
  }
}

struct CsvCloser {
  void operator()(CsvReader* reader) const { CUtilityLib::CloseCSV(reader); }
};

}  // namespace

void UploadListFile::SaveUploadList(const char* path) {
  m_db->GuardedOutsideCommit(false, [&] {
    CFileEx file;
    if (!file.Open(path, CFileEx::modeCreate | CFileEx::modeWrite | CFileEx::typeBinary))
      return false;
    const bool is_empty = !WriteUnfinished(*m_db, file);
    if (!file.Close()) throw std::runtime_error("The list of uploads could not be saved whole.");
    return !is_empty || !os::Files().Delete(ToUtf8(ViewOf(path)));
  });
}

void UploadListFile::LoadUploadList(const char* path, CRkCallback* progress) {
  const StaleAtExit change = Changing();
  m_db->GuardedOutsideCommit(false, [&] {
    const std::unique_ptr<CsvReader, CsvCloser> reader(CUtilityLib::OpenCSV(path, "|", "\r\n"));
    if (!reader) return false;
    m_db->InOneCommit([&] {
      AddLines(*m_db, *reader, progress != nullptr ? *progress : CRkCallback(),
               m_nSmallFileUploadMaxSize);
    });
    return true;
  });
}

}  // namespace vdstomgr::transfer
