#include <array>
#include <cstdio>

#include <jpeglib.h>

#include "decoders.h"
#include "escape.h"

namespace tool {
namespace {

/// What the library calls when something is wrong.
struct Reports : jpeg_error_mgr {
    std::jmp_buf escape;
    std::array<char, JMSG_LENGTH_MAX> text;  // the first one
};

void note(j_common_ptr info) {
    auto& reports = static_cast<Reports&>(*info->err);
    if (reports.text[0] == 0) reports.format_message(info, reports.text.data());
}

[[noreturn]] void giveUp(j_common_ptr info) {
    auto& reports = static_cast<Reports&>(*info->err);
    reports.text[0] = 0;
    note(info);
    std::longjmp(reports.escape, 1);
}

void noteWarning(j_common_ptr info, int level) {
    if (level < 0) note(info);  // others only trace what happens
}

struct Decompressor : jpeg_decompress_struct {
    Decompressor() : jpeg_decompress_struct{} {}
    ~Decompressor() { jpeg_destroy_decompress(this); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;
};

class JpegDecoder : public Decoder {
public:
    explicit JpegDecoder(ByteView file) {
        info_.err = jpeg_std_error(&reports_);
        reports_.error_exit = giveUp;
        reports_.emit_message = noteWarning;
        reports_.text[0] = 0;
        const bool begun = succeeds(reports_.escape, [&] {
            jpeg_create_decompress(&info_);
            jpeg_mem_src(&info_, file.data(), file.size());
            jpeg_read_header(&info_, TRUE);
        });
        if (!begun) fail();
        if (info_.num_components == 4) model_ = Model::cmyk;
        info_.out_color_space = model_ == Model::cmyk ? JCS_CMYK : JCS_RGB;
    }

    Model model() const override { return model_; }

    Extent size() const override { return {info_.image_width, info_.image_height}; }

    unsigned start(unsigned reduction) override {
        info_.scale_num = 1;
        info_.scale_denom = reduction;
        if (!succeeds(reports_.escape, [&] { jpeg_start_decompress(&info_); })) fail();
        return reduction;
    }

    void read(uint8_t* row) override {
        if (!succeeds(reports_.escape, [&] { jpeg_read_scanlines(&info_, &row, 1); })) fail();
        // Those who write the marker store inks the other way round.
        if (model_ == Model::cmyk && !info_.saw_Adobe_marker)
            for (uint8_t* byte = row; byte < row + 4 * size_t{info_.output_width}; ++byte)
                *byte = static_cast<uint8_t>(~*byte);
    }

    std::string complaint() const override { return reports_.text.data(); }

private:
    [[noreturn]] void fail() { throw DecodingFailure(reports_.text.data()); }

    Reports reports_{};
    Decompressor info_;
    Model model_ = Model::rgb;
};

}  // namespace

std::unique_ptr<Decoder> makeJpegDecoder(ByteView file) {
    return std::make_unique<JpegDecoder>(file);
}

}  // namespace tool
