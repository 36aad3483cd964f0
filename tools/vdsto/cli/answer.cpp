#include "tools/vdsto/cli/answer.h"

#include <algorithm>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

std::string TextOf(const Json& value) {
  if (value.is_null()) return "-";
  return value.is_string() ? Printable(value.get<std::string>()) : value.dump();
}

std::string LabelOf(std::string key) {
  std::replace(key.begin(), key.end(), '_', ' ');
  return key;
}

}  // namespace

Fact::Fact(Json content, std::string text_for_people)
    : json(std::move(content)),
      text(text_for_people.empty() ? TextOf(json) : std::move(text_for_people)),
      is_quantity(json.is_number()) {}

Fact SizeFact(uint64_t bytes) {
  return {bytes, HumanSize(bytes)};
}

Fact TimeFact(int32_t time) {
  const std::string text = TimeText(time);
  return text.empty() ? Fact(Json()) : Fact(text);
}

Facts& Facts::Add(const std::string& key, const Fact& fact) {
  AddLine(key, fact);
  return ForPrograms(key, fact.json);
}

Facts& Facts::ForPrograms(const std::string& key, Json value) {
  answer_.json[key] = std::move(value);
  return *this;
}

Facts& Facts::ForPeople(const std::string& label, const std::string& text) {
  return ForPeople(Padded(label, label_columns_) + "  " + text);
}

Facts& Facts::ForPeople(const std::string& sentence) {
  answer_.text += sentence + '\n';
  return *this;
}

void Facts::AddLine(const std::string& key, const Fact& fact) {
  if (!fact.json.is_object()) {
    ForPeople(LabelOf(key), fact.text);
    return;
  }
  for (const auto& [member, value] : fact.json.items()) AddLine((key + ' ').append(member), value);
}

Json Table::AsJson() const {
  Json list = Json::array();
  for (const auto& row : rows_) {
    Json object = Json::object();
    for (size_t i = 0; i < row.size(); ++i) object[keys_[i]] = row[i].json;
    list.push_back(std::move(object));
  }
  return list;
}

std::string Table::Text() const {
  std::vector<size_t> widths(keys_.size());
  for (const auto& row : rows_) {
    for (size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], DisplayWidth(row[i].text));
  }
  std::string text;
  for (const auto& row : rows_) {
    for (size_t i = 0; i + 1 < row.size(); ++i)
      text += Padded(row[i].text, widths[i], row[i].is_quantity) + "  ";
    text += row.back().text + '\n';
  }
  return text;
}

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string JsonLine(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace vdsto
