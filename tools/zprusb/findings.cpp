#include "findings.h"

#include "result_text.h"
#include "text.h"

namespace tool {

void Findings::good(const char* check, const std::string& found) {
    add(check, "ok    ", true, found, "");
}

void Findings::bad(const char* check, ExitStatus status, const std::string& found, const std::string& remedy) {
    add(check, "WRONG ", false, found, remedy);
    if (status_ == exitSuccess) status_ = status;
}

void Findings::bad(const char* check, uint16_t code, const std::string& found) {
    const ResultWords words = resultWords(code);
    bad(check, exitStatusOf(code), found + "code " + std::to_string(code) + ": " + words.meaning, words.remedy);
}

void Findings::seen(const char* check, ExitStatus status, const Sight& sight) {
    if (sight.remedy.empty()) {
        good(check, sight.found);
    } else {
        bad(check, status, sight.found, sight.remedy);
    }
}

void Findings::skipped(const char* check, const std::string& reason) {
    add(check, "?     ", nullptr, "not looked at: " + reason, "");
}

View Findings::view() const {
    return {{{"healthy", status_ == exitSuccess}, {"findings", data_}}, text_};
}

void Findings::add(const char* check, const char* mark, const Json& good, const std::string& found,
                   const std::string& remedy) {
    constexpr size_t column = 16;
    const std::string shown = harmless(found);
    data_.push_back({{"check", check}, {"good", good}, {"found", shown}, {"remedy", remedy}});
    text_ += mark + padded(check, column) + shown + "\n";
    if (!remedy.empty()) text_ += "      " + padded("", column) + harmless(remedy) + "\n";
}

}  // namespace tool
