#pragma once

#include <string>

namespace test {

/// What the test program does when a test starts it again as another process, with the role's name and an
/// argument.
struct Role {
    using Play = int (*)(const std::string& argument);
    Role(const char* ownName, Play ownPlay);

    const char* const name;
    const Play play;
    const Role* const next;
};

}  // namespace test
