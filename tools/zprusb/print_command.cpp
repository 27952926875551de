#include <zprusb.h>

#include <algorithm>

#include "commands.h"
#include "failure.h"
#include "file.h"
#include "image/picture_file.h"
#include "inbox.h"
#include "page.h"
#include "png.h"
#include "printer.h"
#include "program.h"
#include "progress_bar.h"
#include "result_text.h"
#include "steps.h"
#include "system.h"
#include "text.h"
#include "view.h"

namespace tool {
namespace {

/// A picture on its way to the paper.
struct Job {
    Page page;
    Extent dots;
};

std::string namesOf(const std::vector<MediaSize>& offered) {
    std::string names;
    for (const MediaSize& media : offered) names += (names.empty() ? "" : "; ") + nameOf(media);
    return names;
}

Sheet chooseSheet(const std::vector<MediaSize>& offered, const PrintArguments& arguments,
                  const PictureReader& picture) {
    if (offered.empty())
        throw Refusal("The printer's list of media is empty or did not arrive whole. " +
                          resultSentence(ZPRUSB_COMMUNICATION),
                      ZPRUSB_COMMUNICATION);
    const double ratio = static_cast<double>(picture.size().width) / picture.size().height;
    const auto sheet = arguments.size ? findSheet(offered, *arguments.size) : suitableSheet(offered, ratio);
    if (!sheet)
        throw Refusal(resultSentence(ZPRUSB_BAD_ARGUMENT) + " The printer offers: " + namesOf(offered) + ".",
                      ZPRUSB_BAD_ARGUMENT);
    return *sheet;
}

/// What one page command prints: the sheet, or one section of a long page.
Extent dotsOfPage(const Sheet& sheet, const std::optional<uint8_t>& section) {
    if (section.value_or(0) == 0) return {dotsOf(sheet.width()), dotsOf(sheet.length)};
    const Extent dots{dotsOf(sheet.media.sectionWidth), dotsOf(sheet.media.sectionLengths[*section - 1u])};
    if (dots.width == 0 || dots.height == 0)
        throw Refusal("This media size has no section " + std::to_string(*section) + ": " +
                          resultSentence(ZPRUSB_BAD_ARGUMENT),
                      ZPRUSB_BAD_ARGUMENT);
    return dots;
}

Job jobOf(const PrintArguments& arguments, const PictureReader& picture, const Sheet& sheet) {
    constexpr double hundredthsPerMillimetre = 100;
    const Extent dots = dotsOfPage(sheet, arguments.section);
    Layout layout{.scaling = arguments.fit ? Scaling::fit : Scaling::fill,
                  .gravity = arguments.gravity,
                  .border = dotsOf(static_cast<uint32_t>(arguments.border * hundredthsPerMillimetre))};
    if (arguments.rotation) layout.quarters = *arguments.rotation / 90;
    return {{sheet, arguments.copies, arguments.section, picture.page(dots, layout).pixels}, dots};
}

PictureReader open(const std::string& image, const PrintArguments& arguments) {
    Reading reading{.mostPixels = arguments.mostPixels, .force = arguments.force, .intent = arguments.intent};
    if (!arguments.profile.empty()) reading.printerProfile = loadProfile(arguments.profile);
    return openPicture(image, reading);
}

Json dataOf(const Sheet& sheet) {
    return {{"code", sheet.media.code}, {"width", sheet.width()}, {"length", sheet.length}};
}

View viewOf(const std::string& image, const Job& job, uint16_t pageId, bool printed) {
    const Page& page = job.page;
    const unsigned printer = pageId >> 8;
    const unsigned number = pageId & 0xFF;
    const std::string size = sizeName(page.sheet.width(), page.sheet.length);
    return {{{"image", image},
             {"printer", printer},
             {"job", number},
             {"page", pageId},
             {"media", dataOf(page.sheet)},
             {"pixels", {{"width", job.dots.width}, {"length", job.dots.height}}},
             {"copies", page.copies},
             {"printed", printed}},
            (printed ? "Printed " : "Sent ") + image + " on " + size + ", " +
                counted(page.copies, "copy", "copies") + ", as job " + std::to_string(number) + " of printer " +
                std::to_string(printer) + (printed ? ".\n" : "; the printer is printing it.\n")};
}

/// They last as long as the library is open and the printer stays selected.
void setOptions(Printer& printer, const PrintArguments& arguments) {
    if (arguments.option20) printer.set(ZPRUSB_SET_OPTION20, littleEndianBytes(*arguments.option20, 1));
    if (arguments.option21) printer.set(ZPRUSB_SET_OPTION21, littleEndianBytes(*arguments.option21, 2));
    if (arguments.option22) printer.set(ZPRUSB_SET_OPTION22, littleEndianBytes(*arguments.option22, 2));
}

uint16_t sendWithProgress(const Printer& printer, const Page& page, const PrintArguments& arguments) {
    ProgressBar bar("sending", page.pixels.size());
    return sendPage(printer, page, std::chrono::seconds(arguments.timeoutSeconds),
                    [&bar](size_t sent) { bar.show(sent); });
}

/// Waits for the first of all printers that is ready, and selects it.
void selectReady(Printer& printer) {
    std::vector<uint8_t> numbers;
    for (const FoundPrinter& found : printer.all()) numbers.push_back(found.number);
    WaitingNotice notice("a printer that is ready");
    for (;;) {
        const std::vector<uint16_t> codes = printer.status(numbers);
        for (size_t i = 0; i < codes.size(); ++i)
            if (codes[i] == ZPRUSB_SUCCESS) return printer.select(numbers[i]);
        notice.update();
        if (printer.isPastWait()) throw Refusal(resultSentence(codes.front()), codes.front(), exitBusy);
        if (interruptedWithin(std::chrono::milliseconds(250)))
            throw Refusal("Interrupted while no printer was ready.");
    }
}

class Printing {
public:
    Printing(const CommonArguments& common, const PrintArguments& arguments)
        : common_(common), arguments_(arguments), printer_(common.printer) {
        noteInterruption();
    }

