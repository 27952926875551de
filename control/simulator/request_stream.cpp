#include "request_stream.h"

#include <algorithm>

#include "commands.h"

namespace simulator {

using control::forever;
using control::Transfer;

std::optional<Bytes> RequestStream::takeRequest(Milliseconds rest) {
    if (waiting_.empty() && !fill(forever)) return std::nullopt;
    Bytes request(requestHeaderSize);
    request.resize(take(request, rest));
    if (request.size() < requestHeaderSize) return request;
    const auto length = requestLength(request);
    if (!length) return takeAllBuffered(std::move(request));
    request.resize(*length);
    const size_t taken = take(std::span(request).subspan(requestHeaderSize), rest);
    request.resize(requestHeaderSize + taken);
    return request;
}

size_t RequestStream::take(std::span<uint8_t> place, Milliseconds limit) {
    size_t taken = takeBuffered(place);
    while (taken < place.size()) {
        const std::span<uint8_t> missing = place.subspan(taken);
        size_t count = 0;
        if (missing.size() >= buffer_.size()) {  // not worth a copy
            if (channel_.read(missing.data(), missing.size(), count, limit) != Transfer::done) break;
        } else {
            if (!fill(limit)) break;
            count = takeBuffered(missing);
        }
        taken += count;
    }
    return taken;
}

bool RequestStream::fill(Milliseconds limit) {
    size_t count = 0;
    if (channel_.read(buffer_.data(), buffer_.size(), count, limit) != Transfer::done) return false;
    waiting_ = std::span(buffer_).first(count);
    return true;
}

size_t RequestStream::takeBuffered(std::span<uint8_t> place) {
    const size_t count = std::min(place.size(), waiting_.size());
    std::copy_n(waiting_.begin(), count, place.begin());
    waiting_ = waiting_.subspan(count);
    return count;
}

Bytes RequestStream::takeAllBuffered(Bytes start) {
    start.insert(start.end(), waiting_.begin(), waiting_.end());
    waiting_ = {};
    return start;
}

}  // namespace simulator
