#include "commands.h"
#include "program.h"

int main(int argc, char** argv) {
    return tool::runProgram("zprusb-service", argc, argv, [](std::vector<std::string> words) {
        const auto parsed = tool::parseArguments(std::move(words));
        const auto* arguments = std::get_if<tool::Arguments>(&parsed);
        if (arguments == nullptr) return std::get<int>(parsed);
        return std::visit([&](const auto& command) { return run(*arguments, command); }, arguments->command);
    });
}
