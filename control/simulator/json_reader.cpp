#include "json_reader.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "configuration.h"

namespace simulator {

namespace {

/// Refuses an object that has a key twice, where the parser would keep the last one.
class KeyCheck {
public:
    bool operator()(int, Json::parse_event_t event, const Json& parsed) {
        if (event == Json::parse_event_t::object_start) open_.emplace_back();
        if (event == Json::parse_event_t::object_end) open_.pop_back();
        if (event == Json::parse_event_t::key && !open_.back().insert(parsed.get<std::string>()).second)
            throw ConfigurationError(parsed.get<std::string>() + " stands twice in one object");
        return true;
    }

private:
    std::vector<std::set<std::string>> open_;  // the keys of each object that is being read
};

}  // namespace

Json parseJson(const std::string& text) {
    try {
        // The parser copies what it calls.
        return Json::parse(text,
                           [check = std::make_shared<KeyCheck>()](auto... step) { return (*check)(step...); });
    } catch (const Json::out_of_range&) {
        throw ConfigurationError("a number in it is too large");
    } catch (const Json::parse_error& error) {
        const auto end = text.begin() + static_cast<ptrdiff_t>(std::min(error.byte, text.size()));
        const auto line = 1 + std::count(text.begin(), end, '\n');
        throw ConfigurationError("line " + std::to_string(line) + " is not JSON");
    }
}

JsonReader::JsonReader(const Json& object, std::string place) : object_(object), place_(std::move(place)) {
    if (object.is_object()) return;
    throw ConfigurationError((place_.empty() ? "the text" : place_) + " must be an object");
}

uint32_t JsonReader::number(const char* key, uint32_t least, uint32_t most, std::optional<uint32_t> otherwise) {
    const Json* value = find(key, !otherwise);
    if (value == nullptr) return *otherwise;
    const bool fits =
        value->is_number_unsigned() && value->get<uint64_t>() >= least && value->get<uint64_t>() <= most;
    if (!fits) {
        refuse(key, "must be a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return value->get<uint32_t>();
}

std::chrono::milliseconds JsonReader::seconds(const char* key,
                                              std::optional<std::chrono::milliseconds> otherwise) {
    constexpr double longest = 86400;
    const Json* value = find(key, !otherwise);
    if (value == nullptr) return *otherwise;
    if (!value->is_number() || value->get<double>() < 0 || value->get<double>() > longest) {
        refuse(key, "must be a number of seconds from 0 to 86400");
    }
    return std::chrono::milliseconds(static_cast<int64_t>(value->get<double>() * 1000));
}

std::string JsonReader::text(const char* key, std::optional<std::string> otherwise) {
    const Json* value = find(key, !otherwise);
    if (value == nullptr) return *otherwise;
    if (!value->is_string()) refuse(key, "must be a text");
    return value->get<std::string>();
}

bool JsonReader::flag(const char* key, bool otherwise) {
    const Json* value = find(key, false);
    if (value == nullptr) return otherwise;
    if (!value->is_boolean()) refuse(key, "must be true or false");
    return value->get<bool>();
}

const Json* JsonReader::list(const char* key, size_t most) {
    const Json* value = find(key, false);
    if (value != nullptr && (!value->is_array() || value->size() > most)) {
        refuse(key, "must be a list of at most " + std::to_string(most));
    }
    return value;
}

std::string JsonReader::placeOf(const char* key) const {
    return place_.empty() ? key : place_ + "." + key;
}

std::string JsonReader::placeOf(const char* key, size_t element) const {
    return placeOf(key) + "[" + std::to_string(element) + "]";
}

void JsonReader::refuse(const char* key, const std::string& rule) const {
    throw ConfigurationError(placeOf(key) + " " + rule);
}

void JsonReader::finish() const {
    for (const auto& item : object_.items()) {
        if (!known_.contains(item.key())) refuse(item.key().c_str(), "is not a known key here");
    }
}

const Json* JsonReader::find(const char* key, bool required) {
    known_.insert(key);
    const auto found = object_.find(key);
    if (found != object_.end()) return &*found;
    if (required) refuse(key, "is missing");
    return nullptr;
}

}  // namespace simulator
