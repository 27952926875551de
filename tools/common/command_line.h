/// What the tools' command lines have in common. It brings in all of the argument library, which takes long to
/// compile, so each tool includes it in one file only.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common_arguments.h"

namespace tool {

constexpr unsigned longestWaitSeconds = 1'000'000;

/// The values that an option or argument takes, and the words in which a wrong one is refused.
CLI::Validator inRange(int64_t smallest, int64_t largest);
CLI::Validator oneOf(std::vector<std::string> words);

/// Adds what is there whatever the command.
void defineCommon(CLI::App& app, CommonArguments& arguments);

/// Understands the command line. For --help and --version it prints what there is to say.
/// @return the exit status when there is nothing more to do.
/// @throws WrongUsage
std::optional<int> parse(CLI::App& app, std::vector<std::string> words);

/// A command of the command line, and where its arguments gather.
template <class Values>
struct Command {
    CLI::App* app;
    std::shared_ptr<Values> values;

    Values* operator->() const { return values.get(); }
};

/// Adds a command. When it is the one that is called, its values become `arguments.command`.
template <class Values, class Arguments>
Command<Values> addCommand(CLI::App& app, const char* name, const char* description, Arguments& arguments) {
    const auto values = std::make_shared<Values>();
    CLI::App* command = app.add_subcommand(name, description);
    command->callback([&arguments, values] { arguments.command = *values; });
    return {command, values};
}

}  // namespace tool
