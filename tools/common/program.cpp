#include "program.h"

#include <zprusb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <nlohmann/json.hpp>

#include "failure.h"
#include "result_text.h"
#include "steps.h"
#include "system.h"
#include "text.h"

namespace tool {
namespace {

const char* programName = "";
bool jsonIsWanted = false;

const char* nameOf(ExitStatus status) {
    switch (status) {
        case exitWrongUsage:
            return "WRONG_USAGE";
        case exitUnusableFile:
            return "UNUSABLE_FILE";
        default:
            return "REFUSED";
    }
}

int statusOf(const std::function<int(std::vector<std::string>)>& program,
             const std::vector<std::string>& words) {
    try {
        return program(words);
    } catch (const Failure& failure) {
        return tellFailure(failure);
    } catch (const std::bad_alloc&) {
        return tellFailure(Refusal(resultSentence(ZPRUSB_OUT_OF_MEMORY), ZPRUSB_OUT_OF_MEMORY));
    } catch (const std::exception& error) {
        return tellFailure(Refusal(error.what()));
    }
}

/// A full disk or a closed pipe may show only now.
bool outputArrived() {
    std::cout.flush();
    return std::cout && std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

}  // namespace

void complain(const std::string& sentence) {
    std::fprintf(stderr, "%s: %s\n", programName, harmless(sentence).c_str());
}

nlohmann::ordered_json errorOf(const Failure& failure) {
    nlohmann::ordered_json error = {{"code", nullptr},
                                    {"name", nameOf(failure.status())},
                                    {"meaning", failure.what()},
                                    {"cause", ""},
                                    {"remedy", ""}};
    if (failure.code() != ZPRUSB_SUCCESS) {
        const ResultWords words = resultWords(failure.code());
        error = {{"code", failure.code()},
                 {"name", words.name},
                 {"meaning", words.meaning},
                 {"cause", words.cause},
                 {"remedy", words.remedy}};
    }
    error["message"] = failure.what();
    error["exitStatus"] = static_cast<int>(failure.status());
    return {{"error", error}};
}

int tellFailure(const Failure& failure) {
    complain(failure.what());
    using Json = nlohmann::ordered_json;
    const std::string object = errorOf(failure).dump(2, ' ', false, Json::error_handler_t::replace);
    if (jsonIsWanted) std::printf("%s\n", object.c_str());
    return failure.status();
}

void leaveProgram(const Failure& failure) {
    endWaitingLine();
    tellFailure(failure);
    std::fflush(nullptr);
    std::_Exit(failure.status());
}

int runProgram(const char* name, int argc, char** argv,
               const std::function<int(std::vector<std::string> words)>& program) {
    programName = name;
    prepareOutput();
    const std::vector<std::string> words = argumentsInUtf8(argc, argv);
    jsonIsWanted = std::ranges::find(words, "--json") != words.end();
    const int status = statusOf(program, words);
    if (outputArrived()) return status;
    complain("The output can't be written.");
    return status == exitSuccess ? int{exitRefused} : status;
}

}  // namespace tool
