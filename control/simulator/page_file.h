/// The files that a page becomes: NNNN.png, the picture, and NNNN.json beside it, its data sheet.
#pragma once

#include <filesystem>

#include "page.h"

namespace simulator {

/// Writes both files under the next free number of the printer's output folder, which several printers and
/// processes may share. Each appears whole, the data sheet last.
/// @param arrived how many bytes of the pixels came from the host.
/// @return the picture's path.
/// @throws std::exception when the folder or a file can't be written.
std::filesystem::path writePage(const PrinterSetup& printer, const Page& page, const Bytes& pixels,
                                size_t arrived);

}  // namespace simulator
