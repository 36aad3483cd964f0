#include "bench/peer_queue.h"

#include <sqlite3.h>

#include <algorithm>
#include <vector>

#include "bench/catalogue_records.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace bench {
namespace {

constexpr int kMostRows = 100'000;
constexpr const char* kColumns =
    "nID, nDispOrder, szGUID, szOPPath, dxFileSize, dxSentBytes, szFileName, byteRotate, "
    "szServerPath, nStatus, nThumbStatus, szLTBPath, szRPPath, szExifString, byteResume";

void Fill(Reader r, UPLOADLIST& row) {
  r.Number(row.nID), r.Number(row.nDispOrder), r.Text(row.szGUID), r.Text(row.szOPPath);
  CUtilityLib::MbcsFileToUnicodeFile(row.szOPPath, row.wszOPPath, 260);
  row.dxFileSize = r.Size(), row.dxSentBytes = r.Size(), row.SetFileName(r.Text());
  r.Number(row.byteRotate), r.Text(row.szServerPath), r.Number(row.nStatus);
  r.Number(row.nThumbStatus), r.Text(row.szLTBPath), r.Text(row.szRPPath);
  r.Text(row.szExifString), r.Number(row.byteResume);
}

int CountOf(PeerDatabase& db, const std::string& table) {
  int count = 0;
  ReadOne<int>(db.Prepare("SELECT COUNT(*) FROM " + table), count,
               [](Reader row, int& value) { row.Number(value); });
  return count;
}

}  // namespace

PeerQueue::PeerQueue(const std::string& path, const std::string& table) : db_(path) {
  const std::string of = " FROM " + table;
  const std::string select = std::string("SELECT ") + kColumns + of;
  const std::string update = "UPDATE " + table + " SET ";
  read_ = db_.Prepare(select + " WHERE szGUID = ?1");
  claim_ = db_.Prepare(select + " WHERE nStatus = 0 ORDER BY nDispOrder LIMIT 1");
  set_status_ = db_.Prepare(update + "nStatus = ?1 WHERE szGUID = ?2");
  set_sent_ = db_.Prepare(update + "dxSentBytes = ?1 WHERE szGUID = ?2");
  insert_ = db_.Prepare("INSERT INTO " + table +
                        " (nDispOrder, szGUID, szOPPath, dxFileSize, dxSentBytes, byteSmall, "
                        "byteImage, szFileName, byteRotate, szServerPath, nStatus, nThumbStatus, "
                        "szLTBPath, szRPPath, szExifString, byteResume) VALUES (?1, ?2, ?3, ?4, "
                        "?5, 1, 1, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)");
  delete_ = db_.Prepare("DELETE" + of + " WHERE szGUID = ?1");
  page_ = db_.Prepare(select + " ORDER BY nDispOrder LIMIT ?1 OFFSET ?2");
  places_ = db_.Prepare("SELECT nID, nDispOrder" + of + " ORDER BY nDispOrder LIMIT ?1");
  set_place_ = db_.Prepare(update + "nDispOrder = ?1 WHERE nID = ?2");
  rows_ = CountOf(db_, table);
  if (rows_ == 0) Fill();
}

void PeerQueue::Fill() {
  rows_ = std::min(CountOf(db_, "PhotoMaster"), kMostRows);
  db_.Begin();
  for (int i = 0; i < rows_; ++i) {
    UPLOADLIST row;
    std::snprintf(row.szGUID, sizeof row.szGUID, "%s", GuidOf(std::uint64_t(i)).c_str());
    std::snprintf(row.szOPPath, sizeof row.szOPPath, "/home/user/사진/2024/IMG_%d.JPG", i);
    row.SetFileName("사진.JPG");
    row.nDispOrder = i;
    row.dxFileSize = 3'000'000;
    Require(Insert(row), "insert");
  }
  db_.Commit();
}

bool PeerQueue::Read(const char* guid, UPLOADLIST& row) {
  Binder(read_).Text(guid);
  return ReadOne(read_, row, bench::Fill);
}

bool PeerQueue::Claim(UPLOADLIST& row) {
  return ReadOne(claim_, row, bench::Fill) && SetStatus(row.szGUID, 1);
}

bool PeerQueue::SetStatus(const char* guid, int status) {
  Binder(set_status_).Number(status).Text(guid);
  return db_.Change(set_status_);
}

bool PeerQueue::SetSentBytes(const char* guid, std::uint64_t bytes) {
  Binder(set_sent_).Size(bytes).Text(guid);
  return db_.Change(set_sent_);
}

bool PeerQueue::Insert(const UPLOADLIST& row) {
  Binder(insert_)
      .Number(row.nDispOrder)
      .Text(row.szGUID)
      .Text(row.szOPPath)
      .Size(row.dxFileSize)
      .Size(row.dxSentBytes)
      .Text(row.szFileName)
      .Number(row.byteRotate)
      .Text(row.szServerPath)
      .Number(row.nStatus)
      .Number(row.nThumbStatus)
      .Text(row.szLTBPath)
      .Text(row.szRPPath)
      .Text(row.szExifString)
      .Number(row.byteResume);
  return PeerDatabase::Run(insert_);
}

bool PeerQueue::Delete(const char* guid) {
  Binder(delete_).Text(guid);
  return db_.Change(delete_);
}

int PeerQueue::ReadPage(vdstomgr::UploadListArray& page, int count, int start) {
  Binder(page_).Number(count).Number(start);
  while (Next(page_)) {
    UPLOADLIST row;
    bench::Fill(Reader(page_.get()), row);
    page.Add(row);
  }
  Reset(page_);
  return page.GetSize();
}

bool PeerQueue::MoveToFront(int position) {
  struct Place {
    int id, place;
  };
  std::vector<Place> places;
  Binder(places_).Number(position + 1);
  while (Next(places_)) {
    Reader row(places_.get());
    row.Number(places.emplace_back().id), row.Number(places.back().place);
  }
  Reset(places_);
  const int first = places.front().place;
  std::rotate(places.begin(), places.end() - 1, places.end());
  db_.Begin();
  bool done = true;
  for (int i = 0; i <= position; ++i) {
    const Place& row = places[std::size_t(i)];
    if (row.place == first + i) continue;
    Binder(set_place_).Number(first + i).Number(row.id);
    done = done && db_.Change(set_place_);
  }
  db_.Commit();
  return done;
}

}  // namespace bench
