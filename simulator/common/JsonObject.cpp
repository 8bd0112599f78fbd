// SPDX-License-Identifier: Apache-2.0
#include "common/JsonObject.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace simulator {
namespace {

std::string dump(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// Puts commas between the items.
template <typename Items, typename TextOf>
std::string list(const Items& items, TextOf text_of) {
  std::string text;
  for (const auto& item : items) {
    text += (text.empty() ? "" : ",") + text_of(item);
  }
  return text;
}

}  // namespace

JsonValue::JsonValue(bool value) : text_(dump(value)) {}
JsonValue::JsonValue(int value) : text_(dump(value)) {}
JsonValue::JsonValue(std::int64_t value) : text_(dump(value)) {}
JsonValue::JsonValue(std::size_t value) : text_(dump(value)) {}
JsonValue::JsonValue(double value) : text_(dump(value)) {}
JsonValue::JsonValue(std::string_view value) : text_(dump(value)) {}
JsonValue::JsonValue(const JsonObject& value) : text_(value.text()) {}
JsonValue::JsonValue(const std::vector<JsonObject>& values)
    : text_("[" + list(values, [](const JsonObject& value) { return value.text(); }) + "]") {}

void JsonObject::set(std::string_view name, JsonValue value) {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [name](const Field& field) { return field.name == name; });
  if (found == fields_.end()) {
    fields_.push_back({std::string(name), std::move(value)});
  } else {
    found->value = std::move(value);
  }
}

void JsonObject::update(const JsonObject& other) {
  for (const Field& field : other.fields_) {
    set(field.name, field.value);
  }
}

const JsonValue* JsonObject::find(std::string_view name) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [name](const Field& field) { return field.name == name; });
  return found == fields_.end() ? nullptr : &found->value;
}

std::string JsonObject::text() const {
  return "{" +
         list(fields_,
              [](const Field& field) { return dump(field.name) + ":" + field.value.text(); }) +
         "}";
}

}  // namespace simulator
