#pragma once
#include <concepts>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// What commands answer. One description serves both readers: programs get JSON, people get text.
namespace vdsto {

using Json = nlohmann::ordered_json;

struct Answer {
  Json json;
  std::string text;  ///< whole lines
};

/// One value: as programs read it, and as people do.
struct Fact {
  /// People see a number as it is, a text made printable, and "-" for nothing.
  template <std::convertible_to<Json> Value>
  Fact(Value content) : Fact(Json(std::move(content)), std::string()) {}
  /// People see `text_for_people` instead.
  Fact(Json content, std::string text_for_people);

  Json json;
  std::string text;
  bool is_quantity = false;  ///< stands on the right of its column
};

/// A number of bytes; people see "1.4 MB".
Fact SizeFact(uint64_t bytes);
/// A time in seconds since 1970; nothing for 0.
Fact TimeFact(int32_t time);

/// An answer of named facts: an object for programs, a line each for people, who see the blanks
/// where a key has underscores.
class Facts {
 public:
  explicit Facts(size_t label_columns = 10) : label_columns_(label_columns) {}

  /// An object's members become facts of their own for people.
  Facts& Add(const std::string& key, const Fact& fact);
  Facts& ForPrograms(const std::string& key, Json value);
  /// A labelled line, or one that is a sentence.
  Facts& ForPeople(const std::string& label, const std::string& text);
  Facts& ForPeople(const std::string& sentence);

  operator const Answer&() const { return answer_; }

 private:
  void AddLine(const std::string& key, const Fact& fact);

  size_t label_columns_;
  Answer answer_{Json::object(), {}};
};

/// Rows of the same facts: a list of objects for programs, columns for people. The last column is
/// not filled up.
class Table {
 public:
  explicit Table(std::vector<std::string> keys) : keys_(std::move(keys)) {}

  void Add(std::vector<Fact> row) { rows_.push_back(std::move(row)); }
  Json AsJson() const;
  std::string Text() const;
  operator Answer() const { return {AsJson(), Text()}; }

 private:
  std::vector<std::string> keys_;
  std::vector<std::vector<Fact>> rows_;
};

/// JSON text in UTF-8; bytes that are none are replaced.
std::string JsonText(const Json& json);
/// The same on one line.
std::string JsonLine(const Json& json);

}  // namespace vdsto
