#pragma once

#include <cstdint>

namespace trace {

/// What a trace calls a command. Readers of traces look for these texts, misspelt ones too.
struct CommandName {
    uint8_t commandNo;
    uint8_t commandClass;
    const char* name;
};

constexpr CommandName commandNames[] = {
    {0x01, 0x40, "Print Command"},
    {0x02, 0x40, "Print Long Command"},
    {0x03, 0x40, "Flash LED Command"},
    {0x04, 0x40, "Reset Command"},
    {0x05, 0x40, "Read Tone Curve Command"},
    {0x06, 0x40, "Operation Button Command"},
    {0x07, 0x40, "Reset Error Log Command"},
    {0x01, 0x00, "Get Status Command"},
    {0x02, 0x00, "Get Media Information Command"},
    {0x03, 0x00, "Get Model Name Command"},
    {0x04, 0x00, "Get Error Log Command"},
    {0x01, 0xC0, "Self-diagnosis execution Command"},
    {0x02, 0xC0, "Batch Self-diagnosis Result acquisition Command"},
    {0x03, 0xC0, "Get Firmware Information Command"},
    {0x04, 0xC0, "Update Command"},
    {0x05, 0xC0, "Get EEPROM Maintenance Command"},
    {0x06, 0xC0, "Set EEPROM Maintenance Command"},
    {0x07, 0xC0, "Set Printer Unique String Commnad"},
    {0x01, 0x80, "USB firmware download command"},
    {0x02, 0x80, "Maintenance Permission Command"},
    {0x03, 0x80, "Get Printer Unique String Commnad"},
    {0xFF, 0xC0, "Universal Command"},
};

}  // namespace trace
