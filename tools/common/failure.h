/// The two ways in which a command ends without success, as exceptions whose text is the sentence to print.
#pragma once

#include <stdexcept>

namespace tool {

enum ExitStatus { exitSuccess = 0, exitRefused = 1, exitWrongUsage = 2 };

/// The printer or the library said no.
class Refusal : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The caller asked for something that can't be: a wrong argument, or a file that isn't a picture.
class WrongUsage : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace tool
