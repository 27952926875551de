#include <zprusb.h>

#include <cstdio>
#include <exception>
#include <new>

#include "commands.h"
#include "failure.h"
#include "result_text.h"
#include "system.h"

namespace tool {

void complain(const std::string& sentence) {
    std::fprintf(stderr, "zprusb: %s\n", sentence.c_str());
}

namespace {

int runCommand(const Arguments& arguments) {
    try {
        return std::visit([&](const auto& command) { return run(arguments, command); }, arguments.command);
    } catch (const WrongUsage& error) {
        complain(error.what());
        return exitWrongUsage;
    } catch (const std::bad_alloc&) {
        complain(resultSentence(ZPRUSB_OUT_OF_MEMORY));
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return exitRefused;
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    tool::useUtf8Console();
    const auto parsed = tool::parseArguments(tool::argumentsInUtf8(argc, argv));
    const auto* arguments = std::get_if<tool::Arguments>(&parsed);
    return arguments ? tool::runCommand(*arguments) : std::get<int>(parsed);
}
