#include "command_line.h"

#include <zprusb.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "failure.h"
#include "patience.h"
#include "result_text.h"
#include "steps.h"
#include "text.h"

namespace tool {
namespace {

constexpr const char* withoutLimit = "unlimited";

bool isNumber(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

/// The time behind --wait may be left out, so only a number is taken for it.
std::vector<std::string> withWaitSettled(std::vector<std::string> words) {
    for (size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
        if (words[i] != "--wait") continue;
        const bool timed = i + 1 < words.size() && isNumber(words[i + 1]);
        words[i] += "=" + (timed ? words[i + 1] : withoutLimit);
        if (timed) words.erase(words.begin() + static_cast<ptrdiff_t>(i) + 1);
    }
    return words;
}

void readWait(const std::string& text, CommonArguments& arguments) {
    arguments.waitWasAsked = true;
    arguments.printer.waitSeconds.reset();
    if (text == withoutLimit) return;
    unsigned seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc{} || end != text.data() + text.size() || seconds > longestWaitSeconds)
        throw CLI::ValidationError("--wait", "takes a number of seconds from 0 to " +
                                                 std::to_string(longestWaitSeconds) + ", not '" + text + "'");
    arguments.printer.waitSeconds = seconds;
}

void readSteps(const std::string& text) {
    chooseSteps(text == "json" ? Steps::asJson : text == "none" ? Steps::none : Steps::forPeople);
}

/// The command that the user probably means, or what there are.
std::string proposal(const CLI::App& app, const std::string& word) {
    std::string nearest;
    for (const CLI::App* command : app.get_subcommands({}))
        if (nearest.empty() || distance(word, command->get_name()) < distance(word, nearest))
            nearest = command->get_name();
    if (distance(word, nearest) <= std::max<size_t>(2, word.size() / 3))
        return "did you mean '" + nearest + "'?";
    return "'" + app.get_display_name() + " --help' lists them.";
}

std::string fullName(const CLI::App& app) {
    return (app.get_parent() == nullptr ? "" : fullName(*app.get_parent()) + " ") + app.get_name();
}

/// The innermost command that was named.
const CLI::App& calledCommand(const CLI::App& app) {
    const auto called = app.get_subcommands();
    return called.empty() ? app : calledCommand(*called.front());
}

/// The words that the argument library chose, as a sentence.
std::string sentenceOf(const CLI::ParseError& error) {
    std::string text = error.what();
    const size_t colon = text.find(": takes ");
    if (colon != std::string::npos) text.erase(colon, 1);
    while (text.ends_with('.') || text.ends_with(' ')) text.pop_back();
    return text;
}

std::string sentenceOf(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& called = calledCommand(app);
    const std::string help = " '" + fullName(called) + " --help' tells more.";
    const std::vector<std::string> extra = app.remaining(true);
    const bool commandMissing = !called.get_subcommands({}).empty();
    const auto word = std::ranges::find_if(extra, [](const auto& text) { return !text.starts_with('-'); });
    if (commandMissing && word != extra.end())
        return "There is no command '" + harmless(*word) + "'; " + proposal(called, *word);
    if (!extra.empty()) return "'" + harmless(extra.front()) + "' is not expected here." + help;
    if (commandMissing) return "A command is missing." + help;
    return harmless(sentenceOf(error)) + "." + help;
}

}  // namespace

CLI::Validator inRange(int64_t smallest, int64_t largest) {
    const std::string range = std::to_string(smallest) + " to " + std::to_string(largest);
    const auto check = [=](const std::string& text) {
        int64_t value = 0;
        if (CLI::detail::lexical_cast(text, value) && value >= smallest && value <= largest)
            return std::string();
        return "takes a number from " + range + ", not '" + text + "'";
    };
    return {check, ""};
}

CLI::Validator oneOf(std::vector<std::string> words) {
    std::string list;
    for (const std::string& word : words) list += (list.empty() ? "" : ", ") + word;
    const auto check = [=](const std::string& text) {
        if (std::ranges::find(words, text) != words.end()) return std::string();
        return "takes one of " + list + ", not '" + text + "'";
    };
    return {check, "{" + list + "}"};
}

void defineCommon(CLI::App& app, CommonArguments& arguments) {
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(exitStatusText);
    app.set_version_flag("--version", app.get_name() + " " ZPRUSB_TOOL_VERSION);
    app.add_option("--printer", arguments.printer.who,
                   "Number, name or serial of the printer; otherwise the first one found")
        ->type_name("PRINTER")
        ->envname("ZPRUSB_PRINTER");
    app.add_option_function<std::string>(
           "--wait", [&arguments](const std::string& text) { readWait(text, arguments); },
           "Wait for a printer that another program is using, at most so long; without a time, as long as it "
           "takes")
        ->type_name("[SECONDS]");
    app.add_flag_function(
        "--no-wait",
        [&arguments](int64_t) {
            arguments.waitWasAsked = false;
            arguments.printer.waitSeconds = 0;
        },
        "Refuse at once when another program is using the printer");
    app.add_flag("--json", arguments.json, "Print JSON for programs");
    app.add_option_function<std::string>("--progress", readSteps,
                                         "What standard error tells meanwhile: 'json' is a line for each step")
        ->check(oneOf({"auto", "json", "none"}));
    app.add_flag_function(
        "--verbose", [](int64_t) { tellCalls(); }, "Tell each call of the library");
    app.add_option_function<std::string>(
           "--words", replaceWords, "JSON file with meaning and remedy of the codes of this place's printers")
        ->type_name("FILE")
        ->envname("ZPRUSB_WORDS");
}

std::optional<int> parse(CLI::App& app, std::vector<std::string> words) {
    words = withWaitSettled(std::move(words));
    std::ranges::reverse(words);  // the order that CLI11 takes them in
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw WrongUsage(sentenceOf(app, error));
        return app.exit(error);
    }
    return std::nullopt;
}

}  // namespace tool
