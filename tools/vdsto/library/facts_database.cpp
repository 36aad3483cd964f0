#include "tools/vdsto/library/facts_database.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/words_text.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr int kVersion = 3;
constexpr int kDamaged = 3049;
constexpr int kNoDatabase = 3343;
constexpr size_t kGuidsPerQuery = 500;

/// Numbers are signed and have 32 bits, so a time is kept in halves; a DOUBLE holds every size.
constexpr std::array kTables{
    "CREATE TABLE FactsInfo (nVersion INTEGER)",
    "CREATE TABLE ImportPlaces (nPlace INTEGER, szPath MEMO, szDevice MEMO)",
    "CREATE TABLE UnreadableFiles (szPath MEMO, szReason MEMO)",
    "CREATE TABLE PhotoFacts (szGUID CHAR(36) NOT NULL, szPath MEMO, dbSize DOUBLE, "
    "nLastWriteHigh INTEGER, nLastWriteLow INTEGER, szMD5 CHAR(32), byteState BYTE, "
    "szProblem MEMO, dbLatitude DOUBLE, dbLongitude DOUBLE, dbAltitude DOUBLE, szMaker MEMO, "
    "szModel MEMO, szLens MEMO, byteDateSource BYTE, nPlace INTEGER, nGoneSince INTEGER, "
    "nWidth INTEGER, nHeight INTEGER, szSidecar CHAR(40), szWords MEMO, "
    "CONSTRAINT PK_PhotoFacts PRIMARY KEY (szGUID))"};

constexpr const char* kSelect =
    "SELECT szGUID, szPath, dbSize, nLastWriteHigh, nLastWriteLow, szMD5, byteState, szProblem, "
    "dbLatitude, dbLongitude, dbAltitude, szMaker, szModel, szLens, byteDateSource, nPlace, "
    "nGoneSince, nWidth, nHeight, szSidecar, szWords FROM PhotoFacts";
constexpr const char* kSelectFiles =
    "SELECT szGUID, szPath, dbSize, nLastWriteHigh, nLastWriteLow, szMD5, nPlace, nGoneSince, "
    "szSidecar "
    "FROM PhotoFacts";

std::optional<double> NumberIn(const COleVariant& value) {
  if (value.vt == VT_R8) return value.dblVal;
  return value.vt == VT_NULL ? std::nullopt : std::optional(static_cast<double>(value.ToInteger()));
}

/// The next version's number is taken for what it is not rather than refused.
template <class Enum>
Enum EnumIn(const COleVariant& value, Enum last) {
  return static_cast<Enum>(std::clamp<int64_t>(value.ToInteger(), 0, static_cast<int64_t>(last)));
}

/// Reads the columns of kSelect, or of another list, one after the other.
class Columns {
 public:
  explicit Columns(CDaoRecordset& rows) : rows_(rows) {}

  COleVariant Next() { return rows_.GetFieldValue(position_++); }
  std::string Text() { return Next().ToText().Str(); }
  std::string Path() { return PathOf(Text()); }
  uint32_t Half() { return static_cast<uint32_t>(Next().ToInteger()); }

 private:
  CDaoRecordset& rows_;
  int position_ = 0;
};

void ReadFile(Columns& columns, PhotoFacts& facts) {
  facts.guid = columns.Text();
  facts.path = columns.Path();
  facts.stamp.size = static_cast<uint64_t>(NumberIn(columns.Next()).value_or(0));
  facts.stamp.last_write = uint64_t{columns.Half()} << 32;
  facts.stamp.last_write |= columns.Half();
  facts.md5 = columns.Text();
}

void ReadWhereabouts(Columns& columns, PhotoFacts& facts) {
  facts.place_id = columns.Half();
  facts.gone_since = static_cast<int32_t>(columns.Half());
}

