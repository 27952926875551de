// The program starts itself again as the other processes of a campaign; its first argument is then a role.
#include <gtest/gtest.h>

#include "roles.h"

int main(int argc, char** argv) {
    for (const auto& [name, play] : roles) {
        if (argc == 3 && argv[1] == std::string(name)) return play(argv[2]);
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
