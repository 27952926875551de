#include "arguments.h"

#include <zprusb.h>

#include <algorithm>
#include <map>

#include "command_line.h"
#include "failure.h"
#include "info_kinds.h"
#include "settings.h"

namespace tool {
namespace {

void defineList(CLI::App& app, Arguments& arguments) {
    addCommand<ListArguments>(app, "list", "List the printers with number and label", arguments);
}

void defineStatus(CLI::App& app, Arguments& arguments) {
    const auto status =
        addCommand<StatusArguments>(app, "status", "Say whether the printer is ready", arguments);
    status.app->add_flag("--all", status->all, "Ask all printers");
}

void defineWatch(CLI::App& app, Arguments& arguments) {
    const auto watch = addCommand<WatchArguments>(
        app, "watch", "Tell the status, then each change of it, until Ctrl-C", arguments);
    watch.app->add_option("--interval", watch->interval, "How often to ask the printer")
        ->capture_default_str()
        ->type_name("MILLISECONDS")
        ->check(inRange(10, 3'600'000));
}

void defineInfo(CLI::App& app, Arguments& arguments) {
    const auto info =
        addCommand<InfoArguments>(app, "info", "Show what the printer knows about itself", arguments);
    std::vector<std::string> words;
    for (const InfoKind& kind : infoKinds()) words.push_back(kind.word);
    info.app->add_option("what", info->kinds, "What to show; everything when nothing is named")
        ->check(oneOf(words));
    info.app->add_flag("--raw", info->raw, "Show the bytes of the records in hexadecimal");
}

void readSize(const std::string& text, std::optional<WantedSize>& size) {
    size = parseSize(text);
    if (!size)
        throw CLI::ValidationError("--size",
                                   "takes a size like 6x4, 6x8in, 15x10cm or 152x203mm, not '" + text + "'");
}

void readGravity(const std::string& text, Gravity& gravity) {
    gravity = {};
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find('-', start), text.size());
        const std::string word = text.substr(start, end - start);
        if (word == "left" || word == "right") gravity.across = word == "left" ? 0 : 1;
        if (word == "top" || word == "bottom") gravity.down = word == "top" ? 0 : 1;
        start = end + 1;
    }
}

void defineLayout(CLI::App& print, const std::shared_ptr<PrintArguments>& values) {
    print.add_flag("--fit", values->fit, "Leave white margins instead of filling the page");
    print
        .add_option_function<std::string>(
            "--gravity", [values](const std::string& text) { readGravity(text, values->gravity); },
            "Which part of the picture is kept where it does not suit the page; otherwise the middle")
        ->check(oneOf({"center", "top", "bottom", "left", "right", "top-left", "top-right", "bottom-left",
                       "bottom-right"}));
    print
        .add_option_function<std::string>(
            "--rotate", [values](const std::string& text) { values->rotation = std::stoul(text); },
            "Turn the picture clockwise by so many degrees; otherwise as it suits the page")
        ->check(oneOf({"0", "90", "180", "270"}));
    print.add_option("--border", values->border, "White border on each side, in millimetres")
        ->type_name("MM")
        ->check(inRange(0, 1000));
}

void defineReading(CLI::App& print, const std::shared_ptr<PrintArguments>& values) {
    static const std::map<std::string, Intent> intents = {{"perceptual", Intent::perceptual},
                                                          {"relative", Intent::relative},
                                                          {"saturation", Intent::saturation},
                                                          {"absolute", Intent::absolute}};
    print.add_flag("--force", values->force, "Print what can be read of a damaged picture");
    print.add_option("--max-pixels", values->mostPixels, "Refuse pictures with more pixels")
        ->capture_default_str()
        ->type_name("NUMBER")
        ->check(inRange(1, 1'000'000'000'000));
    print
        .add_option("--profile", values->profile,
                    "The printer's colour profile, an ICC file; otherwise pages are in sRGB")
        ->type_name("FILE");
    print
        .add_option_function<std::string>(
            "--intent", [values](const std::string& text) { values->intent = intents.at(text); },
            "How colours are converted that the page can't show: perceptual, relative, saturation or absolute; "
            "otherwise relative")
        ->check(oneOf({"perceptual", "relative", "saturation", "absolute"}));
}

