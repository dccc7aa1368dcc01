// The objects of a PDF file, written one after the other, with the cross-reference table at the end.
#pragma once

#include "host/win/fileio.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

class PdfFile {
public:
    explicit PdfFile(const std::filesystem::path& path);

    // A number for an object written later.
    int reserve();
    void writeObject(int number, std::string_view body);
    // A stream, compressed (a long one on another thread meanwhile). Returns the object's number.
    int writeStream(std::string data);
    // Memory of a stream that was written, or none.
    std::string takeMemory() { return std::exchange(mMemory, {}); }
    // Ends the file with this catalog and gives it its name.
    bool commit(int catalog);
    std::wstring errorText() const { return mFile.errorText(); }

private:
    void begin(int number);
    struct Packed {
        std::unique_ptr<char[]> bytes;
        std::size_t size = 0;
        std::string memory; // of what was packed
    };
    static Packed pack(std::string data);
    void writePacked(int number, const Packed& packed);
    void finishPending(std::size_t most); // writes waiting streams until at most so many are left

    struct PendingStream {
        int number;
        std::future<Packed> packed;
    };
    void write(std::string_view text) { mFile.write(text); }

    AtomicFile mFile;
    std::vector<std::uint64_t> mOffsets; // of object i + 1
    std::deque<PendingStream> mPending;
    std::string mMemory;
};

} // namespace host
