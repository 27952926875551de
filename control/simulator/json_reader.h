/// Strict reading of JSON objects: every key is of its type and within its range, and none is unknown.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

namespace simulator {

using Json = nlohmann::json;

/// @throws ConfigurationError when the text is no JSON, naming the line, and when a key stands twice in an
/// object.
Json parseJson(const std::string& text);

/// Reads the keys of one object. A key without a default has to be there. All functions throw a
/// ConfigurationError that names the place.
class JsonReader {
public:
    /// @param place where the object stands, as in "printers[0]"; empty for the whole text.
    JsonReader(const Json& object, std::string place);

    bool has(const char* key) const { return object_.contains(key); }
    uint32_t number(const char* key, uint32_t least, uint32_t most, std::optional<uint32_t> otherwise = {});
    std::chrono::milliseconds seconds(const char* key, std::optional<std::chrono::milliseconds> otherwise = {});
    std::string text(const char* key, std::optional<std::string> otherwise = {});
    bool flag(const char* key, bool otherwise);

    /// @return the list, or null when the key is missing.
    const Json* list(const char* key, size_t most);

    /// The place of a key, or of one element of its list, for an error or another reader.
    std::string placeOf(const char* key) const;
    std::string placeOf(const char* key, size_t element) const;

    [[noreturn]] void refuse(const char* key, const std::string& rule) const;

    /// Refuses keys that nobody has asked for.
    void finish() const;

private:
    const Json* find(const char* key, bool required);

    const Json& object_;
    std::string place_;
    std::set<std::string> known_;
};

}  // namespace simulator
