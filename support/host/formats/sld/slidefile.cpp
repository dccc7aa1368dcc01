// Slides by file name: files of their own, and slides of a library as FILE.slb(NAME).
#include "host/formats/sld/slide.h"
#include "host/rx/text.h"
#include "host/win/fileio.h"
#include "host/win/paths.h"

#include <algorithm>

namespace host {
namespace {

std::optional<std::string_view> entryOf(std::string_view library, std::wstring_view name,
                                        std::wstring& message) {
    const std::optional<std::vector<SlideLibraryEntry>> entries = parseSlideLibrary(library, message);
    if (!entries) {
        return std::nullopt;
    }
    const auto found = std::ranges::find_if(
        *entries, [name](const SlideLibraryEntry& entry) { return equalNoCase(entry.name, name); });
    if (found == entries->end()) {
        message = L"库中没有幻灯片 \"" + std::wstring(name) + L"\"";
        return std::nullopt;
    }
    return found->bytes;
}

} // namespace

std::optional<Slide> readSlide(const std::wstring& path, std::wstring& message) {
    std::wstring file = path;
    std::wstring entry;
    const std::size_t bracket = path.rfind(L'(');
    const bool isOfLibrary = path.ends_with(L')') && bracket != std::wstring::npos && bracket > 0;
    if (isOfLibrary) {
        file = path.substr(0, bracket);
        entry = path.substr(bracket + 1, path.size() - bracket - 2);
    }
    if (extensionOf(file).empty()) {
        file += isOfLibrary ? L".slb" : L".sld";
    }
    MappedFile mapped;
    if (!mapped.open(toNativePath(file))) {
        message = mapped.errorText();
        return std::nullopt;
    }
    std::optional<std::string_view> bytes = mapped.text();
    if (isOfLibrary) {
        bytes = entryOf(*bytes, entry, message);
    }
    std::optional<Slide> slide = bytes ? parseSlide(*bytes, message) : std::nullopt;
    if (!slide) {
        message = L"无法读取幻灯片 " + path + L"：" + message;
    }
    return slide;
}

std::wstring writeSlide(const Slide& slide, const std::filesystem::path& path) {
    AtomicFile file(path, AtomicFile::Backup::none);
    file.write(std::string_view(slideBytes(slide)));
    return file.commit() ? std::wstring() : file.errorText();
}

} // namespace host
