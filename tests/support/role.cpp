#include "support/role.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

constinit const test::Role* firstRole = nullptr;

}  // namespace

test::Role::Role(const char* ownName, Play ownPlay)
    : name(ownName), play(ownPlay), next(std::exchange(firstRole, this)) {}

int main(int argc, char** argv) {
    for (const test::Role* role = firstRole; argc == 3 && role != nullptr; role = role->next)
        if (argv[1] == std::string(role->name)) return role->play(argv[2]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
