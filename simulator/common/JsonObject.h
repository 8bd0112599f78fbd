// SPDX-License-Identifier: Apache-2.0
// JSON to be printed. The JSON library's header is slow to compile; only JsonObject.cpp needs it.
#ifndef MURLINK_SIMULATOR_COMMON_JSON_OBJECT_H
#define MURLINK_SIMULATOR_COMMON_JSON_OBJECT_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

class JsonObject;

class JsonValue {
 public:
  JsonValue(bool value);
  JsonValue(int value);
  JsonValue(std::int64_t value);
  JsonValue(std::size_t value);
  JsonValue(double value);
  // Bytes that are not UTF-8 are replaced.
  JsonValue(std::string_view value);
  JsonValue(const std::string& value) : JsonValue(std::string_view(value)) {}
  JsonValue(const char* value) : JsonValue(std::string_view(value)) {}
  JsonValue(const JsonObject& value);
  JsonValue(const std::vector<JsonObject>& values);

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// Keeps its fields in the order in which they were added.
class JsonObject {
 public:
  struct Field {
    std::string name;
    JsonValue value;
  };

  JsonObject() = default;
  JsonObject(std::initializer_list<Field> fields) : fields_(fields) {}

  // Adds a field, or replaces the value of the one with that name.
  void set(std::string_view name, JsonValue value);
  // Sets every field of `other`.
  void update(const JsonObject& other);
  // Null when there is no field of that name.
  const JsonValue* find(std::string_view name) const;

  // In one line.
  std::string text() const;

 private:
  std::vector<Field> fields_;
};

}  // namespace simulator

#endif
