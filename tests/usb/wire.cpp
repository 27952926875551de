#include "wire.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace usb_test {
namespace {

constexpr uint8_t getStatus = 0, clearFeature = 1, getDescriptor = 6;
constexpr uint8_t fromDevice = 0x80, toEndpoint = 0x02, fromPrinterClass = 0xA1, toPrinterClass = 0x21;

Wire& wireOf(void* wire) {
    return *static_cast<Wire*>(wire);
}

int connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    const int link = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(link, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return link;
    close(link);
    return -1;
}

int outcome(ssize_t count) {
    if (count < 0 && errno == EAGAIN) return 0;
    return count <= 0 ? -1 : static_cast<int>(count);
}

int readLink(void* wire, uint8_t* data, int count) {
    return outcome(recv(wireOf(wire).link(), data, static_cast<size_t>(count), MSG_DONTWAIT));
}

int writeLink(void* wire, uint8_t* data, int count) {
    return outcome(send(wireOf(wire).link(), data, static_cast<size_t>(count), MSG_DONTWAIT | MSG_NOSIGNAL));
}

void logWarning(void*, int level, const char* text) {
    if (level <= usbredirparser_warning) std::fprintf(stderr, "%s\n", text);
}

}  // namespace

void Wire::plug(const std::string& path) {
    link_ = connectTo(path);
    if (link_ < 0) return;
    parser_ = usbredirparser_create();
    parser_->priv = this;
    parser_->log_func = logWarning;
    parser_->read_func = readLink;
    parser_->write_func = writeLink;
    setCallbacks();
    setTransferCallbacks();
    uint32_t abilities[USB_REDIR_CAPS_SIZE] = {};
    for (const int ability : {usb_redir_cap_connect_device_version, usb_redir_cap_ep_info_max_packet_size,
                              usb_redir_cap_64bits_ids, usb_redir_cap_32bits_bulk_length}) {
        usbredirparser_caps_set_cap(abilities, ability);
    }
    usbredirparser_init(parser_, "usb_printer", abilities, USB_REDIR_CAPS_SIZE, usbredirparser_fl_usb_host);
}

void Wire::unplug() {
    if (!isPlugged()) return;
    close(std::exchange(link_, -1));
    usbredirparser_destroy(std::exchange(parser_, nullptr));
    outs_.clear();
    ins_.clear();
    answer_.clear();
    isOutHalted_ = isInHalted_ = false;
}

void Wire::introduce() {
    usb_redir_interface_info_header interfaces{};
    interfaces.interface_count = 1;
    interfaces.interface_class[0] = kind_.interfaceClass();
    interfaces.interface_subclass[0] = kind_.interfaceSubclass();
    interfaces.interface_protocol[0] = kind_.interfaceProtocol();
    usbredirparser_send_interface_info(parser_, &interfaces);
    usb_redir_ep_info_header endpoints{};
    std::ranges::fill(endpoints.type, usb_redir_type_invalid);
    constexpr int firstIn = 16;
    for (const int index : {0, firstIn}) {
        endpoints.type[index] = usb_redir_type_control;
        endpoints.max_packet_size[index] = 64;
    }
    for (const int index : {int{outEndpoint}, firstIn + (inEndpoint & 0x0F)}) {
        endpoints.type[index] = usb_redir_type_bulk;
        endpoints.max_packet_size[index] = kind_.packetSize();
    }
    usbredirparser_send_ep_info(parser_, &endpoints);
    usb_redir_device_connect_header device{};
    device.speed = kind_.isFullSpeed ? usb_redir_speed_full : usb_redir_speed_high;
    device.vendor_id = vendor;
    device.product_id = product;
    device.device_version_bcd = 0x0100;
    usbredirparser_send_device_connect(parser_, &device);
}

void Wire::setCallbacks() {
    parser_->hello_func = [](void* wire, usb_redir_hello_header*) { wireOf(wire).introduce(); };
    parser_->reset_func = [](void* wire) { wireOf(wire).reset(); };
    parser_->set_configuration_func = [](void* wire, uint64_t id, usb_redir_set_configuration_header* header) {
        usb_redir_configuration_status_header status{usb_redir_success, header->configuration};
        usbredirparser_send_configuration_status(wireOf(wire).parser_, id, &status);
    };
    parser_->get_configuration_func = [](void* wire, uint64_t id) {
        usb_redir_configuration_status_header status{usb_redir_success, 1};
        usbredirparser_send_configuration_status(wireOf(wire).parser_, id, &status);
    };
    parser_->set_alt_setting_func = [](void* wire, uint64_t id, usb_redir_set_alt_setting_header* header) {
        usb_redir_alt_setting_status_header status{usb_redir_success, header->interface, header->alt};
        usbredirparser_send_alt_setting_status(wireOf(wire).parser_, id, &status);
    };
    parser_->get_alt_setting_func = [](void* wire, uint64_t id, usb_redir_get_alt_setting_header* header) {
        usb_redir_alt_setting_status_header status{usb_redir_success, header->interface, 0};
        usbredirparser_send_alt_setting_status(wireOf(wire).parser_, id, &status);
    };
}

