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
    const auto sheet =
        arguments.size ? findSheet(offered, *arguments.size, ratio) : suitableSheet(offered, ratio);
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
            (printed ? "Printed " : "Sent ") + harmless(image) + " on " + size + ", " +
                counted(page.copies, "copy", "copies") + ", as job " + std::to_string(number) + " of printer " +
                std::to_string(printer) + (printed ? ".\n" : "; the printer is printing it.\n")};
}

/// They last as long as the library is open and the printer stays selected.
void setOptions(Printer& printer, const PrintArguments& arguments) {
    if (arguments.option20) printer.set(ZPRUSB_SET_OPTION20, littleEndianBytes(*arguments.option20, 1));
    if (arguments.option21) printer.set(ZPRUSB_SET_OPTION21, littleEndianBytes(*arguments.option21, 2));
    if (arguments.option22) printer.set(ZPRUSB_SET_OPTION22, littleEndianBytes(*arguments.option22, 2));
}

uint16_t sendWithProgress(const Printer& printer, const Page& page, const PrintArguments& arguments,
                          const std::function<void()>& started) {
    ProgressBar bar("sending", page.pixels.size());
    return sendPage(printer, page, std::chrono::seconds(arguments.timeoutSeconds), [&](size_t sent) {
        if (sent == 0) started();
        bar.show(sent);
    });
}

std::vector<uint8_t> numbersOf(const Printer& printer) {
    std::vector<uint8_t> numbers;
    for (const FoundPrinter& found : printer.all()) numbers.push_back(found.number);
    return numbers;
}