void definePrint(CLI::App& app, Arguments& arguments) {
    const auto print = addCommand<PrintArguments>(app, "print", "Print pictures", arguments);
    print.app->add_option("image", print->images, "PNG or JPEG files; '-' reads one from standard input")
        ->type_name("FILE");
    print.app
        ->add_option_function<std::string>(
            "--size", [values = print.values](const std::string& text) { readSize(text, values->size); },
            "Page size in inches, centimetres or millimetres, as 6x4, 6x8in, 15x10cm or 152x203mm, or as 'info "
            "media' names it; "
            "otherwise the offered size that suits the picture best")
        ->type_name("WIDTHxLENGTH");
    print.app
        ->add_option("--watch", print->watch,
                     "Print each picture that comes into this folder, and move it to 'printed' or 'failed' "
                     "below it, until Ctrl-C")
        ->type_name("FOLDER");
    print.app
        ->add_option("--preview", print->preview,
                     "Write the page into this PNG file instead; with --size no printer is needed")
        ->type_name("FILE");
    print.app->add_flag("--any", print->any, "Print each picture on the printer that is ready first");
    print.app
        ->add_option("--timeout", print->timeoutSeconds,
                     "How long the printer may take no data before the page is given up")
        ->capture_default_str()
        ->type_name("SECONDS")
        ->check(inRange(1, longestWaitSeconds));
    defineLayout(*print.app, print.values);
    defineReading(*print.app, print.values);
    print.app->footer(
        "With --wait it goes on until the printer has printed the page, and fails when that takes longer than "
        "SECONDS.\nA picture whose name is a number behind --wait is written as ./NAME.\n" +
        std::string(exitStatusText));
    print.app->add_option("--copies", print->copies, "Number of copies")
        ->type_name("N")
        ->check(inRange(1, ZPRUSB_MAX_COPIES));
    print.app->add_option("--long", print->section, "Print a section of a long page; 0 is the whole page")
        ->type_name("SECTION")
        ->check(inRange(0, ZPRUSB_MAX_SECTION));
    print.app->add_option("--option20", print->option20, "Print option 20 of this page; otherwise 1")
        ->type_name("N")
        ->check(inRange(0, 0xFF));
    print.app->add_option("--option21", print->option21, "Print option 21 of this page; otherwise 200")
        ->type_name("N")
        ->check(inRange(0, 0xFFFF));
    print.app->add_option("--option22", print->option22, "Print option 22 of this page; otherwise 200")
        ->type_name("N")
        ->check(inRange(0, 0xFFFF));
}

void defineSet(CLI::App& app, Arguments& arguments) {
    const auto set = addCommand<SetArguments>(app, "set", "Change a setting that the printer keeps", arguments);
    std::vector<std::string> words;
    std::string ranges;
    for (const Setting& setting : settings()) {
        words.emplace_back(setting.word);
        ranges += (ranges.empty() ? "" : "; ") + words.back() + ": " + setting.range;
    }
    set.app->add_option("name", set->name, "Which one")->required()->check(oneOf(words));
    set.app->add_option("value", set->value, ranges)->required();
}

void defineResetCounter(CLI::App& app, Arguments& arguments) {
    const auto reset =
        addCommand<ResetCounterArguments>(app, "reset-counter", "Set a counter to zero", arguments);
    reset.app
        ->add_option_function<std::string>(
            "counter",
            [values = reset.values](const std::string& text) {
                if (text != "all") values->number = static_cast<uint8_t>(text[0] - '0');
            },
            "Number of the counter as 'info counters' shows it, 1 to 6, or 'all'")
        ->required()
        ->check(oneOf({"1", "2", "3", "4", "5", "6", "all"}));
}

void defineDoctor(CLI::App& app, Arguments& arguments) {
    addCommand<DoctorArguments>(app, "doctor", "Check what keeps printers from working, and say what helps",
                                arguments);
}

void defineBlink(CLI::App& app, Arguments& arguments) {
    addCommand<BlinkArguments>(app, "blink", "Make the printer's LED flash", arguments);
}

void defineReset(CLI::App& app, Arguments& arguments) {
    addCommand<ResetArguments>(app, "reset", "Reset the printer", arguments);
}

}  // namespace

std::variant<Arguments, int> parseArguments(std::vector<std::string> words) {
    CLI::App app("Prints on RQX5820 USB printers and tells how they are.", "zprusb");
    Arguments arguments;
    defineCommon(app, arguments);
    for (const auto& define : {defineList, defineStatus, defineWatch, defineInfo, definePrint, defineSet,
                               defineResetCounter, defineDoctor, defineBlink, defineReset})
        define(app, arguments);
    if (const auto status = parse(app, std::move(words))) return *status;
    return arguments;
}

}  // namespace tool
