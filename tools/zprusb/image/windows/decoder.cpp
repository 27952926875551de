#include "decoder.h"

#include <initguid.h>
#include <objbase.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

constexpr size_t samples = 4;  // in both formats that are asked for
constexpr uint32_t rowsAtOnce = 64;

/// Owns a reference to an object of the imaging component.
template <class Interface>
class Reference {
public:
    Reference() = default;
    ~Reference() {
        if (object_ != nullptr) object_->Release();
    }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    Interface** place() { return &object_; }
    Interface* get() const { return object_; }
    Interface* operator->() const { return object_; }

private:
    Interface* object_ = nullptr;
};

void require(HRESULT result, const char* action) {
    if (SUCCEEDED(result)) return;
    char text[100];
    std::snprintf(text, sizeof text, "the system's decoder failed to %s (0x%08lX)", action,
                  static_cast<unsigned long>(result));
    throw DecodingFailure(text);
}

/// The component's own formats for these models have blue first, and no ink as zero.
class SystemDecoder : public Decoder {
public:
    explicit SystemDecoder(ByteView file) {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        require(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                 reinterpret_cast<void**>(factory_.place())),
                "start");
        require(factory_->CreateStream(stream_.place()), "start");
        require(stream_->InitializeFromMemory(const_cast<BYTE*>(file.data()), static_cast<DWORD>(file.size())),
                "open the file");
        require(factory_->CreateDecoderFromStream(stream_.get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                                  decoder_.place()),
                "open the file");
        require(decoder_->GetFrame(0, frame_.place()), "find the picture");
        source_ = frame_.get();
        UINT width = 0, height = 0;
        require(frame_->GetSize(&width, &height), "tell the size");
        size_ = {width, height};
        WICPixelFormatGUID format;
        require(frame_->GetPixelFormat(&format), "tell the colours");
        if (IsEqualGUID(format, GUID_WICPixelFormat32bppCMYK)) model_ = Model::cmyk;
    }

    Model model() const override { return model_; }
    Extent size() const override { return size_; }

    /// The decoders under Wine can't make a picture smaller, so they are never asked to.
    unsigned start(unsigned) override {
        if (model_ == Model::cmyk) return 1;
        require(factory_->CreateFormatConverter(converter_.place()), "convert the colours");
        require(converter_->Initialize(frame_.get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                       nullptr, 0, WICBitmapPaletteTypeCustom),
                "convert the colours");
        source_ = converter_.get();
        return 1;
    }

    void read(uint8_t* row) override {
        const uint32_t place = next_++ % rowsAtOnce;
        const size_t stride = size_.width * samples;
        if (place == 0) readRows();
        if (model_ == Model::cmyk) return turnInks(rows_.data() + place * stride, row);
        layOnWhite(rows_.data() + place * stride, row);
    }

    /// The component keeps to itself what it puts up with.
    std::string complaint() const override { return {}; }

private:
    void readRows() {
        const uint32_t first = next_ - 1, count = std::min(rowsAtOnce, size_.height - first);
        const auto stride = static_cast<UINT>(size_.width * samples);
        rows_.resize(size_t{stride} * count);
        const WICRect part{0, static_cast<INT>(first), static_cast<INT>(size_.width), static_cast<INT>(count)};
        require(source_->CopyPixels(&part, stride, static_cast<UINT>(rows_.size()), rows_.data()), "decode it");
    }

    void turnInks(const uint8_t* from, uint8_t* to) const {
        for (size_t i = 0; i < size_.width * samples; ++i) to[i] = static_cast<uint8_t>(~from[i]);
    }

    void layOnWhite(const uint8_t* from, uint8_t* to) const {
        for (uint32_t x = 0; x < size_.width; ++x, from += samples, to += 3) {
            const unsigned alpha = from[3];
            for (size_t i = 0; i < 3; ++i)
                to[i] = static_cast<uint8_t>((from[2 - i] * alpha + 255 * (255 - alpha) + 127) / 255);
        }
    }

    Reference<IWICImagingFactory> factory_;
    Reference<IWICStream> stream_;
    Reference<IWICBitmapDecoder> decoder_;
    Reference<IWICBitmapFrameDecode> frame_;
    Reference<IWICFormatConverter> converter_;
    IWICBitmapSource* source_ = nullptr;
    Extent size_{};
    Model model_ = Model::rgb;
    uint32_t next_ = 0;
    Bytes rows_;
};

}  // namespace

std::unique_ptr<Decoder> makeDecoder(ByteView file, const Inspection& inspection, bool) {
    // Wine's decoder transforms their colours nevertheless.
    if (inspection.isUntransformed &&
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr)
        throw DecodingFailure("Wine can't decode a JPEG file whose RGB or inks are stored as they are");
    return std::make_unique<SystemDecoder>(file);
}

}  // namespace tool
