#include "result_text.h"

#include <zprusb_text.h>

#include <charconv>
#include <map>
#include <nlohmann/json.hpp>

#include "file.h"
#include "text.h"

namespace tool {
namespace {

using Json = nlohmann::json;

struct Replacement {
    std::string meaning;
    std::string remedy;
};

std::map<uint16_t, Replacement> replacements;

std::string takeText(const std::string& path, const std::string& code, Json& words, const char* key) {
    const Json text = words.contains(key) ? words[key] : Json("");
    words.erase(key);
    if (!text.is_string()) refuseFile(path, "has no text as '" + std::string(key) + "' of " + code + ".");
    return harmless(text.get<std::string>());
}

Replacement replacementFrom(const std::string& path, const std::string& code, Json words) {
    if (!words.is_object()) refuseFile(path, "has no object with 'meaning' and 'remedy' for " + code + ".");
    const Replacement replacement = {takeText(path, code, words, "meaning"),
                                     takeText(path, code, words, "remedy")};
    if (!words.empty())
        refuseFile(path, "knows '" + harmless(words.begin().key()) + "' of " + code +
                             "; a code has 'meaning' and 'remedy'.");
    return replacement;
}

uint16_t codeFrom(const std::string& path, const std::string& text) {
    uint16_t code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (error != std::errc{} || end != text.data() + text.size())
        refuseFile(path, "has the key '" + harmless(text) + "', which is no result code.");
    return code;
}

}  // namespace

void replaceWords(const std::string& path) {
    const Bytes content = readFile(path, 1 << 20);
    const Json all = Json::parse(content, nullptr, false);
    if (!all.is_object()) refuseFile(path, "is no JSON object with result codes as keys.");
    for (const auto& [code, words] : all.items())
        replacements[codeFrom(path, code)] = replacementFrom(path, code, words);
}

ResultWords resultWords(uint16_t code) {
    const zprusb_words known = zprusb_resultWords(code);
    ResultWords words = {known.name, known.meaning, known.cause, known.remedy};
    const auto found = replacements.find(code);
    if (found == replacements.end()) return words;
    if (!found->second.meaning.empty()) words.meaning = found->second.meaning;
    if (!found->second.remedy.empty()) words.remedy = found->second.remedy;
    return words;
}

std::string resultSentence(uint16_t code) {
    const ResultWords words = resultWords(code);
    return "code " + std::to_string(code) + ": " + words.meaning + " " + words.remedy;
}

}  // namespace tool
