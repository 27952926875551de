#include "firmware_records.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdio>
#include <map>
#include <optional>

#include "firmware/hexadecimal.h"
#include "text.h"

namespace tool {
namespace {

constexpr size_t headSize = 4;  // type and count

struct Record {
    char type;
    uint64_t address;  // of a count record: the number
    Bytes data;
    bool isSound;  // its sum is right
};

/// Bytes at any addresses, as far as they were set.
class SparseMemory {
public:
    /// @return whether another value was there.
    bool set(uint64_t address, uint8_t value) {
        Page& page = pages_[address / pageSize];
        const size_t at = address % pageSize;
        const bool differs = page.isSet[at] && page.bytes[at] != value;
        page.isSet[at] = true;
        page.bytes[at] = value;
        return differs;
    }

private:
    static constexpr size_t pageSize = 4096;
    struct Page {
        std::array<uint8_t, pageSize> bytes;
        std::bitset<pageSize> isSet;
    };
    std::map<uint64_t, Page> pages_;
};

size_t addressSize(char type) {
    switch (type) {
        case '2':
        case '8':
            return 3;
        case '3':
        case '7':
            return 4;
        default:
            return 2;
    }
}

/// What is missing at the end of the text counts as zeros.
Record recordAt(ByteView text, size_t at) {
    const auto byteAt = [&](size_t place) {
        return place + 2 <= text.size() ? firmware::decodeByte(text.data() + place) : uint8_t{0};
    };
    const size_t count = byteAt(at + 2);
    Bytes fields;
    for (size_t i = 0; i < count; ++i) fields.push_back(byteAt(at + headSize + 2 * i));
    unsigned sum = static_cast<unsigned>(count);
    for (const uint8_t field : fields) sum += field;
    Record record{static_cast<char>(text[at + 1]), 0, {}, (sum & 0xFF) == 0xFF};
    const size_t size = addressSize(record.type);
    fields.resize(std::max(count, size + 1));
    for (size_t i = 0; i < size; ++i) record.address = record.address << 8 | fields[i];
    record.data.assign(fields.begin() + static_cast<ptrdiff_t>(size), fields.end() - 1);
    return record;
}

/// Follows the records through the file.
class Examination {
public:
    void take(const Record& record) {
        if (record.type >= '1' && record.type <= '3') takeData(record);
        if (record.type == '5') takeCount(record);
        if (record.type >= '7') hasEnd_ = true;
    }

    FirmwareRecords finish() {
        merge();
        if (!hasEnd_) doubt("It has no end record, as a file that was cut off.");
        if (firstOverlap_)
            doubt("Records set the same addresses to different bytes, first at " +
                  longHexadecimal(*firstOverlap_) + "; the last one counts.");
        if (afterEnd_ > 0)
            doubt("After the end record " + counted(afterEnd_, "data record comes", "data records come") + ".");
        return std::move(found_);
    }

private:
    void doubt(const std::string& sentence) { found_.doubts.push_back(sentence); }

    void takeData(const Record& record) {
        ++records_;
        afterEnd_ += hasEnd_;
        const size_t length = record.data.size();
        for (size_t i = 0; i < length; ++i) {
            const uint64_t address = record.address + i;
            if (memory_.set(address, record.data[i]) && !firstOverlap_) firstOverlap_ = address;
        }
        if (length > 0) found_.ranges.push_back({record.address, record.address + length - 1});
    }

    void takeCount(const Record& record) {
        constexpr uint64_t countable = 0x10000;
        if (!record.isSound) return doubt("Its count record is damaged.");
        if (record.address == records_ % countable) return;
        doubt("Its count record says " + std::to_string(record.address) + ", but before it " +
              counted(records_, "data record comes", "data records come") + ".");
    }

    void merge() {
        std::ranges::sort(found_.ranges, {}, &AddressRange::first);
        std::vector<AddressRange> merged;
        for (const AddressRange& range : found_.ranges) {
            if (merged.empty() || range.first > merged.back().last + 1)
                merged.push_back(range);
            else
                merged.back().last = std::max(merged.back().last, range.last);
        }
        found_.ranges = std::move(merged);
    }

    FirmwareRecords found_;
    SparseMemory memory_;
    size_t records_ = 0;
    size_t afterEnd_ = 0;
    bool hasEnd_ = false;
    std::optional<uint64_t> firstOverlap_;
};

}  // namespace

FirmwareRecords examineRecords(ByteView text) {
    Examination examination;
    for (size_t at = 0;;) {
        const auto start = std::find(text.begin() + static_cast<ptrdiff_t>(at), text.end(), uint8_t{'S'});
        at = static_cast<size_t>(start - text.begin());
        if (at + headSize > text.size()) return examination.finish();
        examination.take(recordAt(text, at));
        const size_t count = firmware::decodeByte(text.data() + at + 2);
        // The library takes the count of a count record for characters, and the rest for text between records.
        at = std::min(text.size(), at + headSize + (text[at + 1] == '5' ? count : 2 * count));
    }
}

std::string longHexadecimal(uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(number));
    return text;
}

}  // namespace tool
