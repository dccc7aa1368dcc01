#include "host/plot/pdffile.h"

#include "host/plot/textbuffer.h"

#include <cstdio>
#include <libdeflate.h>
#include <memory>
#include <new>
#include <string>

namespace host {

PdfFile::Packed PdfFile::pack(std::string data) {
    constexpr int fast = 1; // higher levels take several times as long for a tenth of the size
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(fast), libdeflate_free_compressor);
    if (!compressor)
        throw std::bad_alloc();
    const std::size_t room = libdeflate_zlib_compress_bound(compressor.get(), data.size());
    Packed packed{std::make_unique_for_overwrite<char[]>(room), 0, {}};
    packed.size =
        libdeflate_zlib_compress(compressor.get(), data.data(), data.size(), packed.bytes.get(), room);
    packed.memory = std::move(data);
    return packed;
}

PdfFile::PdfFile(const std::filesystem::path& path) : mFile(path, AtomicFile::Backup::none) {
    write("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n");
}

int PdfFile::reserve() {
    mOffsets.push_back(0);
    return static_cast<int>(mOffsets.size());
}

void PdfFile::begin(int number) {
    mOffsets[static_cast<std::size_t>(number - 1)] = mFile.position();
    TextBuffer head;
    head << number << " 0 obj\n";
    write(head.text());
}

void PdfFile::writeObject(int number, std::string_view body) {
    begin(number);
    write(body);
    write("\nendobj\n");
}

int PdfFile::writeStream(std::string data) {
    constexpr std::size_t longStream = 64 * 1024, mostPending = 2;
    const int number = reserve();
    if (data.size() < longStream) {
        writePacked(number, pack(std::move(data)));
        return number;
    }
    mPending.push_back({number, std::async(std::launch::async, pack, std::move(data))});
    finishPending(mostPending);
    return number;
}

void PdfFile::finishPending(std::size_t most) {
    for (; mPending.size() > most; mPending.pop_front()) {
        Packed packed = mPending.front().packed.get();
        writePacked(mPending.front().number, packed);
        mMemory = std::move(packed.memory);
    }
}

void PdfFile::writePacked(int number, const Packed& packed) {
    begin(number);
    TextBuffer head;
    head << "<</Filter/FlateDecode/Length " << packed.size << ">>stream\n";
    write(head.text());
    write({packed.bytes.get(), packed.size});
    write("\nendstream\nendobj\n");
}

bool PdfFile::commit(int catalog) {
    finishPending(0);
    const std::uint64_t table = mFile.position();
    std::string text = "xref\n0 " + std::to_string(mOffsets.size() + 1) + "\n0000000000 65535 f \n";
    for (const std::uint64_t offset : mOffsets) {
        char row[32];
        std::snprintf(row, sizeof row, "%010llu 00000 n \n", static_cast<unsigned long long>(offset));
        text += row;
    }
    text += "trailer\n<</Size " + std::to_string(mOffsets.size() + 1) + "/Root " + std::to_string(catalog) +
            " 0 R>>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
    write(text);
    return mFile.commit();
}

} // namespace host
