#include "vdstomgr/platform/utility/csv_reader.h"

#include <memory>
#include <utility>

#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {
namespace {

/// Takes what stands before the first `end` off the text, and `end` with it; all when there is
/// none.
std::string_view Take(std::string_view& text, std::string_view end) {
  const std::size_t at = end.empty() ? std::string_view::npos : text.find(end);
  const std::string_view taken = text.substr(0, at);
  text.remove_prefix(at == std::string_view::npos ? text.size() : at + end.size());
  return taken;
}

std::string_view WithoutQuotes(std::string_view field) {
  const bool quoted = field.size() >= 2 && field.front() == '"' && field.back() == '"';
  return quoted ? field.substr(1, field.size() - 2) : field;
}

}  // namespace

CsvReader::CsvReader(CBinData text, CString separator, CString line_end)
    : text_(std::move(text)),
      rest_(reinterpret_cast<const char*>(text_.GetData()), text_.GetLength()),
      separator_(std::move(separator)),
      line_end_(std::move(line_end)) {}

int CsvReader::Read(CStringArray& fields, int most_fields) {
  fields.RemoveAll();
  if (rest_.empty()) return -1;
  std::string_view line = Take(rest_, line_end_);
  bool more = true;
  while (more && fields.GetSize() < most_fields) {
    const std::size_t before = line.size();
    const std::string_view field = Take(line, separator_);
    more = before != field.size();
    fields.Add(WithoutQuotes(field));
  }
  return ++lines_;
}

}  // namespace vdstomgr

vdstomgr::CsvReader* CUtilityLib::OpenCSV(const char* path, const char* separator,
                                          const char* line_end) {
  CBinData text;
  if (!LoadFileData(path, text)) return nullptr;
  return std::make_unique<vdstomgr::CsvReader>(std::move(text), separator, line_end).release();
}

int CUtilityLib::ReadCSV(vdstomgr::CsvReader* reader, CStringArray& fields) {
  return reader->Read(fields);
}

void CUtilityLib::CloseCSV(vdstomgr::CsvReader* reader) {
  std::unique_ptr<vdstomgr::CsvReader>{reader};
}
