#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vdstomgr/platform/dao/jet/grams.h"

namespace vdstomgr::sqlite {

class Connection;

/// The index that finds the rows whose text in one column can match a LIKE: the engine's text index
/// over the grams of the texts, without the texts themselves. It is a part of the file that the
/// dialect does not see.
///
/// Triggers of the file note the rows that change, and what the index has of them, in a table
/// beside it; every search looks at these rows too. Before a commit they are put into the index
/// when they have become many: the engine takes many at once much faster than one by one.
class TextIndex {
 public:
  TextIndex(Connection& connection, std::string_view table, std::string_view column);

  /// Is it there, in its present form, and of the table's rows? Whether every row is in it is found
  /// out by their number and by samples. Damage of the index is answered with false.
  bool IsCurrent();
  /// Drops what there is of it and indexes all rows. To be run in one commit.
  void MakeAnew();
  /// Puts the changed rows into the index when they are many. To be run within a transaction, of
  /// which a failure leaves nothing.
  void TakeChanges();

  /// The name of the index; what belongs to it has a name that begins with it.
  static std::string NameOf(std::string_view table, std::string_view column);
  /// A query for the keys of the rows that can match; the match is its parameter.
  static std::string CandidatesSql(std::string_view table, std::string_view column);
  /// A query for the keys of the rows that have changed.
  static std::string ChangedSql(std::string_view table, std::string_view column);
  /// That of the candidates without the rows that have changed, in the order of their keys.
  static std::string MatchesSql(std::string_view table, std::string_view column);

 private:
  struct Object {
    std::string name;
    std::string sql;
  };

  std::vector<Object> Tables() const;
  std::vector<Object> Triggers() const;
  bool IsDeclared(const Object& object);
  bool CountsTheRows();
  bool HasSamples();
  bool HasManyChanges();
  void Run(const std::string& sql);

  Connection& connection_;
  std::string name_;
  std::string table_, column_, index_, changes_;  // quoted
};

/// The text that asks the engine's index for rows that have all the grams; with `head`, as far as
/// the grams tell, for those whose texts have it.
std::string MatchAll(const std::vector<jet::Gram>& grams,
                     std::optional<char32_t> head = std::nullopt);

}  // namespace vdstomgr::sqlite
