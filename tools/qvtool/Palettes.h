// Palettes of three-byte entries, blue first.
#ifndef QV_TOOLS_QVTOOL_PALETTES_H
#define QV_TOOLS_QVTOOL_PALETTES_H

#include <string>
#include <vector>

namespace qvtool {

const std::vector<std::string>& PaletteNames();

// 2^bits entries of a palette that the tool brings, evenly spaced.
std::vector<unsigned char> NamedPalette(const std::string& name, int bits);

// Reads a text file with one #rrggbb a line; empty lines and lines that begin with // are passed
// over. Missing entries are black; more than 2^bits are an error.
std::vector<unsigned char> ReadPalette(const std::string& path, int bits);

}  // namespace qvtool

#endif