PhotoFacts FactsIn(CDaoRecordset& rows) {
  Columns columns(rows);
  PhotoFacts facts;
  ReadFile(columns, facts);
  facts.state = EnumIn(columns.Next(), PictureState::kBroken);
  facts.problem = columns.Text();
  facts.place.latitude = NumberIn(columns.Next());
  facts.place.longitude = NumberIn(columns.Next());
  facts.place.altitude = NumberIn(columns.Next());
  facts.maker = columns.Text();
  facts.model = columns.Text();
  facts.lens = columns.Text();
  facts.date_source = EnumIn(columns.Next(), DateSource::kFile);
  ReadWhereabouts(columns, facts);
  facts.width = columns.Half();
  facts.height = columns.Half();
  facts.sidecar = StampFromText(columns.Text());
  facts.words = WordsFromText(columns.Text());
  return facts;
}

COleVariant Variant(const std::optional<double>& number) {
  return number ? COleVariant(*number) : COleVariant();
}

COleVariant Variant(uint64_t half) {
  return COleVariant(static_cast<int32_t>(static_cast<uint32_t>(half)));
}

void AddRow(const PhotoFacts& facts, CDaoRecordset& rows) {
  rows.AddNew();
  rows.SetFieldValue("szGUID", facts.guid.c_str());
  rows.SetFieldValue("szPath", UnlimitedLocationOf(facts.path).c_str());
  rows.SetFieldValue("dbSize", COleVariant(static_cast<double>(facts.stamp.size)));
  rows.SetFieldValue("nLastWriteHigh", Variant(facts.stamp.last_write >> 32));
  rows.SetFieldValue("nLastWriteLow", Variant(facts.stamp.last_write));
  rows.SetFieldValue("szMD5", facts.md5.c_str());
  rows.SetFieldValue("byteState", COleVariant(static_cast<BYTE>(facts.state)));
  rows.SetFieldValue("szProblem", facts.problem.c_str());
  rows.SetFieldValue("dbLatitude", Variant(facts.place.latitude));
  rows.SetFieldValue("dbLongitude", Variant(facts.place.longitude));
  rows.SetFieldValue("dbAltitude", Variant(facts.place.altitude));
  rows.SetFieldValue("szMaker", facts.maker.c_str());
  rows.SetFieldValue("szModel", facts.model.c_str());
  rows.SetFieldValue("szLens", facts.lens.c_str());
  rows.SetFieldValue("byteDateSource", COleVariant(static_cast<BYTE>(facts.date_source)));
  rows.SetFieldValue("nPlace", Variant(facts.place_id));
  rows.SetFieldValue("nGoneSince", COleVariant(facts.gone_since));
  rows.SetFieldValue("nWidth", Variant(uint64_t{facts.width}));
  rows.SetFieldValue("nHeight", Variant(uint64_t{facts.height}));
  rows.SetFieldValue("szSidecar", TextOf(facts.sidecar).c_str());
  rows.SetFieldValue("szWords", TextOf(facts.words).c_str());
  rows.Update();
}

/// GUIDs have no quotes in them, and those of other hosts that have are not looked for.
std::string GuidList(std::span<const std::string> guids) {
  std::string list;
  for (const std::string& guid : guids) {
    if (guid.find('\'') == std::string::npos) list += (list.empty() ? "'" : ",'") + guid + "'";
  }
  return list.empty() ? "''" : list;
}

/// Calls `use` with pieces of the list.
template <class Use>
void InPieces(std::span<const std::string> guids, Use use) {
  for (; !guids.empty(); guids = guids.subspan(std::min(guids.size(), kGuidsPerQuery)))
    use("WHERE szGUID IN (" + GuidList(guids.first(std::min(guids.size(), kGuidsPerQuery))) + ")");
}

bool CannotBeUsed(const CDaoException& error) {
  return error.Code() == kDamaged || error.Code() == kNoDatabase ||
         error.Code() == kWrongDatabasePassword;
}

}  // namespace

