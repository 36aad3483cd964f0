#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "vdstomgr/transfer/upload_list.h"
#include "vdstomgr/transfer/upload_queue.h"

namespace vdstomgr::transfer {

namespace {

constexpr int kRowsBefore = 30;   // that are read with a row, and
constexpr int kRowsOfAPage = 60;  // with it and those behind it
/// What is kept of the rows read by position: some megabytes, however far a view is scrolled.
constexpr int kMostRowsKept = 64 * kRowsOfAPage;

int FirstReady(DatabaseSession& db) {
  int position = 0;
  for (Row& row : db.Select("SELECT nStatus FROM UploadList ORDER BY nDispOrder ASC")) {
    if (row.Integer() == kReady) break;
    ++position;
  }
  return position;
}

/// The numbers that a range of rows gets, in two runs: those of the selected rows and the others'.
class NewPlaces {
 public:
  NewPlaces(std::int32_t first, int span, int selected, bool to_front)
      : selected_(static_cast<DWORD>(first)), others_(selected_) {
    to_front ? others_ += static_cast<DWORD>(selected)
             : selected_ += static_cast<DWORD>(span - selected);
  }

  std::int32_t Next(bool is_selected) {
    return static_cast<std::int32_t>(is_selected ? selected_++ : others_++);
  }

 private:
  DWORD selected_;
  DWORD others_;
};

void SetPlace(Row& row, std::int32_t place) {
  if (row.Integer("nDispOrder") == place) return;
  CRkDaoRecordset& recordset = row.Recordset();
  recordset.Edit();
  recordset.SetFieldValue("nDispOrder", static_cast<DWORD>(place));
  recordset.Update();
}

int SpanOf(int from, int to) {
  constexpr std::int64_t kMost = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(std::int64_t{to} - from + 1, std::int64_t{0}, kMost));
}

/// The step of cRangedSelectionSorting. Ranges that begin before the queue count from their own
/// beginning, on purpose.
void NumberAnew(DatabaseSession& db, int from, int to, bool to_front, CDWordArray& selected) {
  const int span = SpanOf(from, to);
  Rows rows = db.Select("SELECT * FROM UploadList ORDER BY nDispOrder ASC");
  rows.Window(std::max(from, 0), span);
  if (!rows.HasRow()) return;
  NewPlaces places(rows->Integer("nDispOrder"), span, selected.GetSize(), to_front);
  auto position = static_cast<DWORD>(from);
  int met = 0;
  for (Row& row : rows) {
    const bool is_selected = met < selected.GetSize() && selected[met] == position++;
    if (is_selected) ++met;
    SetPlace(row, places.Next(is_selected));
  }
  selected.RemoveAt(0, met);
}

void RemoveBelow(CDWordArray& positions, int first) {
  std::vector<DWORD> kept = positions.Take();
  std::erase_if(kept, [&](DWORD position) { return static_cast<std::int32_t>(position) < first; });
  positions = std::move(kept);
}

}  // namespace

int UploadList::GetUploadInfoByIndex(UPLOADLIST& out, int index) {
  m_db->Guarded([&] {
    if (std::exchange(m_bPositionsStale, false)) m_mapUploadList.RemoveAll();
    if (m_mapUploadList.Lookup(index, out)) return;
    KeepPageAround(index);
    m_mapUploadList.Lookup(index, out);
  });
  return 1;
}

void UploadList::KeepPageAround(int index) {
  const int start = index > kRowsBefore ? index - kRowsBefore : 0;
  UploadListArray page;
  cGetUploadListByIndex(page, kRowsOfAPage, start);
  if (m_mapUploadList.GetSize() + page.GetSize() > kMostRowsKept) m_mapUploadList.RemoveAll();
  for (int i = 0; i < page.GetSize(); ++i) m_mapUploadList.SetAt(start + i, page[i]);
}

int UploadList::cGetUploadListByIndex(UploadListArray& out, int count, int start) {
  return m_db->Guarded(0, [&] {
    const int before = out.GetSize();
    Rows rows = m_db->Select("SELECT * FROM UploadList ORDER BY nDispOrder ASC");
    rows.Window(std::max(start, 0), std::max(count, 0));
    for (Row& row : rows) out.Add(QueueTable<UPLOADLIST>::kAll.ReadFresh(row.Recordset()));
    return out.GetSize() - before;
  });
}

int UploadList::GetUploadListByArray(UploadListArray& out, CDWordArray& positions) {
  const auto as_signed = [](DWORD position) { return static_cast<std::int32_t>(position); };
  std::ranges::sort(positions, {}, as_signed);
  return m_db->Guarded(0, [&] {
    const int before = out.GetSize();
    auto wanted = std::ranges::lower_bound(positions, 0, {}, as_signed);
    if (wanted == positions.end()) return 0;
    auto position = *wanted;
    Rows rows = m_db->Select("SELECT * FROM UploadList ORDER BY nDispOrder ASC");
    rows.Window(as_signed(position),
                SpanOf(as_signed(position), as_signed(*(positions.end() - 1))));
    for (Row& row : rows) {
      wanted = std::lower_bound(wanted, positions.end(), position);
      if (*wanted == position++) out.Add(kUploadListColumns.ReadFresh(row.Recordset()));
    }
    return out.GetSize() - before;
  });
}

int UploadList::cGetNextUploadListIndex() {
  return m_db->Guarded(0, [&] { return FirstReady(*m_db); });
}

bool UploadList::cRangedSelectionSorting(int from, int to, bool toFront, CDWordArray& sel) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] {
    NumberAnew(*m_db, from, to, toFront, sel);
    return true;
  });
}

/// What a command is given: positions, and how many rows.
struct UploadList::Selection {
  int first_ready, first, last, size, rows;
};

/// What it does with it, and answers.
struct UploadList::Reordering {
  int from, to;
  bool to_front;
  int answer;
};

int UploadList::Reorder(CDWordArray& sel, Reordering (*plan)(const Selection&)) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(0, [&] {
    const int first_ready = FirstReady(*m_db);
    RemoveBelow(sel, first_ready);
    if (sel.IsEmpty()) return -1;
    CDWordArray selected = sel;
    const int rows = FirstInteger(m_db->Select("SELECT COUNT(*) as Count FROM UploadList"));
    const Reordering reordering =
        plan({first_ready, static_cast<int>(sel[0]), static_cast<int>(sel[sel.GetUpperBound()]),
              sel.GetSize(), rows});
    NumberAnew(*m_db, reordering.from, reordering.to, reordering.to_front, selected);
    return reordering.answer;
  });
}

int UploadList::SetUploadReorder_TOP(CDWordArray& sel) {
  return Reorder(sel, [](const Selection& s) -> Reordering {
    return {s.first_ready, s.last, true, s.first_ready};
  });
}

int UploadList::SetUploadReorder_UP(CDWordArray& sel) {
  return Reorder(sel, [](const Selection& s) -> Reordering {
    const int from = std::max(s.first - 1, s.first_ready);
    return {from, s.last, true, from};
  });
}

int UploadList::SetUploadReorder_DOWN(CDWordArray& sel) {
  return Reorder(sel, [](const Selection& s) -> Reordering {
    const int to = s.last < s.rows - 1 ? s.last + 1 : s.rows - 1;
    return {s.first, to, false, to - s.size + 1};
  });
}

int UploadList::SetUploadReorder_BOTTOM(CDWordArray& sel) {
  return Reorder(sel, [](const Selection& s) -> Reordering {
    return {s.first, s.rows - 1, false, s.rows - s.size};
  });
}

}  // namespace vdstomgr::transfer
