#include "host/plot/pngfile.h"

#include <cmath>
#include <cstdint>
#include <string_view>
#include <vector>
#include <zlib.h>

namespace host {

namespace {

void appendNumber(std::string& bytes, std::uint32_t number) // most significant byte first
{
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
}

void appendChunk(std::string& file, std::string_view type, std::string_view data) {
    appendNumber(file, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = file.size();
    file.append(type).append(data);
    const auto* checked = reinterpret_cast<const Bytef*>(file.data() + start);
    appendNumber(file, static_cast<std::uint32_t>(crc32(0, checked, static_cast<uInt>(file.size() - start))));
}

// Packs rows as they are given.
class Packer {
public:
    Packer() : mIsGood(deflateInit2(&mStream, 1, Z_DEFLATED, 15, 9, Z_RLE) == Z_OK), mBuffer(256 * 1024) {}
    ~Packer() { deflateEnd(&mStream); }
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    void put(const std::vector<unsigned char>& row) {
        mStream.next_in = const_cast<Bytef*>(row.data());
        mStream.avail_in = static_cast<uInt>(row.size());
        run(Z_NO_FLUSH);
    }
    bool finish() {
        run(Z_FINISH);
        return mIsGood;
    }
    const std::string& data() const { return mData; }

private:
    void run(int flush) {
        do {
            mStream.next_out = mBuffer.data();
            mStream.avail_out = static_cast<uInt>(mBuffer.size());
            mIsGood = mIsGood && deflate(&mStream, flush) != Z_STREAM_ERROR;
            mData.append(reinterpret_cast<const char*>(mBuffer.data()), mBuffer.size() - mStream.avail_out);
        } while (mIsGood && mStream.avail_out == 0);
    }

    z_stream mStream{};
    bool mIsGood;
    std::vector<unsigned char> mBuffer;
    std::string mData;
};

} // namespace

std::string pngData(const QImage& image, double pixelsPerMillimetre) {
    const int width = image.width(), height = image.height();
    Packer packer;
    std::vector<unsigned char> row(static_cast<std::size_t>(width) * 3 + 1);
    for (int y = 0; y < height; ++y) {
        const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        unsigned char* out = row.data() + 1; // the first byte says that the row is not filtered
        for (int x = 0; x < width; ++x) {
            *out++ = static_cast<unsigned char>(qRed(pixels[x]));
            *out++ = static_cast<unsigned char>(qGreen(pixels[x]));
            *out++ = static_cast<unsigned char>(qBlue(pixels[x]));
        }
        packer.put(row);
    }
    if (!packer.finish())
        return {};
    std::string header;
    appendNumber(header, static_cast<std::uint32_t>(width));
    appendNumber(header, static_cast<std::uint32_t>(height));
    header += std::string_view("\x08\x02\0\0\0", 5); // eight bits, red green blue
    std::string density;
    const auto pixelsPerMetre = static_cast<std::uint32_t>(std::lround(pixelsPerMillimetre * 1000));
    appendNumber(density, pixelsPerMetre);
    appendNumber(density, pixelsPerMetre);
    density += '\x01';

    std::string file = "\x89PNG\r\n\x1A\n";
    appendChunk(file, "IHDR", header);
    appendChunk(file, "pHYs", density);
    appendChunk(file, "IDAT", packer.data());
    appendChunk(file, "IEND", {});
    return file;
}

} // namespace host