/// Whatever is wrong with the file is for the next import to say.
template <class Operation>
void FactsDatabase::Read(Operation operation) {
  try {
    if (IsReadable()) operation();
  } catch (const CDaoException&) {
  }
}

template <class Use>
void FactsDatabase::ForEachRow(const char* query, Use use) {
  Read([&] {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, query);
    for (; !rows.IsEOF(); rows.MoveNext()) {
      Columns columns(rows);
      use(columns);
    }
  });
}

template <class Operation>
void FactsDatabase::InOneCommit(Operation operation) {
  database_.BeginGroup();
  try {
    operation();
  } catch (const CDaoException&) {
    database_.EndGroup();
    throw;
  }
  database_.EndGroup();
}

template <class Operation>
void FactsDatabase::Write(Operation operation) {
  try {
    InOneCommit(operation);
  } catch (const CDaoException& error) {
    if (!CannotBeUsed(error)) throw ToolError(ExitCode::kCatalogue, path_ + ": " + error.what());
    SetAside();
    throw ToolError(ExitCode::kCatalogue, path_ + " is damaged; the next import makes it again");
  }
}

bool FactsDatabase::IsReadable() {
  std::error_code ignored;
  if (database_.IsOpen()) return true;
  if (!std::filesystem::exists(path_, ignored)) return false;
  Open();
  return database_.IsOpen();
}

/// A file of another version, or one that a killed import has only begun, is closed again.
void FactsDatabase::Open() {
  OpenUnderPassword(database_, path_, password_, true);
  int64_t version = 0;
  try {
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT nVersion FROM FactsInfo");
    if (!rows.IsEOF()) version = rows.GetFieldValue(0).ToInteger();
  } catch (const CDaoException&) {
    database_.Close();
    throw;
  }
  if (version != kVersion) database_.Close();
}

void FactsDatabase::Prepare() {
  constexpr int kUnknownTable = 3078;
  try {
    if (IsReadable()) return;
  } catch (const CDaoException& error) {
    if (!CannotBeUsed(error) && error.Code() != kUnknownTable)
      throw ToolError(ExitCode::kCannotOpen, path_ + ": " + error.what());
  }
  try {
    SetAside();
    Create();
  } catch (const CDaoException& error) {
    throw ToolError(ExitCode::kCannotOpen, path_ + " cannot be made: " + error.what());
  }
}

/// What lies beside the file belongs to it and must not meet the next one.
void FactsDatabase::SetAside() {
  std::error_code ignored;
  if (database_.IsOpen()) database_.Close();
  for (const char* companion : {"-wal", "-shm"})
    std::filesystem::remove(path_ + companion, ignored);
  std::filesystem::rename(path_, path_ + ".old", ignored);
}

void FactsDatabase::Create() {
  database_.Create(path_.c_str());
  if (const std::string password = CountingPassword(password_); !password.empty())
    database_.NewPassword("", password.c_str());
  InOneCommit([&] {
    for (const char* table : kTables) database_.Execute(table);
    database_.Execute(
        ("INSERT INTO FactsInfo (nVersion) VALUES (" + std::to_string(kVersion) + ")").c_str());
  });
}

void FactsDatabase::Select(const std::string& condition,
                           const std::function<void(const PhotoFacts&)>& use) {
  CDaoRecordset rows(&database_);
  rows.Open(dbOpenDynaset, (std::string(kSelect) + " " + condition).c_str());
  for (; !rows.IsEOF(); rows.MoveNext()) use(FactsIn(rows));
}

std::optional<PhotoFacts> FactsDatabase::Of(const std::string& guid) {
  auto found = Of(std::vector{guid});
  return found.empty() ? std::nullopt : std::optional(std::move(found.begin()->second));
}

std::unordered_map<std::string, PhotoFacts> FactsDatabase::Of(
    const std::vector<std::string>& guids) {
  std::unordered_map<std::string, PhotoFacts> found;
  Read([&] {
    InPieces(guids, [&](const std::string& condition) {
      Select(condition, [&](const PhotoFacts& facts) { found.emplace(facts.guid, facts); });
    });
  });
  return found;
}