void Wire::setTransferCallbacks() {
    parser_->cancel_data_packet_func = [](void* wire, uint64_t id) { wireOf(wire).cancel(id); };
    parser_->control_packet_func = [](void* wire, uint64_t id, usb_redir_control_packet_header* header,
                                      uint8_t* data, int) {
        wireOf(wire).control(id, *header);
        usbredirparser_free_packet_data(wireOf(wire).parser_, data);
    };
    parser_->bulk_packet_func = [](void* wire, uint64_t id, usb_redir_bulk_packet_header* header, uint8_t* data,
                                   int length) {
        wireOf(wire).bulk(id, *header, data, length);
        usbredirparser_free_packet_data(wireOf(wire).parser_, data);
    };
}

Bytes Wire::answerControl(const usb_redir_control_packet_header& header, uint8_t& status) {
    const auto upper = static_cast<uint8_t>(header.value >> 8), lower = static_cast<uint8_t>(header.value);
    Bytes data;
    if (header.requesttype == fromDevice && header.request == getDescriptor) {
        data = descriptor(kind_, upper, lower);
        if (data.empty()) status = usb_redir_stall;
    } else if (header.requesttype == fromDevice && header.request == getStatus) {
        data = {1, 0};
    } else if (header.requesttype == fromPrinterClass) {
        data = header.request == 0 ? Bytes{0, 2} : Bytes{0x18};  // no identification; selected, and no fault
    } else if (header.requesttype == toEndpoint && header.request == clearFeature) {
        (header.index == outEndpoint ? isOutHalted_ : isInHalted_) = false;
    } else if (header.requesttype != toPrinterClass) {
        status = usb_redir_stall;
    }
    return data;
}

void Wire::control(uint64_t id, usb_redir_control_packet_header header) {
    header.status = usb_redir_success;
    Bytes data = answerControl(header, header.status);
    if (data.size() > header.length) data.resize(header.length);
    const bool isIn = (header.requesttype & fromDevice) != 0;
    if (isIn) header.length = static_cast<uint16_t>(data.size());
    usbredirparser_send_control_packet(parser_, id, &header, data.data(),
                                       isIn ? static_cast<int>(data.size()) : 0);
}

void Wire::bulk(uint64_t id, const usb_redir_bulk_packet_header& header, const uint8_t* data, int length) {
    if (header.endpoint == outEndpoint) {
        outs_.push_back({id, Bytes(data, data + length)});
    } else {
        ins_.push_back({id, header.length | size_t{header.length_high} << 16});
    }
}

void Wire::complete(uint64_t id, uint8_t endpoint, uint8_t status, size_t length, const Bytes& data) {
    usb_redir_bulk_packet_header header{};
    header.endpoint = endpoint;
    header.status = status;
    header.length = static_cast<uint16_t>(length);
    header.length_high = static_cast<uint16_t>(length >> 16);
    auto* bytes = const_cast<uint8_t*>(data.data());
    usbredirparser_send_bulk_packet(parser_, id, &header, bytes, static_cast<int>(data.size()));
}

void Wire::cancel(uint64_t id) {
    const auto out = std::ranges::find(outs_, id, &Out::id);
    const auto in = std::ranges::find(ins_, id, &In::id);
    if (out != outs_.end()) {
        complete(id, outEndpoint, usb_redir_cancelled, out->done);
        outs_.erase(out);
    } else if (in != ins_.end()) {
        complete(id, inEndpoint, usb_redir_cancelled, 0);
        ins_.erase(in);
    }
}

void Wire::reset() {
    outs_.clear();
    ins_.clear();
    answer_.clear();
    simulated_.stop();
    simulated_.start();
}

// @return whether the printer has taken all of it.
bool Wire::passOn(Out& out) {
    while (out.done < out.data.size()) {
        const ssize_t count =
            write(simulated_.requests(), out.data.data() + out.done, out.data.size() - out.done);
        if (count <= 0) return false;
        out.done += static_cast<size_t>(count);
    }
    return true;
}

void Wire::moveRequests() {
    while (!outs_.empty() && (isOutHalted_ || passOn(outs_.front()))) {
        const Out& out = outs_.front();
        complete(out.id, outEndpoint, isOutHalted_ ? usb_redir_stall : usb_redir_success, out.done);
        outs_.pop_front();
    }
}

void Wire::moveAnswer() {
    while (!ins_.empty() && (isInHalted_ || !answer_.empty())) {
        const size_t length = isInHalted_ ? 0 : std::min(ins_.front().length, answer_.size());
        const auto end = answer_.begin() + static_cast<ptrdiff_t>(length);
        complete(ins_.front().id, inEndpoint, isInHalted_ ? usb_redir_stall : usb_redir_success, length,
                 Bytes(answer_.begin(), end));
        answer_.erase(answer_.begin(), end);
        ins_.pop_front();
    }
}

bool Wire::wantsToSend() const {
    return usbredirparser_has_data_to_write(parser_) > 0;
}

bool Wire::receive() {
    return usbredirparser_do_read(parser_) != usbredirparser_read_io_error;
}

bool Wire::move() {
    moveRequests();
    moveAnswer();
    return !wantsToSend() || usbredirparser_do_write(parser_) >= 0;
}

bool Wire::takeAnswer() {
    uint8_t bytes[4096];
    const ssize_t count = read(simulated_.answers(), bytes, sizeof bytes);
    if (count <= 0) return false;
    answer_.assign(bytes, bytes + count);
    return true;
}

}  // namespace usb_test
