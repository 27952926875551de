/// A folder with a simulated printer in which a test runs the command-line tool.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bytes.h"
#include "picture.h"
#include "support/pictures.h"
#include "support/system.h"

namespace test {

using Json = nlohmann::json;
using tool::Bytes;
using tool::Picture;

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

testing::AssertionResult contains(const std::string& text, const std::string& part);

class Workshop : public testing::Test {
protected:
    /// Without simulate(), there is the simulator's default: one ready printer.
    Workshop();
    ~Workshop() override;

    /// Sets up the simulated printers by the text of a configuration file.
    void simulate(const std::string& configuration);

    /// @param line a program and its arguments; those with blanks in them, and empty ones, stand in quotation
    ///             marks. It runs in the folder.
    Outcome run(const std::string& line);

    /// Starts a program that the test ends itself.
    ChildProcess start(const std::string& line);

    /// Runs a command with --json that has to succeed.
    Json json(const std::string& line);

    /// Makes the file's folder as well.
    void write(const std::string& name, const Bytes& content);
    Bytes read(const std::string& name);

    /// The page with that number, complete, as the printer got it.
    Picture printedPage(int number);
    Json printedSheet(int number);

    std::filesystem::path folder() const { return folder_; }

    /// Where the programs are that it runs.
    std::filesystem::path programs = ownProgram().parent_path();

private:
    std::filesystem::path folder_;
};

Bytes png(const Picture& picture, unsigned channels = 3, const Bytes& chunks = {});
Bytes jpeg(const Picture& picture, unsigned channels = 3, const Bytes& segments = {});

/// A picture of four rectangles. Each letter is a colour, Red, Green, Blue or White: at the top left, top
/// right, bottom left, bottom right.
Picture quarters(uint32_t width, uint32_t height, const std::string& colours);

/// The letters of the colours in the middle of the quarters; a question mark for any other colour.
std::string coloursOf(const Picture& picture);

/// The letter of the colour at a place, which is given in percent of the width and the height.
char colourAt(const Picture& picture, unsigned across, unsigned down);

}  // namespace test
