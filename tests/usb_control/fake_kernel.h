/// The kernel's side of one USB printer: the files that the control library opens, and a stand-in for what it
/// asks of them by ioctl.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fake {

using Bytes = std::vector<uint8_t>;
using Packets = std::vector<Bytes>;

constexpr size_t packetSize = 64;

Bytes goodDescriptors();

/// The number of the bus, another one in each test that runs at the same time.
unsigned bus();

/// Back to a bus with one printer, at port 1-1, that answers nothing.
void reset();

void plug(const std::string& port, const std::string& serial = "0001",
          const Bytes& descriptors = goodDescriptors());
void unplug(const std::string& port);
void forbid(const std::string& port);  // its node, to this process

/// What the printer gives back for bytes that it has taken, packet by packet.
void answerWith(std::function<Packets(const Bytes&)> answer);

/// All that the printer has taken.
Bytes taken();

/// While it holds, the printer takes nothing.
void holdBack(bool holds);

/// One request with this number fails, after so many that don't.
void failRequest(unsigned long request, unsigned before, int error);
void failNothing();

/// The next transfer of the direction ends with a status, after so many bytes.
void endNextTransfer(bool isIn, int status, size_t length = 0);

/// Who has the interface: nobody for "", the kernel's driver, or somebody else's program for "usbfs".
void giveInterfaceTo(const std::string& driver);

/// Somebody takes the interface from its holder, and lets go of it.
void rob();

unsigned count(unsigned long request);

}  // namespace fake
