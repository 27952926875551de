#include "page.h"

#include <zprusb.h>

#include <algorithm>

#include "printer.h"

namespace tool {
namespace {

/// A started page reserves the printer until its end.
class StartedPage {
public:
    explicit StartedPage(const std::optional<uint8_t>& section) {
        uint16_t code = 0;
        const uint32_t verdict =
            section ? zprusb_startpagelong(&id_, *section, &code) : zprusb_startpage(&id_, &code);
        require(verdict, code);
    }
    ~StartedPage() { zprusb_endpage(nullptr); }
    StartedPage(const StartedPage&) = delete;
    StartedPage& operator=(const StartedPage&) = delete;

    uint16_t id() const { return id_; }

private:
    uint16_t id_ = 0;
};

/// In pieces, so that the progress can be told between them.
void send(ByteView pixels, const std::function<void(size_t)>& progress) {
    constexpr size_t piece = 256 * 1024;
    for (size_t sent = 0; sent < pixels.size();) {
        const ByteView part = pixels.subspan(sent, std::min(piece, pixels.size() - sent));
        const auto length = static_cast<uint32_t>(part.size());
        uint16_t code = 0;
        require(zprusb_write(part.data(), &length, &code), code);
        sent += part.size();
        progress(sent);
    }
}

}  // namespace

uint16_t printPage(const Page& page, const std::function<void(size_t)>& progress) {
    const Sheet& sheet = page.sheet;
    uint16_t code = 0;
    require(zprusb_checkMediaInfo(sheet.media.code, sheet.width(), sheet.length, &code), code);
    require(zprusb_copies(page.copies, &code), code);
    const StartedPage started(page.section);
    send(page.pixels, progress);
    return started.id();
}

}  // namespace tool
