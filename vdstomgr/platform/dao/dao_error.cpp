#include "vdstomgr/platform/dao/dao_error.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "vdstomgr/platform/dao/dao_exception.h"

namespace vdstomgr::dao {
namespace {

struct Message {
  Error error;
  const char* text;  // '%' stands for the subject
};

constexpr std::array kMessages = {
    Message{Error::ZeroDivisor, "Division by zero."},
    Message{Error::InvalidPattern, "Invalid pattern string."},
    Message{Error::TableExists, "Table '%' already exists."},
    Message{Error::NoEditMode, "Update or CancelUpdate without AddNew or Edit."},
    Message{Error::NoCurrentRecord, "No current record."},
    Message{Error::DuplicateKey,
            "The changes you requested to the table were not successful because they would create "
            "duplicate values in the index, primary key, or relationship."},
    Message{Error::FileNotFound, "Could not find file '%'."},
    Message{Error::DiskFull, "Not enough space on disk."},
    Message{Error::ReadOnly, "Cannot update. Database or object is read-only."},
    Message{Error::InvalidPassword, "Not a valid password."},
    Message{Error::DiskOrNetwork, "Disk or network error."},
    Message{Error::InvalidPath,
            "'%' is not a valid path. Make sure that the path name is spelled "
            "correctly and that you are connected to the server on which the "
            "file resides."},
    Message{Error::FileDamaged,
            "Cannot open database '%'. It may not be a database that your "
            "application recognizes, or the file may be corrupt."},
    Message{Error::FileNotAccessible,
            "The database engine cannot open the file '%'. It is already "
            "opened exclusively by another user, or you need permission "
            "to view and change its data."},
    Message{Error::NullKey, "Index or primary key cannot contain a Null value."},
    Message{Error::TooFewParameters, "Too few parameters. Expected %."},
    Message{Error::DuplicateDestination, "Duplicate output destination '%'."},
    Message{Error::NotAnActionQuery, "Cannot execute a select query."},
    Message{Error::NotUpdatable, "Operation must use an updatable query."},
    Message{Error::SyntaxInExpression, "Syntax error in query expression '%'."},
    Message{Error::UnknownTable,
            "The database engine cannot find the input table or query '%'. "
            "Make sure it exists and that its name is spelled correctly."},
    Message{Error::AmbiguousColumn,
            "The specified field '%' could refer to more than one table "
            "listed in the FROM clause of your SQL statement."},
    Message{Error::UndefinedFunction, "Undefined function '%' in expression."},
    Message{Error::UnknownInsertField,
            "The INSERT INTO statement contains the following unknown field name: '%'."},
    Message{Error::InvalidStatement,
            "Invalid SQL statement; expected 'DELETE', 'INSERT', "
            "'PROCEDURE', 'SELECT', or 'UPDATE'."},
    Message{Error::SyntaxInFrom, "Syntax error in FROM clause near '%'."},
    Message{Error::SyntaxInInsert, "Syntax error in INSERT INTO statement near '%'."},
    Message{Error::TextAfterStatement, "Characters found after end of SQL statement."},
    Message{Error::SyntaxInUpdate, "Syntax error in UPDATE statement near '%'."},
    Message{Error::TextTooLong,
            "The field '%' is too small to accept the amount of data you "
            "attempted to add. Try inserting or pasting less data."},
    Message{Error::RecordDeleted, "Record is deleted."},
    Message{Error::UnknownOutputTable, "Could not find output table '%'."},
    Message{Error::DatabaseExists, "Database already exists."},
    Message{Error::Locked, "Could not update; currently locked."},
    Message{Error::InvalidOperation, "Invalid operation."},
    Message{Error::ItemNotFound, "Item '%' not found in this collection."},
    Message{Error::SyntaxInCreateTable, "Syntax error in CREATE TABLE statement near '%'."},
    Message{Error::SyntaxInCreateIndex, "Syntax error in CREATE INDEX statement near '%'."},
    Message{Error::SyntaxInFieldDefinition, "Syntax error in field definition near '%'."},
    Message{Error::RequiredFieldNull,
            "The field '%' cannot contain a Null value because the "
            "Required property for this field is set to True."},
    Message{Error::NotADatabase, "Unrecognized database format '%'."},
    Message{Error::ValueCountMismatch,
            "Number of query values and destination fields are not the same."},
    Message{Error::NumberOverflow, "Numeric field overflow in '%'."},
    Message{Error::SubqueryManyRows, "At most one record can be returned by this subquery."},
    Message{Error::IndexExists, "The table already has an index named '%'."},
    Message{Error::TableMissing, "Table '%' does not exist."},
    Message{Error::ObjectClosed, "Object is invalid or no longer set."},
    Message{Error::DataConversion, "Data type conversion error in '%'."},
};

}  // namespace

bool IsFileTrouble(int code) {
  switch (static_cast<Error>(code)) {
    case Error::DiskFull:
    case Error::ReadOnly:
    case Error::DiskOrNetwork:
    case Error::FileDamaged:
    case Error::Locked:
      return true;
    default:
      return false;
  }
}

void Throw(Error error, std::string_view subject) {
  const auto* found = std::find_if(kMessages.begin(), kMessages.end(),
                                   [&](const Message& m) { return m.error == error; });
  assert(found != kMessages.end());
  std::string text = found == kMessages.end() ? "Database error." : found->text;
  if (const auto place = text.find('%'); place != std::string::npos) {
    text.replace(place, 1, subject);
  }
  ThrowWithMessage(error, std::move(text));
}

void ThrowWithMessage(Error error, std::string message) {
  throw CDaoException(static_cast<int>(error), std::move(message));
}

}  // namespace vdstomgr::dao
