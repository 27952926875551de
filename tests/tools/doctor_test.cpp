// Installations and printers with one defect each, which the doctor has to tell apart.
#include <algorithm>
#include <fstream>
#include <functional>
#include <random>
#include <set>

#include "workshop.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class Installation : public Workshop {
protected:
    Installation() {
        const fs::path built = programs;
        programs = folder() / "bin";
        control = programs / LIBRARIES / libraryFile("RQX5820UsbCtrl");
        library = programs / LIBRARIES / libraryFile("RQX5820usb");
        fs::create_directories(programs);
        fs::create_directories((programs / LIBRARIES).lexically_normal());
        for (const char* name : {"zprusb", "zprusb-service"})
            copy(built / programFile(name), programs / programFile(name));
        for (const fs::path& file : {control, library}) copy(built / LIBRARIES / file.filename(), file);
        incomplete = built / INCOMPLETE_CONTROL_LIBRARY;
    }

public:
    static void copy(const fs::path& from, const fs::path& to) {
        fs::remove(to);
        fs::copy_file(from, to);
    }

    void alterControl(const std::function<void(std::string& content)>& alter) const {
        std::ifstream input(control, std::ios::binary);
        std::string content{std::istreambuf_iterator<char>(input), {}};
        input.close();
        alter(content);
        std::ofstream(control, std::ios::binary) << content;
    }

    using Workshop::simulate;
    fs::path control, library, incomplete;
};

void replace(std::string& content, const std::string& word, const std::string& other) {
    for (size_t at = 0; (at = content.find(word, at)) != std::string::npos;)
        content.replace(at, word.size(), other);
}

/// The number that names the machine, in both systems' files.
void nameOtherMachine(std::string& content) {
    const bool isPortableExecutable = content.starts_with("MZ");
    const size_t at = isPortableExecutable ? content.find(std::string("PE\0\0", 4)) + 4 : 18;
    content.replace(at, 2, isPortableExecutable ? "\x4C\x01" : "\x28\0", 2);
}

struct Defect {
    const char* check;
    std::string found;
    int status;
    std::function<void(Installation& doctor)> plant;
};

Defect ofPrinter(const char* check, const std::string& found, int status, const std::string& configuration) {
    return {check, found, status, [=](Installation& doctor) { doctor.simulate(configuration); }};
}

std::string fault(const std::string& command, const std::string& action) {
    return R"({"faults": [{"command": ")" + command + R"(", "occurrence": "every", "action": )" + action +
           "}]}";
}

const Defect defects[] = {
    {"control library", " is missing", 5, [](Installation& d) { fs::remove(d.control); }},
    {"control library", " is a folder", 5,
     [](Installation& d) {
         fs::remove(d.control);
         fs::create_directory(d.control);
     }},
    {"control library", " is no library of this system", 5,
     [](Installation& d) { d.alterControl([](std::string& content) { content = "text"; }); }},
    {"control library", " is made for another type of machine", 5,
     [](Installation& d) { d.alterControl(nameOtherMachine); }},
    {"control library", " is cut off", 5,
     [](Installation& d) {
         d.alterControl([](std::string& content) { content.resize(content.size() / 50); });
     }},
    {"control library", "0, which is missing", 5,
     [](Installation& d) {
         d.alterControl([](std::string& content) {
             replace(content, "libc.so.6", "libc.so.0");
             replace(content, "KERNEL32.dll", "KERNEL32.dl0");
         });
     }},
    {"control library", " lacks SDKUsb_ResetDevice", 5,
     [](Installation& d) { d.copy(d.incomplete, d.control); }},
    {"control library", " lacks SDKUsb_Open, SDKUsb_OpenEx, ", 5,
     [](Installation& d) { d.copy(d.library, d.control); }},
    ofPrinter("printers", "code 1004: ", 5, R"({"printers": []})"),
    {"printers", "There is no printer 'nobody'. code 1008: ", 5,
     [](Installation&) { setEnvironment("ZPRUSB_PRINTER", "nobody"); }},
    ofPrinter("condition", "code 2101: ", 1, R"({"printers": [{"condition": "cover open"}]})"),
    ofPrinter("condition", "code 2103: ", 1, R"({"printers": [{}, {"condition": "out of media"}]})"),
    ofPrinter("condition", "code 2306: ", 1,
              R"({"printers": [{"condition": "device error", "errorGroup": 6, "errorDetail": 2}]})"),
    ofPrinter("condition", "does not answer as it should, code 2600: ", 1,
              fault("GetStatus", R"("error", "number": 5)")),
    ofPrinter("media", "printer 0, code 2600: ", 1, fault("GetMediaInfo", R"("error", "number": 5)")),
    ofPrinter("media", "printer 0 tells none, ", 1, R"({"printers": [{"media": []}]})"),
    ofPrinter("firmware", "printer 0, code 26", 1, fault("GetFirmwareInfo", R"("error", "number": 5)")),
};