void FactsDatabase::ForEachFile(const std::function<void(const PhotoFacts&)>& use) {
  ForEachRow(kSelectFiles, [&](Columns& columns) {
    PhotoFacts facts;
    ReadFile(columns, facts);
    ReadWhereabouts(columns, facts);
    facts.sidecar = StampFromText(columns.Text());
    use(facts);
  });
}

std::vector<PhotoFacts> FactsDatabase::Where(const std::string& condition) {
  std::vector<PhotoFacts> found;
  Read([&] {
    Select("WHERE " + condition, [&](const PhotoFacts& facts) { found.push_back(facts); });
  });
  return found;
}

std::vector<PhotoFacts> FactsDatabase::Gone() {
  return Where("nGoneSince <> 0");
}

std::vector<PhotoFacts> FactsDatabase::NotGood() {
  return Where("byteState <> 0");
}

std::vector<ImportPlace> FactsDatabase::Places() {
  std::vector<ImportPlace> places;
  ForEachRow("SELECT nPlace, szPath, szDevice FROM ImportPlaces", [&](Columns& columns) {
    ImportPlace& place = places.emplace_back();
    place.id = columns.Half();
    place.path = columns.Path();
    place.device = columns.Text();
  });
  return places;
}

void FactsDatabase::Put(std::span<const PhotoFacts> photos) {
  Write([&] {
    std::vector<std::string> guids;
    for (const PhotoFacts& facts : photos) guids.push_back(facts.guid);
    InPieces(guids, [&](const std::string& condition) {
      database_.Execute(("DELETE FROM PhotoFacts " + condition).c_str());
    });
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, "SELECT * FROM PhotoFacts");
    for (const PhotoFacts& facts : photos) AddRow(facts, rows);
  });
}

void FactsDatabase::Remove(const std::vector<std::string>& guids) {
  Write([&] {
    InPieces(guids, [&](const std::string& condition) {
      database_.Execute(("DELETE FROM PhotoFacts " + condition).c_str());
    });
  });
}

void FactsDatabase::SetGone(const std::vector<std::string>& guids, int32_t since) {
  const std::string set = "UPDATE PhotoFacts SET nGoneSince = " + std::to_string(since) + " ";
  Write([&] {
    InPieces(guids,
             [&](const std::string& condition) { database_.Execute((set + condition).c_str()); });
  });
}

std::vector<UnreadableFile> FactsDatabase::Unreadable() {
  std::vector<UnreadableFile> files;
  ForEachRow("SELECT szPath, szReason FROM UnreadableFiles", [&](Columns& columns) {
    UnreadableFile& file = files.emplace_back();
    file.path = columns.Path();
    file.reason = columns.Text();
  });
  return files;
}

template <class List, class Set>
void FactsDatabase::Replace(const std::string& table, const List& list, Set set) {
  Write([&] {
    database_.Execute(("DELETE FROM " + table).c_str());
    CDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, ("SELECT * FROM " + table).c_str());
    for (const auto& entry : list) {
      rows.AddNew();
      rows.SetFieldValue("szPath", UnlimitedLocationOf(entry.path).c_str());
      set(entry, rows);
      rows.Update();
    }
  });
}

void FactsDatabase::SetPlaces(const std::vector<ImportPlace>& places) {
  Replace("ImportPlaces", places, [](const ImportPlace& place, CDaoRecordset& row) {
    row.SetFieldValue("nPlace", Variant(place.id));
    row.SetFieldValue("szDevice", place.device.c_str());
  });
}

void FactsDatabase::SetUnreadable(const std::vector<UnreadableFile>& files) {
  Replace("UnreadableFiles", files, [](const UnreadableFile& file, CDaoRecordset& row) {
    row.SetFieldValue("szReason", file.reason.c_str());
  });
}

}  // namespace vdsto
