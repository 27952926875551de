#include <cstdio>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "failure.h"
#include "local_socket.h"
#include "program.h"
#include "text.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

Json ask(uint32_t process, const Json& request) {
    const auto answer = simulator::askProcess(process, request.dump());
    Json parsed = answer ? Json::parse(*answer, nullptr, false) : Json();
    if (!parsed.is_object())
        throw Refusal("Process " + std::to_string(process) + " simulates no printer, or does not answer.");
    if (parsed.contains("error")) throw WrongUsage(parsed["error"].get<std::string>());
    return parsed;
}

/// The process that is meant, of those that there are.
uint32_t chosenProcess(const std::vector<uint32_t>& processes) {
    if (processes.size() == 1) return processes.front();
    std::string numbers;
    for (const uint32_t process : processes) numbers += " " + std::to_string(process);
    throw WrongUsage("Several processes simulate printers; choose one of these with --process:" + numbers +
                     ".");
}

/// Numbers, lists and true or false are what they are in JSON; everything else is a text.
Json requestOf(const char* deed, const std::vector<std::string>& values) {
    Json request{{"do", deed}};
    for (const std::string& word : values) {
        const size_t sign = word.find('=');
        if (sign == std::string::npos) throw WrongUsage("'" + word + "' is not of the form key=value.");
        Json value = Json::parse(word.substr(sign + 1), nullptr, false);
        request[word.substr(0, sign)] = value.is_discarded() ? Json(word.substr(sign + 1)) : value;
    }
    return request;
}

Json requestOf(const SetArguments& arguments) {
    return requestOf("set", arguments.values);
}

Json requestOf(const FaultArguments& arguments) {
    if (arguments.clear) return requestOf("clear faults", {});
    if (arguments.values.empty()) throw WrongUsage("Say which fault, or --clear.");
    return requestOf("fault", arguments.values);
}

std::string textOf(const Json& printer) {
    return "  " + printer["serial"].get<std::string>() + "  " +
           (printer["plugged"].get<bool>() ? printer["condition"].get<std::string>() : "unplugged") + ", " +
           counted(printer["printedPages"].get<size_t>(), "page", "pages") + " printed\n";
}

void print(const std::string& text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        throw Refusal("The output can't be written.");
}

template <class Command>
int run(const Arguments& arguments, const std::vector<uint32_t>& processes, const Command& command) {
    Json request = requestOf(command);
    if (arguments.printer) request["printer"] = *arguments.printer;
    const Json answer = ask(chosenProcess(processes), request);
    if (arguments.json) print(answer.dump(2) + "\n");
    return exitSuccess;
}

int run(const Arguments& arguments, const std::vector<uint32_t>& processes, const ShowArguments&) {
    Json all = Json::array();
    std::string text;
    for (const uint32_t process : processes) {
        Json printers = ask(process, {{"do", "show"}})["printers"];
        text += "process " + std::to_string(process) + "\n";
        for (size_t i = 0; i < printers.size(); ++i) {
            if (i == arguments.printer.value_or(i))
                text += "  printer " + std::to_string(i) + textOf(printers[i]);
        }
        all.push_back({{"process", process}, {"printers", std::move(printers)}});
    }
    print(arguments.json ? Json{{"processes", all}}.dump(2) + "\n" : text);
    return exitSuccess;
}

int runCommand(const Arguments& arguments) {
    const auto processes =
        arguments.process ? std::vector{*arguments.process} : simulator::simulatingProcesses();
    if (processes.empty())
        throw Refusal("No running program of yours has opened the library with the simulator.", ZPRUSB_SUCCESS,
                      exitNoPrinter);
    return std::visit([&](const auto& command) { return run(arguments, processes, command); },
                      arguments.command);
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    return tool::runProgram("zprusb-simulator", argc, argv, [](std::vector<std::string> words) {
        const auto parsed = tool::parseArguments(std::move(words));
        const auto* arguments = std::get_if<tool::Arguments>(&parsed);
        return arguments == nullptr ? std::get<int>(parsed) : tool::runCommand(*arguments);
    });
}