/// Waits for the first of all printers that is ready, and selects it.
void selectReady(Printer& printer) {
    const std::vector<uint8_t> numbers = numbersOf(printer);
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

    /// @param started is called when the printer has begun the page, before its data go out.
    View print(
        const std::string& image, const PictureReader& picture, const std::function<void()>& started = [] {}) {
        if (arguments_.any) {
            selectReady(printer_);
        } else if (common_.waitWasAsked || pages_ > 0) {
            awaitReady(printer_, common_.printer.waitSeconds);
        }
        const Job job = jobOf(arguments_, picture, chooseSheet(printer_.mediaList(), arguments_, picture));
        setOptions(printer_, arguments_);
        const uint16_t id = sendWithProgress(printer_, job.page, arguments_, started);
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
    const bool known = arguments.size && arguments.size->length > 0;
    const Sheet sheet =
        known ? sheetOf(*arguments.size) : chooseSheet(Printer(common.printer).mediaList(), arguments, picture);
    const Job job = jobOf(arguments, picture, sheet);
    writeFile(arguments.preview, simulator::encodePng(job.page.pixels, job.dots.width, job.dots.height));
    show({{{"image", arguments.images.front()}, {"preview", arguments.preview}, {"media", dataOf(sheet)}},
          "Wrote the page, " + sizeName(sheet.width(), sheet.length) + ", into " + harmless(arguments.preview) +
              ".\n"},
         common.json);
    return exitSuccess;
}

/// What JSON tells of a picture that was not printed. People have read it on standard error.
View failureOf(const std::string& image, const Failure& failure) {
    complain("'" + image + "': " + failure.what());
    return {{{"image", image}, {"error", errorOf(failure)["error"]}}, ""};
}

/// A picture that can't be used doesn't keep the others from being printed; a printer that fails does.
int printAll(const CommonArguments& common, const PrintArguments& arguments) {
    Printing printing(common, arguments);
    Json pages = Json::array();
    int status = exitSuccess;
    for (const std::string& image : arguments.images) {
        bool goesOn = true;
        View view;
        try {
            view = printing.print(image, open(image, arguments));
        } catch (const Failure& failure) {
            view = failureOf(image, failure);
            if (status == exitSuccess) status = failure.status();
            goesOn = failure.status() == exitUnusableFile;
        }
        pages.push_back(view.data);
        if (!common.json && !showLine(view, false)) return exitRefused;
        if (!goesOn) break;
    }
    if (common.json) show({{{"pages", pages}}, ""}, true);
    return status;
}

/// Prints what comes into a folder. A picture that did not come as far as to the printer waits there, unless it
/// is the picture's own fault.
class FolderWatch {
public:
    FolderWatch(const CommonArguments& common, const PrintArguments& arguments)
        : inbox_(arguments.watch), arguments_(arguments), printing_(common, arguments) {}

    /// @return what happened to a picture, if anything.
    std::optional<View> look() {
        const auto picture = inbox_.next();
        if (!picture) return std::nullopt;
        const uint16_t code = codeOfPrinter();
        if (code == ZPRUSB_SUCCESS) return print(*picture);
        if (!isOccupied(code)) tellOnce("The pictures wait. " + resultSentence(code));
        return std::nullopt;
    }

private:
    std::optional<View> print(const Inbox::Arrival& picture) {
        bool started = false;
        try {
            const PictureReader reader = open(picture.path, arguments_);
            if (!inbox_.take()) {
                tellOnce("'" + picture.name + "' can't be moved; another program may still be using it.");
                return std::nullopt;
            }
            const View view = printing_.print(picture.name, reader, [&] {
                inbox_.start();
                started = true;
            });
            inbox_.put(Inbox::printed);
            told_.clear();
            return view;
        } catch (const Failure& failure) {
            return handle(picture, failure, started);
        }
    }

    std::optional<View> handle(const Inbox::Arrival& picture, const Failure& failure, bool started) {
        const bool unusable = failure.status() == exitUnusableFile;
        if (unusable && !picture.settled) {
            inbox_.giveBack();
            inbox_.postpone();
            return std::nullopt;
        }
        if (!started && !unusable && failure.code() != ZPRUSB_BAD_ARGUMENT) {
            tellOnce(failure.what());
            inbox_.giveBack();
            return std::nullopt;
        }
        inbox_.put(Inbox::failed);
        return failureOf(picture.name, failure);
    }

    /// Success when a printer is ready. One that was lost is found again only when the library is opened anew.
    uint16_t codeOfPrinter() {
        Printer& printer = printing_.printer();
        std::vector<uint8_t> numbers = {printer.number()};
        if (arguments_.any) numbers = numbersOf(printer);
        const std::vector<uint16_t> codes =
            numbers.empty() ? std::vector<uint16_t>{ZPRUSB_NO_PRINTER_FOUND} : printer.status(numbers);
        if (std::ranges::find(codes, uint16_t{ZPRUSB_SUCCESS}) != codes.end()) return ZPRUSB_SUCCESS;
        const auto isLost = [](uint16_t code) {
            return code == ZPRUSB_NO_PRINTER || code == ZPRUSB_NO_PRINTER_FOUND || code == ZPRUSB_COMMUNICATION;
        };
        if (std::ranges::any_of(codes, isLost)) printer.reopen();
        return codes.front();
    }

    /// Not again and again while nothing else happens.
    void tellOnce(const std::string& sentence) {
        if (sentence != told_) complain(sentence);
        told_ = sentence;
    }

    Inbox inbox_;
    const PrintArguments& arguments_;
    Printing printing_;
    std::string told_;
};

int watchFolder(const CommonArguments& common, const PrintArguments& arguments) {
    FolderWatch watch(common, arguments);
    while (!interruptedWithin(std::chrono::milliseconds(500)))
        if (const auto view = watch.look(); view && !showLine(*view, common.json)) return exitRefused;
    return exitSuccess;
}

}  // namespace

int run(const CommonArguments& common, const PrintArguments& arguments) {
    if (arguments.images.empty() == arguments.watch.empty())
        throw WrongUsage(
            "Name the pictures to print, or a folder with --watch. 'zprusb print --help' tells more.");
    if (!arguments.preview.empty() && arguments.images.size() != 1)
        throw WrongUsage("A preview is of one picture. 'zprusb print --help' tells more.");
    if (!arguments.watch.empty()) return watchFolder(common, arguments);
    if (!arguments.preview.empty()) return preview(common, arguments);
    if (arguments.images.size() > 1) return printAll(common, arguments);
    const PictureReader picture = open(arguments.images.front(), arguments);
    show(Printing(common, arguments).print(arguments.images.front(), picture), common.json);
    return exitSuccess;
}

}  // namespace tool
