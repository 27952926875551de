/// Scaling pictures, row by row.
#pragma once

#include <functional>
#include <vector>

#include "picture.h"

namespace tool {

/// A pixel in linear light, up to four channels.
using LinearPixel __attribute__((vector_size(16))) = float;

/// Scales in linear light, so that fine patterns keep their brightness, with a cubic filter (Catmull-Rom) that
/// leaves a picture that has the right size already as it is. It keeps only the rows that it is adding up.
class Scaler {
public:
    /// Takes a row of the result, which is valid during the call.
    using Sink = std::function<void(uint32_t number, const uint8_t* row)>;

    /// @param source the size of the picture whose rows come.
    /// @param channels in each pixel, one byte each: 3 or 4.
    Scaler(Extent source, const Stretch& across, const Stretch& down, unsigned channels, Sink sink);

    /// Takes the next row, from the top. The last one completes the result.
    void add(const uint8_t* row);

private:
    /// The source pixels that make a dot, and their shares of it.
    struct Column {
        uint32_t first;
        uint32_t count;
        size_t shares;  // where they begin in shares_
    };

    /// A row of the result in the making.
    struct Sum {
        std::vector<LinearPixel> pixels;
        float shares = 0;
    };

    void planColumns(const Stretch& across);
    void scaleAcross(const uint8_t* row);
    void addTo(Sum& sum, float share);
    void finish(Sum& sum, uint32_t number);

    const Extent source_;
    const unsigned channels_;
    const Sink sink_;
    const Stretch down_;
    std::vector<Column> columns_;
    std::vector<float> shares_;
    uint32_t firstColumn_ = 0, endColumn_ = 0;  // of the source, that are needed
    std::vector<LinearPixel> light_, scaled_;   // the row of the source; the same scaled
    std::vector<Sum> sums_;                     // row n of the result is in place n % size
    Bytes finished_;
    uint32_t next_ = 0;  // row of the source
    uint32_t done_ = 0;  // rows of the result
};

}  // namespace tool