    Printer& printer() { return printer_; }

    View print(const std::string& image, const PictureReader& picture) {
        if (arguments_.any) {
            selectReady(printer_);
        } else if (common_.waitWasAsked || pages_ > 0) {
            awaitReady(printer_, common_.printer.waitSeconds);
        }
        const Job job = jobOf(arguments_, picture, chooseSheet(printer_.mediaList(), arguments_, picture));
        setOptions(printer_, arguments_);
        const uint16_t id = sendWithProgress(printer_, job.page, arguments_);
        ++pages_;
        tellStep(R"({"step":"sent","page":)" + std::to_string(id) + "}");
        if (!common_.waitWasAsked) return viewOf(image, job, id, false);
        awaitPrinted(printer_, common_.printer.waitSeconds);
        tellStep(R"({"step":"printed","page":)" + std::to_string(id) + "}");
        return viewOf(image, job, id, true);
    }

private:
    const CommonArguments& common_;
    const PrintArguments& arguments_;
    Printer printer_;
    size_t pages_ = 0;
};

int preview(const CommonArguments& common, const PrintArguments& arguments) {
    const PictureReader picture = open(arguments.images.front(), arguments);
    const Sheet sheet = arguments.size ? sheetOf(*arguments.size)
                                       : chooseSheet(Printer(common.printer).mediaList(), arguments, picture);
    const Job job = jobOf(arguments, picture, sheet);
    writeFile(arguments.preview, simulator::encodePng(job.page.pixels, job.dots.width, job.dots.height));
    show({{{"image", arguments.images.front()}, {"preview", arguments.preview}, {"media", dataOf(sheet)}},
          "Wrote the page, " + sizeName(sheet.width(), sheet.length) + ", into " + arguments.preview + ".\n"},
         common.json);
    return exitSuccess;
}

/// A picture that can't be used doesn't keep the others from being printed; a printer that fails does.
int printAll(const CommonArguments& common, const PrintArguments& arguments) {
    Printing printing(common, arguments);
    Json pages = Json::array();
    int status = exitSuccess;
    for (const std::string& image : arguments.images) {
        try {
            const View view = printing.print(image, open(image, arguments));
            pages.push_back(view.data);
            if (!common.json) showLine(view, false);
        } catch (const Failure& failure) {
            complain("'" + harmless(image) + "': " + failure.what());
            pages.push_back({{"image", image}, {"error", errorOf(failure)["error"]}});
            if (status == exitSuccess) status = failure.status();
            if (failure.status() != exitUnusableFile) break;
        }
    }
    if (common.json) show({{{"pages", pages}}, ""}, true);
    return status;
}

bool isReady(Printer& printer, bool any) {
    std::vector<uint8_t> numbers;
    for (const FoundPrinter& found : printer.all()) numbers.push_back(found.number);
    const std::vector<uint16_t> codes = printer.status(numbers);
    const bool lost = std::ranges::any_of(
        codes, [](uint16_t code) { return code == ZPRUSB_NO_PRINTER || code == ZPRUSB_COMMUNICATION; });
    if (lost) printer.reopen();
    if (any) return std::ranges::find(codes, uint16_t{ZPRUSB_SUCCESS}) != codes.end();
    const auto own = std::ranges::find(numbers, printer.number());
    return own != numbers.end() && codes[static_cast<size_t>(own - numbers.begin())] == ZPRUSB_SUCCESS;
}

int watchFolder(const CommonArguments& common, const PrintArguments& arguments) {
    Inbox inbox(arguments.watch);
    Printing printing(common, arguments);
    while (!interruptedWithin(std::chrono::milliseconds(500))) {
        const auto picture = inbox.next();
        if (!picture) continue;
        if (!isReady(printing.printer(), arguments.any)) continue;
        try {
            const std::string taken = inbox.take(*picture);
            const View view = printing.print(*picture, open(taken, arguments));
            inbox.put(*picture, Inbox::printed);
            showLine(view, common.json);
        } catch (const Failure& failure) {
            inbox.put(*picture, Inbox::failed);
            complain("'" + harmless(*picture) + "': " + failure.what());
            const Json object = {{"image", *picture}, {"error", errorOf(failure)["error"]}};
            if (common.json) showLine({object, ""}, true);
            if (failure.status() != exitUnusableFile) printing.printer().reopen();
        }
    }
    return exitSuccess;
}

}  // namespace

int run(const CommonArguments& common, const PrintArguments& arguments) {
    if (arguments.images.empty() == arguments.watch.empty())
        throw WrongUsage(
            "Name the pictures to print, or a folder with --watch. 'zprusb print --help' tells more.");
    if (!arguments.watch.empty()) return watchFolder(common, arguments);
    if (!arguments.preview.empty()) return preview(common, arguments);
    if (arguments.images.size() > 1) return printAll(common, arguments);
    const PictureReader picture = open(arguments.images.front(), arguments);
    show(Printing(common, arguments).print(arguments.images.front(), picture), common.json);
    return exitSuccess;
}

}  // namespace tool
