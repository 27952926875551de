#include "program.h"

#include <zprusb.h>

#include <cstdio>
#include <exception>
#include <new>

#include "failure.h"
#include "result_text.h"
#include "system.h"

namespace tool {
namespace {

const char* programName = "";

}  // namespace

void complain(const std::string& sentence) {
    std::fprintf(stderr, "%s: %s\n", programName, sentence.c_str());
}

int runProgram(const char* name, int argc, char** argv,
               const std::function<int(std::vector<std::string> words)>& program) {
    programName = name;
    useUtf8Console();
    try {
        return program(argumentsInUtf8(argc, argv));
    } catch (const Failure& failure) {
        complain(failure.what());
        return failure.status();
    } catch (const std::bad_alloc&) {
        complain(resultSentence(ZPRUSB_OUT_OF_MEMORY));
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return exitRefused;
}

}  // namespace tool
