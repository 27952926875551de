#include <png.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "decoders.h"
#include "escape.h"

namespace tool {
namespace {

// What may come behind the last row's own data, compressed.
constexpr size_t mostSurplus = 64 * 1024;

/// The row of the last pass with which the picture is complete.
struct LastRead {
    int pass;
    uint32_t row;
};

LastRead lastReadOf(Extent size, int passes) {
    if (passes == 1) return {0, size.height - 1};
    for (int pass = passes - 1; pass > 0; --pass) {
        const uint32_t rows = PNG_PASS_ROWS(size.height, pass);
        if (rows > 0 && PNG_PASS_COLS(size.width, pass) > 0)
            return {pass, PNG_ROW_FROM_PASS_ROW(rows - 1, pass)};
    }
    return {0, PNG_ROW_FROM_PASS_ROW(PNG_PASS_ROWS(size.height, 0) - 1, 0)};
}

struct ReadStructures {
    png_structp png = nullptr;
    png_infop info = nullptr;

    ReadStructures() = default;
    ~ReadStructures() { png_destroy_read_struct(&png, &info, nullptr); }
    ReadStructures(const ReadStructures&) = delete;
    ReadStructures& operator=(const ReadStructures&) = delete;
};

/// The rows of an interlaced picture come in turns, so that it has to be read as a whole.
class PngDecoder : public Decoder {
public:
    PngDecoder(ByteView file, bool force) : rest_(file), force_(force) {
        if (!succeeds(escape_, [this] { begin(); })) fail();
        row_.resize(size_t{size_.width} * channels_);
    }

    Model model() const override { return Model::rgb; }

    Extent size() const override { return size_; }

    unsigned start(unsigned) override {
        if (passes_ == 1) return 1;
        whole_.assign(row_.size() * size_.height, 0xFF);
        if (!succeeds(escape_, [this] { readPasses(); }) && !force_) fail();
        return 1;
    }

    void read(uint8_t* row) override {
        const uint8_t* from = row_.data();
        if (passes_ > 1) {
            from = whole_.data() + next_ * row_.size();
        } else if (!succeeds(escape_, [this] { readRow(0, next_, row_.data()); })) {
            fail();
        }
        ++next_;
        if (channels_ == 4) return layOnWhite(from, row);
        std::memcpy(row, from, row_.size());
    }

    std::string complaint() const override { return text_; }

private:
    void begin() {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, giveUp, noteWarning);
        if (png_ == nullptr) throw std::bad_alloc();
        info_ = png_create_info_struct(png_);
        png_set_read_fn(png_, this, giveBytes);
        // All that matters of the chunks around the picture is known already.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        static constexpr png_byte needed[] = "tRNS";
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_AS_DEFAULT, needed, 1);
        const int action = force_ ? PNG_CRC_QUIET_USE : PNG_CRC_ERROR_QUIT;
        png_set_crc_action(png_, action, action);
        png_read_info(png_, info_);
        png_set_expand(png_);
        png_set_scale_16(png_);
        png_set_gray_to_rgb(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        channels_ = png_get_channels(png_, info_);
        size_ = {png_get_image_width(png_, info_), png_get_image_height(png_, info_)};
        last_ = lastReadOf(size_, passes_);
        reading_ = true;
    }

    void readPasses() {
        for (int pass = 0; pass < passes_; ++pass)
            for (uint32_t row = 0; row < size_.height; ++row)
                readRow(pass, row, whole_.data() + row * row_.size());
    }

    void readRow(int pass, uint32_t row, uint8_t* to) {
        if (pass == last_.pass && row == last_.row) surplus_ = row_.size() * 2 + mostSurplus;
        png_read_row(png_, to, nullptr);
    }

    void layOnWhite(const uint8_t* from, uint8_t* to) const {
        for (uint32_t x = 0; x < size_.width; ++x, from += channels_, to += 3) {
            const unsigned alpha = from[3];
            for (size_t i = 0; i < 3; ++i)
                to[i] = alpha == 255
                            ? from[i]
                            : static_cast<uint8_t>((from[i] * alpha + 255 * (255 - alpha) + 127) / 255);
        }
    }

    [[noreturn]] void fail() { throw DecodingFailure(text_); }

    static PngDecoder& of(void* self) { return *static_cast<PngDecoder*>(self); }

    [[noreturn]] static void giveUp(png_structp png, const char* text) {
        PngDecoder& self = of(png_get_error_ptr(png));
        self.note(text);
        std::longjmp(self.escape_, 1);
    }

    static void noteWarning(png_structp png, const char* text) {
        PngDecoder& self = of(png_get_error_ptr(png));
        if (self.reading_) self.note(text);  // what it says of the header has no influence on the picture
    }

    void note(const char* text) {
        if (text_[0] == 0) std::snprintf(text_, sizeof text_, "%s", text);
    }

    /// The library would decompress all that comes behind the last row, only to throw it away.
    static void giveBytes(png_structp png, png_bytep to, size_t size) {
        PngDecoder& self = of(png_get_io_ptr(png));
        const ByteView bytes = self.rest_.first(std::min(size, self.rest_.size()));
        if (bytes.size() < size && (bytes.empty() || !self.force_)) png_error(png, "the file is too short");
        if (size > self.surplus_) png_error(png, "there are more data than pixels");
        std::ranges::fill(std::ranges::copy(bytes, to).out, to + size, uint8_t{0});
        self.rest_ = self.rest_.subspan(bytes.size());
        self.surplus_ -= size;
    }

    ByteView rest_;
    const bool force_;
    ReadStructures structures_;
    png_structp& png_ = structures_.png;
    png_infop& info_ = structures_.info;
    std::jmp_buf escape_;
    char text_[200] = "";
    bool reading_ = false;
    Extent size_{};
    unsigned channels_ = 0;
    int passes_ = 1;
    uint32_t next_ = 0;
    LastRead last_{};
    size_t surplus_ = SIZE_MAX;  // bytes of the file that may still be asked for
    Bytes row_;
    Bytes whole_;
};

}  // namespace

std::unique_ptr<Decoder> makePngDecoder(ByteView file, bool force) {
    return std::make_unique<PngDecoder>(file, force);
}

}  // namespace tool
