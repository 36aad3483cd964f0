#pragma once

#include <cstdint>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/utility/bin_data.h"

namespace vdstomgr {
class CsvReader;
}

/// Small helpers. Texts are in the process's code page; a null text is an empty one. Safe to call
/// from any thread.
class VDSTO_API CUtilityLib {
 public:
  /// Seconds since 1970-01-01 UTC of a local time "YYYY-MM-DD hh:mm:ss". -1 for anything else:
  /// other forms, dates the calendar does not have, and times that 32 bits do not hold. A time that
  /// the clocks show twice is the earlier one; one that they skip counts on from before the gap.
  static std::int32_t GetTime(const char* text);
  /// The local time "YYYY-MM-DD hh:mm:ss". -1, which stands for an unknown time, is taken as 0.
  static CString GetTime(std::int32_t seconds);
  /// The form in which the catalogue's date columns keep a time: as GetTime.
  static CString ConvertTimeForDB(std::int32_t seconds);

  /// The number at the start of a decimal text, blanks before it skipped; 0 when there is none or
  /// it is negative, the largest number when it does not fit.
  static std::uint64_t StrToINT64(const char* text);
  /// The number in decimal.
  static CString GetString(std::uint64_t number);

  /// Replaces `parts` by what stands between the separators and answers how many that is.
  /// Neighbouring separators have an empty part between them; an empty text has no part.
  static int SplitStringByToken(const char* text, char separator, CStringArray& parts);
  /// The longest start of at most `bytes` bytes that does not split a character.
  static CString GetKorLeftString(const char* text, int bytes);

  /// What follows the last point of a file name or path, without the point; empty when there is
  /// none.
  static CString GetFileExt(const char* name);
  /// The next name for a copy: "a.jpg", "a (1).jpg", "a (2).jpg" and so on; never the name itself.
  static CString GetCloneFileName(const char* name);

  /// Reads a whole file. False, and `data` unchanged, when it cannot be read or holds 4 GiB or
  /// more. `flag` is accepted and not used.
  static bool LoadFileData(const char* path, CBinData& data, int flag = 0);

  /// Writes the text as UTF-16 with a closing 0 into `wide`, which has room for `capacity` units.
  /// What does not fit is cut off, never inside a character. Answers the units written without the
  /// 0; with no room at all nothing is written.
  static int MbcsFileToUnicodeFile(const char* text, char16_t* wide, int capacity);

  /// The operating system's name and its release.
  static void GetOSVersion(CString& name, CString& release);

  /// Opens a text of lines and fields. Null when the file cannot be read. To be closed by CloseCSV.
  static vdstomgr::CsvReader* OpenCSV(const char* path, const char* separator,
                                      const char* line_end);
  /// Replaces `fields` by those of the next line, double quotes around a whole field removed. A
  /// separator always separates, also between quotes, and a quote inside a field stays: fields are
  /// written without escapes. Answers the number of lines read so far, or -1 at the end.
  static int ReadCSV(vdstomgr::CsvReader* reader, CStringArray& fields);
  /// A null reader is accepted.
  static void CloseCSV(vdstomgr::CsvReader* reader);
};