TEST_F(Installation, HasDefectsThatTheDoctorTellsApart) {
    const Json healthy = json("zprusb doctor");
    EXPECT_EQ(healthy["healthy"], true);
    const fs::path kept = folder() / "kept";
    copy(control, kept);
    for (const auto& [check, found, status, plant] : defects) {
        plant(*this);
        const Outcome outcome = run("zprusb doctor --json");
        EXPECT_EQ(outcome.status, status) << found;
        std::set<std::string> checks;
        int bad = 0;
        const Json report = Json::parse(outcome.out, nullptr, false);
        for (const Json& finding : report["findings"]) {
            checks.insert(finding["check"]);
            if (finding["good"] != false) continue;
            ++bad;
            EXPECT_EQ(finding["check"], check) << finding;
            EXPECT_TRUE(contains(finding["found"], found));
            EXPECT_NE(finding["remedy"], "");
        }
        EXPECT_EQ(bad, 1) << found;
        for (const char* other : {"library", "control library", "USB device", "reservation", "printers"})
            EXPECT_TRUE(checks.contains(other) || found.starts_with("code 1004")) << other;
        fs::remove_all(control);
        copy(kept, control);
        simulate("{}");
        setEnvironment("ZPRUSB_PRINTER", "");
    }
}

TEST_F(Installation, HasItsControlLibraryWhereTheServiceToolFindsPrintersByTheirSerials) {
    simulate(R"({"printers": [{"serial": "A"}, {"serial": "B"}]})");
    EXPECT_EQ(json("zprusb-service model --printer SIMULATEDB")["serial"], "SIMULATEDB");
}

TEST_F(Installation, HasADoctorWhoNamesTheHolderOfAPrinterAndSeesThatItWasKilled) {
    simulate(R"({"printers": [{"serial": "HELD)" + std::to_string(std::random_device()() % 10000) +
             R"("}], "faults": [{"imageByte": 1000, "action": "never"}]})");
    write("page.png", png(quarters(30, 20, "RGBW")));
    ChildProcess holder = start("zprusb print page.png");
    Outcome busy = run("zprusb doctor");
    while (busy.status == 0) busy = run("zprusb doctor");
    EXPECT_EQ(busy.status, 4);
    EXPECT_TRUE(contains(busy.out, ", is being used by process "));
    EXPECT_TRUE(contains(busy.out, "(" + programFile("zprusb") + ")"));
    EXPECT_TRUE(contains(busy.out, "not looked at: the search for them would wait for printer 0"));
    holder.kill();
    const Outcome left = run("zprusb doctor");
    EXPECT_EQ(left.status, 0);
    // On Windows nothing of the reservation is left.
    const bool isRemembered = libraryFile("") == "lib.so";
    EXPECT_TRUE(contains(left.out, isRemembered ? ", was left by a program that was killed" : ", is free"));
}

}  // namespace
}  // namespace test
