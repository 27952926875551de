/// The host's bytes, cut into requests and data.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "common/channel.h"
#include "protocol.h"

namespace simulator {

using control::Channel;
using control::Milliseconds;

class RequestStream {
public:
    explicit RequestStream(Channel& channel) : channel_(channel) {}

    /// Waits for the next request without a limit.
    /// @param rest how long its later bytes may take.
    /// @return the request, cut short when bytes were missing; for bytes with which no request begins all that
    ///         has come with them, as nothing says where the next one begins; none when the channel has ended.
    std::optional<Bytes> takeRequest(Milliseconds rest);

    /// Fills the place with data; each part of them may take as long as the limit says.
    /// @return how many bytes have come, fewer only when time was up or the channel has ended.
    size_t take(std::span<uint8_t> place, Milliseconds limit);

private:
    bool fill(Milliseconds limit);
    size_t takeBuffered(std::span<uint8_t> place);
    Bytes takeAllBuffered(Bytes start);

    Channel& channel_;
    std::array<uint8_t, 65536> buffer_;
    std::span<const uint8_t> waiting_;  // the part of the buffer that nobody has taken yet
};

}  // namespace simulator
