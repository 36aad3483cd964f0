#pragma once

#include <string>
#include <string_view>

namespace vdstomgr::dao {

/// The dialect's error numbers that this library raises.
enum class Error : int {
  ZeroDivisor = 11,
  InvalidPattern = 93,
  TableExists = 3010,
  NoEditMode = 3020,
  NoCurrentRecord = 3021,
  DuplicateKey = 3022,
  FileNotFound = 3024,
  DiskFull = 3026,
  ReadOnly = 3027,
  InvalidPassword = 3031,
  DiskOrNetwork = 3043,
  InvalidPath = 3044,
  FileDamaged = 3049,
  FileNotAccessible = 3051,
  NullKey = 3058,
  TooFewParameters = 3061,
  DuplicateDestination = 3063,
  NotAnActionQuery = 3065,
  NotUpdatable = 3073,
  SyntaxInExpression = 3075,
  UnknownTable = 3078,
  AmbiguousColumn = 3079,
  UndefinedFunction = 3085,
  UnknownInsertField = 3127,
  InvalidStatement = 3129,
  SyntaxInFrom = 3131,
  SyntaxInInsert = 3134,
  TextAfterStatement = 3142,
  SyntaxInUpdate = 3144,
  TextTooLong = 3163,
  RecordDeleted = 3167,
  UnknownOutputTable = 3192,
  DatabaseExists = 3204,
  Locked = 3218,
  InvalidOperation = 3219,
  ItemNotFound = 3265,
  SyntaxInCreateTable = 3290,
  SyntaxInCreateIndex = 3291,
  SyntaxInFieldDefinition = 3292,
  RequiredFieldNull = 3314,
  NotADatabase = 3343,
  ValueCountMismatch = 3346,
  NumberOverflow = 3349,
  SubqueryManyRows = 3354,
  IndexExists = 3375,
  TableMissing = 3376,
  ObjectClosed = 3420,
  DataConversion = 3421,
};

/// Is the error trouble with the file itself (locked by somebody else, disk full, read-only,
/// damaged), as opposed to a statement that cannot be done?
bool IsFileTrouble(int code);

/// Throws CDaoException with the number's standing message. `subject` (UTF-8) fills the place that
/// the message has for a name, a path or a piece of the statement; messages without one ignore it.
[[noreturn]] void Throw(Error error, std::string_view subject = {});

/// The same with a message of the caller's own.
[[noreturn]] void ThrowWithMessage(Error error, std::string message);

}  // namespace vdstomgr::dao
