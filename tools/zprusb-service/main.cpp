#include "commands.h"
#include "control_folder.h"
#include "control_library.h"
#include "failure.h"
#include "library_file.h"
#include "program.h"

namespace tool {
namespace {

/// @throws Refusal that tells where the control library was not found.
int runCommand(const Arguments& arguments) {
    useControlLibrary(controlLibraryFile());
    try {
        return std::visit([&](const auto& command) { return run(arguments, command); }, arguments.command);
    } catch (const Refusal& refusal) {
        if (refusal.code() != ZPRUSB_NO_CONTROL_LIBRARY) throw;
        std::string searched;
        for (const std::string& folder : controlFolders())
            searched += (searched.empty() ? "" : " and ") + folder;
        throw Refusal(std::string(refusal.what()) + " It was looked for in " + searched + ".", refusal.code());
    }
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    return tool::runProgram("zprusb-service", argc, argv, [](std::vector<std::string> words) {
        const auto parsed = tool::parseArguments(std::move(words));
        const auto* arguments = std::get_if<tool::Arguments>(&parsed);
        return arguments == nullptr ? std::get<int>(parsed) : tool::runCommand(*arguments);
    });
}
