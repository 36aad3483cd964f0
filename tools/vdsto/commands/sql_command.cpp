#include <filesystem>
#include <system_error>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Other tools lack the text order that the files are written with; this reads them with it. The
statement is one SELECT in the library's dialect: texts in '...', LIKE with * and ?, dates as
#2004-06-29#, TOP 10 after SELECT for the first ten rows. docs/database.md has the tables. Nothing can
be changed this way.)";

/// A value as programs read it; blocks of bytes by their size.
Fact FactOf(const COleVariant& value) {
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return Json();
    case VT_UI1:
    case VT_I4:
      return value.ToInteger();
    case VT_R8:
      return value.dblVal;
    case VT_BSTR:
      return value.strVal.Str();
    case VT_BYTES:
      break;
  }
  return {Json(), "(" + Counted(value.bytes.size(), "byte") + ")"};
}

Answer RowsOf(CDaoDatabase& database, const std::string& statement) {
  CRkDaoRecordset rows(&database);
  rows.Open(dbOpenDynaset, statement.c_str());
  const auto names = vdstomgr::ColumnNamesOf(rows);
  Table table(names);
  Table with_names(names);
  with_names.Add({names.begin(), names.end()});
  for (; !rows.IsEOF(); rows.MoveNext()) {
    std::vector<Fact> row;
    for (int i = 0; i < rows.GetFieldCount(); ++i) row.push_back(FactOf(rows.GetFieldValue(i)));
    with_names.Add(row);
    table.Add(std::move(row));
  }
  return {table.AsJson(), with_names.Text()};
}

/// The grammar of a recordset knows nothing but SELECT; this says it more plainly.
void RequireReading(const std::string& statement) {
  if (AsciiLower(Trimmed(statement)).starts_with("select")) return;
  throw ToolError(ExitCode::kRefused, "vdsto sql only reads: the statement must begin with SELECT");
}

struct Sql {
  std::string statement;
  bool search = false;
  bool facts = false;

  void Declare(Command& command) {
    command.Word("SELECT", statement, "The statement, as one word: put it in quotes")
        .Flag("--search", search, "Ask search.vdb instead of the catalogue")
        .Flag("--facts", facts, "Ask facts.vdb instead of the catalogue")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    if (search && facts) throw ToolError(ExitCode::kUsage, "--search or --facts, not both");
    RequireReading(statement);
    const LibraryOptions options = invocation.AskForLibrary();
    CRkDaoDatabase database;
    Open(options, database);
    try {
      return invocation.Write(RowsOf(database, statement));
    } catch (const CDaoException& error) {
      throw ToolError(ExitCode::kUsage, error.what());
    }
  }

 private:
  /// The catalogue first, which says best why a library cannot be opened.
  void Open(const LibraryOptions& options, CDaoDatabase& database) const {
    const Library library(options);
    const char* const name = search ? "search.vdb" : "facts.vdb";
    const std::string path =
        search || facts ? Joined(options.folder, name) : library.CataloguePath();
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
      throw ToolError(ExitCode::kNotFound, "there is no " + std::string(name) + " yet");
    try {
      OpenUnderPassword(database, path, options.password);
    } catch (const CDaoException& error) {
      throw ToolError(ExitCode::kCannotOpen, error.what());
    }
  }
};

}  // namespace

void AddSql(CommandGroup& tool) {
  tool.Add<Sql>("sql", "Read the library's databases with a SELECT of your own");
}

}  // namespace vdsto
