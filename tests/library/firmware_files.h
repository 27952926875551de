/// Firmware files for tests, in a folder of their own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "calls.h"
#include "firmware/srecord_file.h"
#include "platform/thread.h"
#include "support/bytes.h"

/// One S-record with right count and checksum, unless they are to be off by something.
std::string record(char type, uint32_t address, const Bytes& data, int countError = 0, int checksumError = 0);

class FirmwareFolder {
public:
    FirmwareFolder() { std::filesystem::create_directories(folder_); }
    ~FirmwareFolder() { std::filesystem::remove_all(folder_); }

    std::string path(const std::string& name = "firmware") const { return (folder_ / name).string(); }

    std::string write(const std::string& text) const {
        std::ofstream(path(), std::ios::binary) << text;
        return path();
    }

    /// Nothing when the file is not there.
    std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    const std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                          ("zprusb-firmware-" + std::to_string(platform::currentProcessId()));
};

/// What a read gave. An image belongs to a success only.
struct FirmwareRead {
    explicit FirmwareRead(firmware::SRecordJob wanted) : job(wanted), code(firmware::readSRecordFile(job)) {
        EXPECT_EQ(job.image != nullptr, code == 0 && job.scanOnly == 0);
        noteCode(code);
        if (job.image != nullptr) image.assign(job.image, job.image + job.imageLength);
        std::free(job.image);
    }

    firmware::SRecordJob job;
    const uint16_t code;
    Bytes image;
};
