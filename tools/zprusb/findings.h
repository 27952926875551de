#pragma once

#include <string>

#include "failure.h"
#include "surroundings.h"
#include "view.h"

namespace tool {

/// What the doctor has found, in the order in which it was looked at. The first trouble decides about the exit
/// status.
class Findings {
public:
    void good(const char* check, const std::string& found);
    void bad(const char* check, ExitStatus status, const std::string& found, const std::string& remedy);

    /// A result code, in its words.
    /// @param found what stands before them.
    void bad(const char* check, uint16_t code, const std::string& found);

    /// @param status of what is not as it should be.
    void seen(const char* check, ExitStatus status, const Sight& sight);

    /// What could not be looked at because of another trouble.
    void skipped(const char* check, const std::string& reason);

    int status() const { return status_; }
    View view() const;

private:
    void add(const char* check, const char* mark, const Json& good, const std::string& found,
             const std::string& remedy);

    Json data_ = Json::array();
    std::string text_;
    ExitStatus status_ = exitSuccess;
};

}  // namespace tool
