#include <zprusb.h>

#include "commands.h"
#include "failure.h"
#include "image/picture.h"
#include "image/picture_file.h"
#include "page.h"
#include "printer.h"
#include "progress_bar.h"
#include "result_text.h"
#include "text.h"
#include "view.h"

namespace tool {
namespace {

std::string namesOf(const std::vector<MediaSize>& offered) {
    std::string names;
    for (const MediaSize& media : offered) names += (names.empty() ? "" : "; ") + nameOf(media);
    return names.empty() ? "nothing" : names;
}

Sheet chooseSheet(const std::vector<MediaSize>& offered, const PrintArguments& arguments,
                  const Picture& picture) {
    const double ratio = static_cast<double>(picture.width) / picture.height;
    const auto sheet = arguments.size ? findSheet(offered, *arguments.size) : suitableSheet(offered, ratio);
    if (!sheet)
        throw Refusal(resultSentence(ZPRUSB_BAD_ARGUMENT) + " The printer offers: " + namesOf(offered) + ".");
    return *sheet;
}

/// What one page command prints: the sheet, or one section of a long page.
Extent dotsOfPage(const Sheet& sheet, const std::optional<uint8_t>& section) {
    if (section.value_or(0) == 0) return {dotsOf(sheet.width()), dotsOf(sheet.length)};
    const Extent dots{dotsOf(sheet.media.sectionWidth), dotsOf(sheet.media.sectionLengths[*section - 1u])};
    if (dots.width == 0 || dots.height == 0)
        throw Refusal("This media size has no section " + std::to_string(*section) + ": " +
                      resultSentence(ZPRUSB_BAD_ARGUMENT));
    return dots;
}

View viewOf(const PrintArguments& arguments, const Page& page, const Extent& dots, uint16_t pageId) {
    const unsigned printer = pageId >> 8;
    const unsigned job = pageId & 0xFF;
    const std::string size = sizeName(page.sheet.width(), page.sheet.length);
    return {{{"image", arguments.image},
             {"printer", printer},
             {"job", job},
             {"page", pageId},
             {"media",
              {{"code", page.sheet.media.code}, {"width", page.sheet.width()}, {"length", page.sheet.length}}},
             {"pixels", {{"width", dots.width}, {"length", dots.height}}},
             {"copies", page.copies}},
            "Printed " + arguments.image + " on " + size + ", " + counted(page.copies, "copy", "copies") +
                ", as job " + std::to_string(job) + " of printer " + std::to_string(printer) + ".\n"};
}

/// They last as long as the library is open and the printer stays selected.
void setOptions(Printer& printer, const PrintArguments& arguments) {
    if (arguments.option20) printer.set(ZPRUSB_SET_OPTION20, littleEndianBytes(*arguments.option20, 1));
    if (arguments.option21) printer.set(ZPRUSB_SET_OPTION21, littleEndianBytes(*arguments.option21, 2));
    if (arguments.option22) printer.set(ZPRUSB_SET_OPTION22, littleEndianBytes(*arguments.option22, 2));
}

uint16_t printWithProgress(const Page& page) {
    ProgressBar bar("printing", page.pixels.size());
    return printPage(page, [&bar](size_t sent) { bar.show(sent); });
}

}  // namespace

int run(const CommonArguments& common, const PrintArguments& arguments) {
    const Picture picture = loadPicture(arguments.image);
    Printer printer(common.printer);
    const Sheet sheet = chooseSheet(printer.mediaList(), arguments, picture);
    const Extent dots = dotsOfPage(sheet, arguments.section);
    const Page page{sheet, arguments.copies, arguments.section,
                    laidOut(picture, dots, arguments.fit ? Scaling::fit : Scaling::fill).pixels};
    setOptions(printer, arguments);
    show(viewOf(arguments, page, dots, printWithProgress(page)), common.json);
    return exitSuccess;
}

}  // namespace tool
